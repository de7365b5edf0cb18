#pragma once

#include "common/ValueType.h"
#include "regional/RegionalNames.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The system properties that a set reads besides its TV features and framework switches. */
namespace property {

inline constexpr const char* kHardware = "ro.hardware";
inline constexpr const char* kLogItems = "persist.vendor.mlk.configs.debug";

}  // namespace property

/** What the service knows of one of them. */
struct KnownProperty {
    const char* key;
    ValueType type;
    const char* note; /**< what it decides */
};

/** All of them. */
inline constexpr KnownProperty kKnownProperties[] = {
        {property::kLogItems, ValueType::INTEGER,
         "from 1 on, a start and a change of model log every item"},
        {kLogTvSystemsProperty, ValueType::INTEGER,
         "from 1 on, a start and a change of country log TV systems and countries"},
        {property::kHardware, ValueType::TEXT,
         "names the audio file of the hardware, `/tvconfigs/audio/audio_<ro.hardware>.ini`"},
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
