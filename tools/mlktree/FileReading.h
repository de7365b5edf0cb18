#pragma once

#include <memory>
#include <string>

#include "common/FileFormat.h"
#include "tools/mlktree/FileLines.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

/**
 * Reads a file of the tree by the service's own reader. Any number of threads may call.
 *
 * TV system files, country maps and maps of channel plans have classes of their own
 * (RegionalFiles.h); of these, and of files that the service does not read, only the existence is
 * looked up.
 *
 * @param path  relative to the tree
 */
std::unique_ptr<FileLines> readFile(const Tree& tree, const std::string& path, FileFormat format);

}  // namespace mlk::tree
