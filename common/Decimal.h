#pragma once

#include <cstdint>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Parses a number: optional white space, an optional sign, then decimal digits up to the first
 * other character. A text without digits is 0.
 *
 * A number beyond 64 bits becomes the nearest 64-bit one. Returns the low 32 bits, as atoi does on
 * a 64-bit device, but with a defined result for every text.
 */
int32_t parseDecimal(std::string_view text);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
