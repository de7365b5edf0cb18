#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/rules/Texts.h"

namespace mlk::tree {

/** The country that a name in a file has; nothing if the service does not know the name. */
std::optional<_tv_country> countryOf(std::string_view name);

/** The name that a wrong name of a country probably stands for; empty if that cannot be told. */
std::string_view countryMeantBy(std::string_view name);

/** The country that --country names. @throw UsageError if the service knows no such country */
_tv_country countryOfOption(const std::string& name);

/**
 * The countries that the wrong ones of some names probably stand for. Of very many wrong names the
 * first thousand are looked at.
 */
std::set<std::string_view> countriesMeantBy(const std::vector<std::string_view>& names);

/**
 * What a text has at its ends that does not belong there: "a carriage return at its end"; empty if
 * there is nothing.
 */
std::string flawAtEnds(std::string_view text);

/** True if a country list has any line that counts. */
bool hasCountries(const FileLines& list);

/** True for an element of an XML file whose text has blanks at its ends: a rule reports them. */
bool hasBlankInElement(const ReadLine& read);

/** True if the file exists and was read whole, so that what it lacks can be told. */
inline bool isUsable(const FileLines* file) {
    return file != nullptr && file->exists() && !file->isUnreadable();
}

/** A country's record in a country map, or its block in a map of channel plans. */
struct CountryBlock {
    const ReadLine* begin = nullptr;
    std::vector<const ReadLine*> elements; /**< with those that are ignored */

    std::string_view country() const { return begin->owner; }
    /** The element that counts of that name, or null. */
    const ReadLine* find(std::string_view element) const;
};

/** All blocks of a map, in their order. */
std::vector<CountryBlock> blocksOf(const FileLines& map);

/** How many elements at the top of a map are ignored: each may have been meant for a country. */
size_t countIgnoredBlocks(const FileLines& map);

/**
 * True if a TV system file names the country map of another one: none of the TV systems of the map
 * is defined here, nor nearly.
 */
bool namesOtherMap(const TvSystemFiles& files);

/** The files that decide together what a country brings; null for one that is not named. */
struct RegionalSet {
    const FileLines* list = nullptr;        /**< of the countries that the menu offers */
    const TvSystemFiles* systems = nullptr; /**< TV systems and country map */
    const PlanFiles* plans = nullptr;
};

/** The different ones of all models and boards. */
std::vector<RegionalSet> regionalSetsOf(const ProductLine& line);

/**
 * Findings of one rule that differ in their lines only: the first is reported, and the next ones
 * are related to it. A mistake that somebody made throughout a file so is one finding. A file has
 * a limited number of findings: one that is full of mistakes must not take long.
 */
class FindingGroups {
  public:
    /** The number of findings of a file; the last one says that there are more. */
    static constexpr size_t kMostOfFile = 100;

    /**
     * Adds a finding.
     *
     * @param group    findings of one file with the same group are one finding
     * @param place    where the mistake is
     * @param message  of the first finding of the group; unused in the next ones
     * @param related  the same
     */
    void add(const std::string& group, Place place, std::string message,
             std::vector<Related> related = {});

    /** True if no finding of this file is wanted any more. */
    bool isFull(const std::string& file) const;

    /** Reports all of them, in the order of their first places. */
    void report(Reporter& reporter);

  private:
    struct Group {
        Place place;
        std::string message;
        std::vector<Related> related;
        size_t more = 0;  // findings after the first
        Place last;       // the last one of them
    };
    std::vector<Group> mGroups;
    std::map<std::string, size_t> mPositions;  // by file and name
    std::map<std::string, size_t> mCounts;     // of a file's groups
};

}  // namespace mlk::tree
