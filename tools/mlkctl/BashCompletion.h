#pragma once

#include <string>

namespace mlk::ctl {

/**
 * The bash script that completes mlkctl, with all names of interfaces and methods in it. It needs
 * only bash.
 */
std::string bashCompletion();

}  // namespace mlk::ctl
