#pragma once

#include <optional>
#include <string>

#include "tools/mlktree/Tree.h"

namespace mlk::tree {

/** What a link says if it leads to no file; nothing for a path that is no such link. */
std::optional<std::string> linkTarget(const std::string& host);

/** The existing path that differs in the case of letters only; empty if no path does. */
std::string inAnotherCase(const std::string& host);

/**
 * The file that the path of a missing file probably means: one with nearly the same name in the
 * same folder, or with the same name in a near folder or another partition. Empty if no file fits.
 *
 * @param host  a path of this machine
 */
std::string nearFile(const Tree& tree, const std::string& host);

}  // namespace mlk::tree
