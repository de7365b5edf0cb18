#pragma once

#include <functional>
#include <string_view>

namespace mlk {

/** Takes the pieces of a text, one after the other. */
using TextSink = std::function<void(std::string_view)>;

}  // namespace mlk
