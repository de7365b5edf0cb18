#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

#include "common/RowOf.h"
#include "tvconfigs/TvConfigInfo.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// What a flag has to do with a master, which is another flag above it.
enum class FlagRule {
    PLAIN,           ///< nothing
    UNDER_ATV,       ///< loaded as false while its master, ATV, is false; can be set nevertheless
    UNDER_DTV,       ///< the same with DTV
    CAPTION_MASTER,  ///< is the master of the captions, which go false when it is set to false
    CAPTION          ///< false as long as its master, CLOSE_CAPTION, is
};

/// One of the systems. What a file or a property holds is not held to the range.
struct TvSystemRow {
    const char* method;  ///< the interface's getter
    const char* name;    ///< as dumped
    int32_t TvConfigInfo::*field;
    const char* key;
    int32_t least;  ///< that a client may set
    int32_t most;   ///< that a client may set
};

/// One of the flags.
struct TvFlagRow {
    using Setter = ::android::hardware::Return<void> (IMlkTvConfigs::*)(
            bool, std::function<void(const OptionalBool&)>);

    const char* method;  ///< the interface's getter
    ConfigType type;
    const char* name;  ///< as dumped
    bool TvConfigInfo::*field;
    Setter setter;
    const char* key;
    FlagRule rule;
};

/// All systems, in the order of the record.
inline constexpr TvSystemRow kTvSystems[] = {
        {"getAtvSystem", "mAtvSystem", &TvConfigInfo::mAtvSystem,
         "persist.vendor.mlk.tv.atv_system", 0, 1},
        {"getDtvSystem", "mDtvSystem", &TvConfigInfo::mDtvSystem,
         "persist.vendor.mlk.tv.dtv_system", 1, 4},
};

/// All flags, in the order of the record. The last key has no ".tv" in it: the framework service
/// has the same property.
inline constexpr TvFlagRow kTvFlags[] = {
        {"atvEnabled", ConfigType::ATV, "mAtvEnabled", &TvConfigInfo::mAtvEnabled,
         &IMlkTvConfigs::setAtvEnabled, "persist.vendor.mlk.tv.enable_atv", FlagRule::PLAIN},
        {"atvAntennaEnabled", ConfigType::ATV_ANTENNA, "mAtvAntennaEnabled",
         &TvConfigInfo::mAtvAntennaEnabled, &IMlkTvConfigs::setAtvAntennaEnabled,
         "persist.vendor.mlk.tv.atv_antenna", FlagRule::UNDER_ATV},
        {"atvCableEnabled", ConfigType::ATV_CABLE, "mAtvCableEnabled",
         &TvConfigInfo::mAtvCableEnabled, &IMlkTvConfigs::setAtvCableEnabled,
         "persist.vendor.mlk.tv.atv_cable", FlagRule::UNDER_ATV},
        {"dtvEnabled", ConfigType::DTV, "mDtvEnabled", &TvConfigInfo::mDtvEnabled,
         &IMlkTvConfigs::setDtvEnabled, "persist.vendor.mlk.tv.enable_dtv", FlagRule::PLAIN},
        {"dtvAntennaEnabled", ConfigType::DTV_ANTENNA, "mDtvAntennaEnabled",
         &TvConfigInfo::mDtvAntennaEnabled, &IMlkTvConfigs::setDtvAntennaEnabled,
         "persist.vendor.mlk.tv.dtv_antenna", FlagRule::UNDER_DTV},
        {"dtvCableEnabled", ConfigType::DTV_CABLE, "mDtvCableEnabled",
         &TvConfigInfo::mDtvCableEnabled, &IMlkTvConfigs::setDtvCableEnabled,
         "persist.vendor.mlk.tv.dtv_cable", FlagRule::UNDER_DTV},
        {"dtvSatelliteEnabled", ConfigType::DTV_SATELLITE, "mDtvSatelliteEnabled",
         &TvConfigInfo::mDtvSatelliteEnabled, &IMlkTvConfigs::setDtvSatelliteEnabled,
         "persist.vendor.mlk.tv.dtv_satellite", FlagRule::UNDER_DTV},
        {"pvrEnabled", ConfigType::PVR, "mPvrEnabled", &TvConfigInfo::mPvrEnabled,
         &IMlkTvConfigs::setPvrEnabled, "persist.vendor.mlk.tv.enable_pvr", FlagRule::PLAIN},
        {"livepauseEnabled", ConfigType::LIVEPAUSE, "mLivepauseEnabled",
         &TvConfigInfo::mLivepauseEnabled, &IMlkTvConfigs::setLivepauseEnabled,
         "persist.vendor.mlk.tv.enable_livepause", FlagRule::PLAIN},
        {"hdmiEnabled", ConfigType::HDMI, "mHdmiEnabled", &TvConfigInfo::mHdmiEnabled,
         &IMlkTvConfigs::setHdmiEnabled, "persist.vendor.mlk.tv.enable_hdmi", FlagRule::PLAIN},
        {"vgaEnabled", ConfigType::VGA, "mVgaEnabled", &TvConfigInfo::mVgaEnabled,
         &IMlkTvConfigs::setVgaEnabled, "persist.vendor.mlk.tv.enable_vga", FlagRule::PLAIN},
        {"avEnabled", ConfigType::AV, "mAvEnabled", &TvConfigInfo::mAvEnabled,
         &IMlkTvConfigs::setAvEnabled, "persist.vendor.mlk.tv.enable_av", FlagRule::PLAIN},
        {"yppEnabled", ConfigType::YPP, "mYppEnabled", &TvConfigInfo::mYppEnabled,
         &IMlkTvConfigs::setYppEnabled, "persist.vendor.mlk.tv.enable_ypp", FlagRule::PLAIN},
        {"ciEnabled", ConfigType::CI, "mCiEnabled", &TvConfigInfo::mCiEnabled,
         &IMlkTvConfigs::setCiEnabled, "persist.vendor.mlk.tv.enable_ci", FlagRule::PLAIN},
        {"pipEnabled", ConfigType::PIP, "mPipEnabled", &TvConfigInfo::mPipEnabled,
         &IMlkTvConfigs::setPipEnabled, "persist.vendor.mlk.tv.enable_pip", FlagRule::PLAIN},
        {"mheg5Enabled", ConfigType::MHEG5, "mMheg5Enabled", &TvConfigInfo::mMheg5Enabled,
         &IMlkTvConfigs::setMheg5Enabled, "persist.vendor.mlk.tv.enable_mheg5", FlagRule::PLAIN},
        {"gingaEnabled", ConfigType::GINGA, "mGingaEnabled", &TvConfigInfo::mGingaEnabled,
         &IMlkTvConfigs::setGingaEnabled, "persist.vendor.mlk.tv.enable_ginga", FlagRule::PLAIN},
        {"hbbtvEnabled", ConfigType::HBBTV, "mHbbtvEnabled", &TvConfigInfo::mHbbtvEnabled,
         &IMlkTvConfigs::setHbbtvEnabled, "persist.vendor.mlk.tv.enable_hbbtv", FlagRule::PLAIN},
        {"teltexEnabled", ConfigType::TELTEX, "mTeltexEnabled", &TvConfigInfo::mTeltexEnabled,
         &IMlkTvConfigs::setTeltexEnabled, "persist.vendor.mlk.tv.enable_tt", FlagRule::PLAIN},
        {"closeCaptionEnabled", ConfigType::CLOSE_CAPTION, "mCloseCaptionEnabled",
         &TvConfigInfo::mCloseCaptionEnabled, &IMlkTvConfigs::setCloseCaptionEnabled,
         "persist.vendor.mlk.tv.enable_cc", FlagRule::CAPTION_MASTER},
        {"atscCloseCaptionEnabled", ConfigType::ATSC_CLOSE_CAPTION, "mAtscCloseCaptionEnabled",
         &TvConfigInfo::mAtscCloseCaptionEnabled, &IMlkTvConfigs::setAtscCloseCaptionEnabled,
         "persist.vendor.mlk.tv.enable_atsc_cc", FlagRule::CAPTION},
        {"ntscCloseCaptionEnabled", ConfigType::NTSC_CLOSE_CAPTION, "mNtscCloseCaptionEnabled",
         &TvConfigInfo::mNtscCloseCaptionEnabled, &IMlkTvConfigs::setNtscCloseCaptionEnabled,
         "persist.vendor.mlk.tv.enable_ntsc_cc", FlagRule::CAPTION},
        {"isdbCloseCaptionEnabled", ConfigType::ISDB_CLOSE_CAPTION, "mIsdbCloseCaptionEnabled",
         &TvConfigInfo::mIsdbCloseCaptionEnabled, &IMlkTvConfigs::setIsdbCloseCaptionEnabled,
         "persist.vendor.mlk.tv.enable_isdb_cc", FlagRule::CAPTION},
        {"getWOWEnabled", ConfigType::WOW, "mWOWEnabled", &TvConfigInfo::mWOWEnabled,
         &IMlkTvConfigs::setWOWEnabled, "persist.vendor.mlk.enable_wow", FlagRule::PLAIN},
};

/// Number of the row of a system's getter.
constexpr size_t tvSystemItem(std::string_view method) {
    return rowOf(kTvSystems, method);
}

/// Number of the row of a flag's getter.
constexpr size_t tvFlagItem(std::string_view method) {
    return rowOf(kTvFlags, method);
}

/// The flag of that type; null when the type is none, such as 0 and 4.
constexpr const TvFlagRow* findFlag(ConfigType type) {
    for (const TvFlagRow& row : kTvFlags) {
        if (row.type == type) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
