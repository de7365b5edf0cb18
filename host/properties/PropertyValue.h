#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mlk::host {

/**
 * The switch that a property's value is: 1, true, y, yes and on, or their opposites; nothing if it
 * is another text.
 */
std::optional<bool> switchOf(std::string_view value);

/**
 * The number that a property's value is, within a range. Its prefix selects the base: 0x10 is 16,
 * 010 is 8. What follows the digits does not count.
 *
 * @return the default if the value begins with no number or lies outside of the range
 */
int64_t numberOf(const std::string& value, int64_t least, int64_t most, int64_t defaultValue);

}  // namespace mlk::host
