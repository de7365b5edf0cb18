#pragma once

#include <vector>

#include "tools/mlktree/AllowComments.h"
#include "tools/mlktree/CheckReport.h"
#include "tools/mlktree/Settings.h"

namespace mlk::tree {

class ProductLine;

/** Findings, and those of them that are allowed. */
struct Sorted {
    std::vector<Finding> findings;
    std::vector<Allowed> allowed;
};

/**
 * Takes out what comments allow. A comment speaks of the findings of its rule on its line; one at
 * the beginning of a file also of those on the whole file. Adds what is wrong with the comments
 * themselves: no reason, no such rule, nothing to allow. These findings have no sets yet.
 *
 * @param unused  whether to report comments that allow nothing: not if only some sets were checked
 */
void applyComments(Sorted& sorted, const std::vector<AllowComment>& comments, bool unused);

/**
 * Takes out what mlktree.toml allows and gives the others the severity that it says; the last entry
 * that fits counts. A rule that is off counts as allowed with the reason that stands there.
 *
 * @param file    name of the settings for findings about them: "mlktree.toml"
 * @param unused  as above
 */
void applySettings(Sorted& sorted, const Settings& settings, const std::string& file,
                   const LineOf& lineOf, bool unused);

/** All comments of the files of a product line that speak to mlktree. */
std::vector<AllowComment> allowCommentsOf(const ProductLine& line);

}  // namespace mlk::tree
