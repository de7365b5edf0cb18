#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlktree/Finding.h"

namespace mlk::tree {

/** Gives a source line by its file, relative to the tree, and its number; empty if unknown. */
using LineOf = std::function<std::string_view(const std::string& file, size_t line)>;

/** Who allows a finding. */
enum class AllowedBy {
    COMMENT,  /**< a comment in the file */
    SETTINGS, /**< mlktree.toml */
    BASELINE, /**< the baseline: it was there before */
};

/** A finding that counts for nothing, and why. */
struct Allowed {
    Finding finding;
    AllowedBy by = AllowedBy::COMMENT;
    std::string reason;
};

/** What a check of a tree found; the formats print it. */
struct CheckReport {
    std::string tree;              /**< the folder, as the command line has it */
    size_t sets = 0;               /**< how many sets were checked */
    size_t files = 0;              /**< how many files were read */
    std::vector<Finding> findings; /**< those that count, in their order */
    std::vector<Allowed> allowed;
    bool hasBaseline = false;
    /** Entries of the baseline that nothing has any more; 0 if only some sets were checked. */
    size_t gone = 0;
};

}  // namespace mlk::tree
