#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "tools/mlktree/answers/FilesOfLine.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/answers/NameNumbers.h"
#include "tools/mlktree/set/CountryItems.h"
#include "tools/mlktree/set/SetDelays.h"

namespace mlk::tree {

/**
 * Makes the pieces of a product line: one for each different thing that sets depend on. Asking for
 * a piece gives its number; make() then computes all of them, on all cores. One thread at a time.
 */
class PieceMaker {
  public:
    /** Both must outlive the object. */
    PieceMaker(FilesOfLine& files, LineAnswers& answers) : mFiles(files), mAnswers(answers) {}

    /** The items of a project or board file; kNone for null. */
    uint32_t project(const FileLines* file);
    /**
     * Some items of a country, of which a later one replaces an earlier one of its name.
     *
     * @param byCountry  number in LineAnswers::placesByCountry, for items without a line
     */
    uint32_t brought(const std::vector<const BroughtItem*>& items, uint32_t byCountry);
    /** The items of the file that a value names; as numbers, or as texts. */
    uint32_t auxiliary(std::string_view value, bool isNumbers);
    /** The TV features of sets with that value of "[LiveTV]" "TvConfig". */
    uint32_t features(std::string_view value);
    /** The framework switches. */
    uint32_t framework();
    /** The sound delays of sets with these values: panel, IC, default AVR before and after the
     * country was applied. */
    uint32_t delays(const std::array<std::string_view, 4>& values);
    /** The countries or languages of the list that a value names. */
    uint32_t list(std::string_view value, FileFormat format);
    /** The plans of a country in sets with that value of "[FREQTABLE]" "FREQ_TABLE_PATH". */
    uint32_t plans(std::string_view value, _tv_country country);

    /** Computes all pieces that were asked for, and numbers their names. */
    void make();

    /** The place of a line. */
    AnswerPlace placeOf(const FileLines* file, const ReadLine* line);

  private:
    template <typename Key>
    using Numbers = std::map<Key, uint32_t>;

    void makeItems();
    void makeAuxiliary();
    void makeFeatures();
    void makeDelays();
    void makeLists();
    void makePlans();
    uint32_t channelsOf(const std::string& path);
    uint32_t fileNumber(const std::string& path);

    FilesOfLine& mFiles;
    LineAnswers& mAnswers;
    NameNumbers mNames;
    std::map<std::string, uint32_t, std::less<>> mPlaces;
    const FileLines* mLastFile = nullptr;  // of placeOf()
    uint32_t mLastPlace = kNone;

    // What pieces depend on, with their numbers.
    Numbers<const FileLines*> mProjects;
    Numbers<std::pair<std::vector<const BroughtItem*>, uint32_t>> mBrought;
    Numbers<std::pair<std::string_view, bool>> mAuxiliary;
    Numbers<std::string_view> mFeatures;
    uint32_t mFramework = kNone;
    Numbers<std::array<std::string_view, 4>> mDelays;
    Numbers<std::pair<std::string_view, FileFormat>> mLists;
    Numbers<std::pair<std::string_view, _tv_country>> mPlans;
    Numbers<std::string> mChannels;
};

}  // namespace mlk::tree
