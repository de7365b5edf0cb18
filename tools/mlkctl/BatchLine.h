#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/mlkctl/Argument.h"

namespace mlk::ctl {

/// A line of a batch: ["INTERFACE","METHOD",ARGUMENT...].
struct BatchLine {
    std::string interface;
    std::string method;
    std::vector<Argument> arguments;
};

/// Reads a line, a JSON array of texts, numbers, true and false. In a text, \udc80 to \udcff that
/// are not the second half of a surrogate pair are the bytes 80 to ff. Throws Failure USAGE for
/// everything else, however it is made.
BatchLine parseBatchLine(std::string_view line);

}  // namespace mlk::ctl
