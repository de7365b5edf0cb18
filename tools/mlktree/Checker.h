#pragma once

#include <vector>

#include "tools/mlktree/Finding.h"
#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/**
 * Runs all rules on a product line, on all cores.
 *
 * @return the findings in order, each once; severities are those of the rules
 */
std::vector<Finding> check(const ProductLine& line);

}  // namespace mlk::tree
