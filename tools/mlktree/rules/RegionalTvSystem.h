#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/** A section, with its brackets, and a key. */
struct ItemName {
    std::string_view section;
    std::string_view key;

    bool operator<(const ItemName& other) const {
        return std::tie(section, key) < std::tie(other.section, other.key);
    }
};

/** The items of a TV system file that count. */
std::vector<const ReadLine*> itemsOf(const FileLines& file);

/** The lines of a country map that name TV systems; without those that another rule reports. */
std::vector<const ReadLine*> systemsNamedBy(const FileLines& map);

/** The TV systems of a file. Their names are trimmed: another rule reports blanks. */
std::set<std::string_view> systemNamesOf(const FileLines& file);

/** True if the file may have been meant to define others: elements of it are ignored, or it defines
 * none. */
bool mayLackSystems(const FileLines& file);

/** True for "[LiveTV]". */
bool hasBrackets(std::string_view category);

/** "[LiveTV]" for "LiveTV", "[LiveTV" and " LiveTV]". */
std::string withBrackets(std::string_view category);

/** The items of the models that use a TV system file, with all boards. One thread at a time. */
class ItemsOfModels {
  public:
    ItemsOfModels(const ProductLine& line, const TvSystemFiles& files);

    /** True if some model, or some board, has the item. */
    bool has(const ItemName& name) const;

    /** True if an item of the file is ignored, and no other rule has a finding for it. */
    bool mayLack(const ReadLine& item) const;

    /**
     * The item that the models have and that an ignored item of the file probably means, or an
     * empty name. One that the same TV system has, too, was not meant.
     */
    ItemName nearestTo(const ReadLine& item);

  private:
    using OwnedName = std::tuple<std::string_view, ItemName>;  // TV system, item

    void collect();
    ItemName search(const OwnedName& wanted) const;

    const FileLines& mSystems;
    std::vector<const FileLines*> mFiles;
    // Filled when nearestTo() is first asked.
    std::map<std::string_view, std::set<std::string_view>> mSections;
    std::set<OwnedName> mOwn;
    std::map<OwnedName, ItemName> mFound;
};

}  // namespace mlk::tree
