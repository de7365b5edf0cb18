#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** One channel as "channel bandwidth kHz label modulation", its frequency rounded to kHz. */
std::string lineOf(int64_t channel, int64_t bandwidth, int64_t hertz, const std::string& label,
                   int32_t modulation);

/** Channel plans by their names below the sample's "freqtables", a line of lineOf a channel. */
using Plans = std::map<std::string, std::vector<std::string>>;

/** Every channel plan of the sample, worked out from the rules of its standard. */
Plans samplePlans();

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
