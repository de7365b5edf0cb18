#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "common/ValueType.h"

namespace mlk::tree {

/** The limits of a number. */
struct NumberRange {
    int64_t least = std::numeric_limits<int32_t>::min();
    int64_t most = std::numeric_limits<int32_t>::max();
};

/**
 * What is wrong with a value for the reader of that type, and what would be right, as a sentence
 * without a full stop; empty if its reader can use it. Every text and path is right here.
 */
std::string problemOf(vendor::morlak::mlkconfigs::V1_0::implementation::ValueType type,
                      std::string_view value, const NumberRange& range = {});

/** The same for a TV feature of that key; empty for a key that is no feature. */
std::string problemOfFeature(std::string_view key, std::string_view value);

/** The keys of a TV feature file. */
const std::vector<std::string_view>& featureKeys();

/** True for a decimal number of that range, with nothing before or after it. */
bool isDecimalIn(std::string_view value, const NumberRange& range);

}  // namespace mlk::tree
