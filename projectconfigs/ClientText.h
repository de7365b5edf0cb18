#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <string_view>

#include "common/ConfigKey.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The text of a client up to its first NUL, which ends it. Refers to the text. */
inline std::string_view untilNul(const ::android::hardware::hidl_string& text) {
    const std::string_view whole(text.c_str(), text.size());
    return whole.substr(0, whole.find('\0'));
}

/** The item that a client names. Refers to the client's texts. */
inline ConfigKey nameOf(const ProjectConfigKey& key) {
    return {untilNul(key.category), untilNul(key.key)};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
