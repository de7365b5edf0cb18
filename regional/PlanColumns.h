#pragma once

#include <algorithm>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Removes and returns the next column of a line of a channel plan; empty after the last one. Blanks
 * and commas separate columns, and several count as one.
 */
inline std::string_view nextColumn(std::string_view& line) {
    constexpr std::string_view kDelimiters = " ,\r\n";
    line.remove_prefix(std::min(line.find_first_not_of(kDelimiters), line.size()));
    const std::string_view column = line.substr(0, line.find_first_of(kDelimiters));
    line.remove_prefix(column.size());
    return column;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
