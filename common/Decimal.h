#pragma once

#include <cstdint>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The number that a configuration text means: leading white space, one sign, then decimal digits
 * up to the first other character. A text without digits is 0.
 *
 * A number beyond 64 bits counts as the nearest 64-bit one; the low 32 bits of the result are
 * returned, which is what atoi gives on a 64-bit device, but defined for every text.
 */
int32_t parseDecimal(std::string_view text);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
