#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tools/mlktree/answers/LineAnswers.h"

namespace mlk::tree {

/** Sets that are every combination of these models, boards and countries. */
struct SetTerm {
    std::vector<uint32_t> models;    /**< numbers in LineAnswers::models; kNone for no model */
    std::vector<uint32_t> boards;    /**< numbers in LineAnswers::boards */
    std::vector<uint32_t> countries; /**< numbers in LineAnswers::countries; kNone for no country */
    bool hasAllModels = false;       /**< all that the sets of the line have; the same below */
    bool hasAllBoards = false;
    bool hasAllCountries = false;
};

/** How many members of a group its name has; "and 3 more" tells of the rest. */
struct NameLimits {
    size_t models = 8;
    size_t boards = 4;
    size_t countries = 3;
    size_t terms = 3;
};

/** Names groups of the sets of a line by what their members have in common. One thread at a time.
 */
class SetGroups {
  public:
    /** @param line  must outlive the object */
    explicit SetGroups(const LineAnswers& line);

    /** The number of a list of countries, ascending and each once. */
    uint32_t listOf(const std::vector<uint32_t>& countries);

    /** Collects the sets of a group. */
    class Builder {
      public:
        /** @param groups  must outlive the object */
        explicit Builder(SetGroups& groups) : mGroups(&groups) {}

        /** Adds sets, each once; those of a model and a board in one row. */
        void add(uint32_t model, uint32_t board, uint32_t list);

        /** The sets as few terms, in the order in which they were added. */
        std::vector<SetTerm> terms();

      private:
        struct Pair {
            uint32_t model;
            uint32_t board;
            std::vector<uint32_t> lists;
        };

        SetGroups* mGroups;
        std::vector<Pair> mPairs;
    };

    /** @param sets  positions in LineAnswers::sets, ascending, each once */
    std::vector<SetTerm> termsOf(const std::vector<uint32_t>& sets);

    /**
     * "models 2, 3", "models 1 to 4 with board b1.ini; model 7 in GERMANY", "all but FRANCE", "all
     * sets": without what all sets have. Two groups without a common set have different names.
     */
    std::string nameOf(const std::vector<SetTerm>& terms, const NameLimits& limits = {}) const;

    /** [{"models":[1,2],"boards":["b1.ini"]}]: without what all sets have. */
    std::string jsonOf(const std::vector<SetTerm>& terms) const;

  private:
    std::string nameOf(const SetTerm& term, const NameLimits& limits) const;
    std::vector<std::string> modelNames(const std::vector<uint32_t>& models) const;
    std::string countryNames(const std::vector<uint32_t>& countries, size_t most) const;
    uint32_t unionOf(const std::vector<uint32_t>& lists);

    const LineAnswers& mLine;
    size_t mModels = 0;
    size_t mBoards = 0;
    std::vector<uint32_t> mCountries;                    // of the sets, ascending
    std::map<std::vector<uint32_t>, uint32_t> mNumbers;  // of lists
    std::vector<const std::vector<uint32_t>*> mLists;
    std::map<std::vector<uint32_t>, uint32_t> mUnions;  // of lists
};

}  // namespace mlk::tree
