#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <cstdint>
#include <functional>

#include "tvconfigs/TvConfigItems.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// The values of all items. A plain record; its owner guards it.
struct TvConfigInfo {
#define MLK_SYSTEM_FIELD(Name, key, least, most) int32_t m##Name = 1;
    MLK_TV_SYSTEMS(MLK_SYSTEM_FIELD)
#undef MLK_SYSTEM_FIELD
#define MLK_FLAG_FIELD(type, Name, getter, key, rule) bool m##Name = true;
    MLK_TV_FLAGS(MLK_FLAG_FIELD)
#undef MLK_FLAG_FIELD

    /// Logs the whole record, one item a line, as one message of debug priority.
    void Dump() const;
};

/// What a flag has to do with a master, which is another flag above it.
enum class FlagRule {
    PLAIN,           ///< nothing
    UNDER_ATV,       ///< loaded as false while its master, ATV, is false; can be set nevertheless
    UNDER_DTV,       ///< the same with DTV
    CAPTION_MASTER,  ///< is the master of the captions, which go false when it is set to false
    CAPTION          ///< false as long as its master, CLOSE_CAPTION, is
};

/// One of the systems.
struct SystemRow {
    const char* name;  ///< as dumped
    const char* key;
    int32_t TvConfigInfo::*field;
    int32_t least;
    int32_t most;
};

/// One of the flags.
struct FlagRow {
    using Setter = ::android::hardware::Return<void> (IMlkTvConfigs::*)(
            bool, std::function<void(const OptionalBool&)>);

    ConfigType type;
    const char* name;  ///< as dumped
    const char* key;
    bool TvConfigInfo::*field;
    Setter setter;
    FlagRule rule;
};

// The rows, kAtvSystem to kWOWEnabled, and the lists of them.
#define MLK_SYSTEM_ROW(Name, key, least, most) \
    inline constexpr SystemRow k##Name{"m" #Name, key, &TvConfigInfo::m##Name, least, most};
MLK_TV_SYSTEMS(MLK_SYSTEM_ROW)
#undef MLK_SYSTEM_ROW

#define MLK_FLAG_ROW(type, Name, getter, key, rule)                                \
    inline constexpr FlagRow k##Name{                                              \
            ConfigType::type,          "m" #Name,     key, &TvConfigInfo::m##Name, \
            &IMlkTvConfigs::set##Name, FlagRule::rule};
MLK_TV_FLAGS(MLK_FLAG_ROW)
#undef MLK_FLAG_ROW

#define MLK_ROW_OF_SYSTEM(Name, ...) &k##Name,
inline constexpr const SystemRow* kTvSystems[] = {MLK_TV_SYSTEMS(MLK_ROW_OF_SYSTEM)};
#undef MLK_ROW_OF_SYSTEM

#define MLK_ROW_OF_FLAG(type, Name, ...) &k##Name,
inline constexpr const FlagRow* kTvFlags[] = {MLK_TV_FLAGS(MLK_ROW_OF_FLAG)};
#undef MLK_ROW_OF_FLAG

/// The flag of that type; null when the type is none, such as 0 and 4.
constexpr const FlagRow* findFlag(ConfigType type) {
    for (const FlagRow* row : kTvFlags) {
        if (row->type == type) {
            return row;
        }
    }
    return nullptr;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
