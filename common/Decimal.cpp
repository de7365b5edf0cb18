#include "common/Decimal.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

int32_t parseDecimal(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+')) {
        text.remove_prefix(1);
    }
    uint64_t magnitude = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), magnitude);
    constexpr auto kMost = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    const uint64_t most = negative ? kMost + 1 : kMost;
    if (result.ec == std::errc::result_out_of_range || magnitude > most) {
        magnitude = most;
    }
    return static_cast<int32_t>(negative ? 0 - magnitude : magnitude);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
