#pragma once

#include <string>

#include "tools/mlktree/Command.h"

namespace mlk::tree {

/** What `mlktree --help` prints. */
std::string generalHelp();

/** What `mlktree COMMAND --help` prints. */
std::string helpOf(const Command& command);

/** What help says about an option: what it does, its choices, and what counts without it. */
std::string helpTextOf(const Option& option);

/** An environment variable that mlktree reads, and what it is for. */
struct Variable {
    std::string_view name;
    std::string_view what;
};

/** All of them. */
const std::vector<Variable>& variables();

/** The paragraphs of a text, which have empty lines between them. */
std::vector<std::string_view> paragraphsOf(std::string_view text);

/** The columns of a line of help. */
constexpr size_t kHelpWidth = 80;

}  // namespace mlk::tree
