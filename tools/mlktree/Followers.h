#pragma once

#include <vector>

#include "tools/mlktree/Finding.h"

namespace mlk::tree {

class ProductLine;

/**
 * Leaves out findings that follow from others, so that one mistake gives one finding:
 *
 * - what other rules find in lines that a finding spoils (Finding::spoilt),
 * - unused files that would be used but for a mistake: a line with a finding names them, a finding
 *   refers to them, or a model file that no index has names them,
 * - unused files and unused allowances, if the list of models itself has a mistake.
 */
void leaveOutFollowers(std::vector<Finding>& findings, const ProductLine& line);

}  // namespace mlk::tree
