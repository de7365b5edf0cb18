#pragma once

#include "tools/mlktree/CheckReport.h"
#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/**
 * Checks a product line by all rules, and applies what comments and mlktree.toml say about the
 * findings.
 *
 * @param isWhole  whether the line has all sets of its tree; otherwise a comment that allows
 *                 nothing is no mistake
 */
CheckReport examine(const ProductLine& line, bool isWhole);

/** Gives the source lines of the files of a product line, which must outlive the function. */
LineOf linesOf(const ProductLine& line);

}  // namespace mlk::tree
