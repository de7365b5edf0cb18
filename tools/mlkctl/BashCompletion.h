#pragma once

#include <string>

namespace mlk::ctl {

/// The script that completes mlkctl in bash, with the names of the tables in it. It needs nothing
/// but bash itself.
std::string bashCompletion();

}  // namespace mlk::ctl
