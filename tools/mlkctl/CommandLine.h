#pragma once

#include <string>
#include <vector>

#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

/// mlkctl with its words, the program's own name not among them. Everything that goes wrong is
/// reported as one line on the environment's errors; a reader of the output that has gone is not
/// worth a line. Gives the exit status; never throws but for want of memory.
ExitStatus runCommandLine(const std::vector<std::string>& words, Environment& environment);

}  // namespace mlk::ctl
