#pragma once

#include <string>
#include <vector>

/**
 * The keys that property_get, property_get_bool and property_get_int32 were asked for since the
 * last call, in order. The test program is linked with --wrap, so that all calls of these functions
 * are recorded.
 */
std::vector<std::string> takePropertyReads();
