#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tools/mlktree/Reporter.h"

namespace mlk::tree {

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
