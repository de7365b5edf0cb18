#pragma once

#include <string>
#include <vector>

/// The keys that property_get, property_get_bool and property_get_int32 were asked for since the
/// last call, in order. The test program is linked so that calls of these functions pass by here on
/// their way.
std::vector<std::string> takePropertyReads();
