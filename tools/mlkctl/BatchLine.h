#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/mlkctl/Argument.h"

namespace mlk::ctl {

/** One line of a batch: ["INTERFACE","METHOD",ARGUMENT...]. */
struct BatchLine {
    std::string interface;
    std::string method;
    std::vector<Argument> arguments;
};

/**
 * Parses a line: a JSON array of texts, numbers, true and false. In a text, \udc80 to \udcff stand
 * for the bytes 80 to ff, unless they are the second half of a surrogate pair. Throws Failure USAGE
 * for everything else.
 */
BatchLine parseBatchLine(std::string_view line);

}  // namespace mlk::ctl
