#pragma once

#include <string>
#include <vector>

#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/**
 * The files of tvconfigs that no line names, in the order of their paths. The files of boards and
 * of folders of channel plans are not among them. Empty for a line that lacks models or boards.
 */
std::vector<std::string> unusedFilesOf(const ProductLine& line);

}  // namespace mlk::tree
