#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/diff/Change.h"

namespace mlk::tree {

/** Puts sets of a line into groups of models, boards and countries. One thread at a time. */
class Reach {
  public:
    /**
     * @param line  must outlive the object
     * @param sets  all sets that there are: "all" means these. Numbers of the line's sets
     */
    Reach(const LineAnswers& line, const std::vector<uint32_t>& sets);

    /** The groups that some of these sets make. @param sets  positions in `sets`, ascending */
    std::vector<SetGroup> groupsOf(const std::vector<uint32_t>& positions) const;

  private:
    /** Countries of sets of one model and board, ascending; kNone for no country. */
    using Countries = std::vector<uint32_t>;
    /** By board, the countries; one of these is all that a model has. */
    using Boards = std::map<uint32_t, Countries>;

    std::map<uint32_t, Boards> modelsOf(const std::vector<uint32_t>& positions) const;
    std::string modelName(uint32_t model) const;

    const LineAnswers& mLine;
    const std::vector<uint32_t> mSets;
    std::vector<uint32_t> mEvery;  // positions of all sets
    std::map<uint32_t, Boards> mAll;
    std::vector<uint32_t> mModels;
};

}  // namespace mlk::tree
