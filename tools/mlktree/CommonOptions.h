#pragma once

#include <string>
#include <vector>

#include "tools/mlktree/Command.h"

namespace mlk::tree {

/** Which tree: --tree, --tvconfigs, --tvdata, --impdata, --prop. */
const OptionGroup& treeOptions();

/** Which sets: --model, --board, --customer, --country. */
const OptionGroup& setOptions();

/** --format with these choices, the first of which is the default. */
Option formatOption(std::vector<std::string_view> choices);

/** --output, which is standard output unless it is given. */
Option outputOption(std::string_view what);

/** --color. */
Option colorOption();

/**
 * Whether to colour what a terminal shows: what --color says, and unless that decides, whether
 * `isTerminal` holds and NO_COLOR does not forbid it.
 */
bool isColoured(const Arguments& arguments, const Environment& environment, bool isTerminal);

/** What the words of a command may end with: a folder. For Command::nextWord. */
std::vector<Completion> treeWord(const std::vector<std::string>& before);

/** What every command on a tree answers with, besides `found` for 1. */
std::vector<std::pair<int, std::string_view>> statusesOf(std::string_view nothing,
                                                         std::string_view found);

}  // namespace mlk::tree
