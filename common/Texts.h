#pragma once

#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** True if the text begins with the start; any text begins with an empty one. */
constexpr bool beginsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/** Returns the text; an empty one for null. */
constexpr const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
