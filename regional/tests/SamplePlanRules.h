#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** One channel as "channel bandwidth kHz label modulation", its frequency rounded to kHz. */
std::string lineOf(int64_t channel, int64_t bandwidth, int64_t hertz, const std::string& label,
                   int32_t modulation);

/** Maps a plan's name below the sample's "freqtables" to its channels, each as of lineOf. */
using Plans = std::map<std::string, std::vector<std::string>>;

/** Computes every channel plan of the sample from the rules of its standard. */
Plans samplePlans();

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
