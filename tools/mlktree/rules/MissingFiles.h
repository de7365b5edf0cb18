#pragma once

#include <string>
#include <vector>

#include "tools/mlktree/ProductLine.h"
#include "tools/mlktree/Reporter.h"

namespace mlk::tree {

/** True if a line names a file in the form of a path into the partitions. */
bool isLookedFor(const Naming& naming);

/** False for a file of a partition that the tree does not have; the path is relative to the tree.
 */
bool hasPartition(const ProductLine& line, const std::string& path);

/**
 * Reports a file once, at the first line that names it; the others are related.
 *
 * @param path     of the file, relative to the tree
 * @param namings  the lines that name it, at least one
 */
void reportNamed(const ProductLine& line, Reporter& reporter, const std::string& path,
                 const std::vector<const Naming*>& namings, std::string message,
                 std::vector<Related> related);

/**
 * Reports the files that lines name and that do not exist. If a folder has none of the files that
 * lines name in it, that is one finding: the folder is missing, or its name is wrong.
 */
void checkMissingFiles(const ProductLine& line, Reporter& reporter);

}  // namespace mlk::tree
