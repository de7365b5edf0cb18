#pragma once

#include <string>
#include <vector>

#include "tools/mlktree/Command.h"

namespace mlk::tree {

/**
 * Runs mlktree with the words after the program's name. Reports every failure as one line on the
 * environment's errors; only a closed standard output is not reported. Returns the exit status;
 * throws nothing.
 */
ExitStatus runCommandLine(const std::vector<std::string>& words, Environment& environment);

/**
 * Tells options and words of a command apart. "--" ends the options.
 *
 * @throw UsageError that names what would be right
 */
Arguments parse(const Command& command, const std::vector<std::string>& words);

}  // namespace mlk::tree
