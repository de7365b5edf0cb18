#pragma once

#include <string>
#include <vector>

#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

/**
 * Runs mlkctl with the words after the program's name. Reports every failure as one line on the
 * environment's errors, exhausted memory included; only a closed standard output is not reported.
 * Returns the exit status.
 */
ExitStatus runCommandLine(const std::vector<std::string>& words, Environment& environment);

}  // namespace mlk::ctl
