#pragma once

#include <string_view>
#include <vector>

namespace mlk::tree {

/** What teaches a shell to complete mlktree's command lines. */
struct ShellScript {
    std::string_view name; /**< of the shell */
    std::string_view script;
};

/** One for each shell. */
const std::vector<ShellScript>& completionScripts();

}  // namespace mlk::tree
