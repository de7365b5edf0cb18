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

/**
 * What the same reader makes of a text that is to be in a text file. The files of the identity have
 * a place of their own, and are read from there.
 *
 * @param path  of the file; relative to the tree
 * @throw UsageError if the text cannot be put into a temporary file, where the reader looks for it
 */
std::unique_ptr<FileLines> readText(const Tree& tree, const std::string& path, FileFormat format,
                                    const std::string& text);

}  // namespace mlk::tree
