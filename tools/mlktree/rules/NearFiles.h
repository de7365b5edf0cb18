#pragma once

#include <optional>
#include <string>

#include "tools/mlktree/Tree.h"

namespace mlk::tree {

/** What a link says if it leads to no file; nothing for a path that is no such link. */
std::optional<std::string> linkTarget(const std::string& host);

/** The path that exists and differs in the case of letters only; empty if there is none. */
std::string inAnotherCase(const std::string& host);

/**
 * The file that somebody who wrote the path of a missing one probably means: of nearly the same
 * name in the same folder, or of the same name in a near folder or another partition. Empty if
 * there is none.
 *
 * @param host  a path of this machine
 */
std::string nearFile(const Tree& tree, const std::string& host);

}  // namespace mlk::tree
