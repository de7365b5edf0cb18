#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/RowOf.h"
#include "common/ValueType.h"
#include "tvconfigs/TvConfigInfo.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The TV feature file of a set that names none: a path on tvconfigs. */
inline constexpr const char* kDefaultTvConfigFile = "/tv.config";

/** How a flag depends on its master, another flag. */
enum class FlagRule {
    PLAIN,          /**< has no master */
    UNDER_ATV,      /**< loaded as false if its master, ATV, is false; can be set nevertheless */
    UNDER_DTV,      /**< the same with DTV */
    CAPTION_MASTER, /**< the master of the captions: setting it to false sets them to false */
    CAPTION         /**< false while its master, CLOSE_CAPTION, is false */
};

/** One of the systems. A value from a file or a property may be outside of the range. */
struct TvSystemRow {
    static constexpr ValueType kType = ValueType::INTEGER;

    const char* method; /**< the interface's getter */
    const char* setter; /**< the interface's setter */
    const char* name;   /**< as dumped */
    int32_t TvConfigInfo::*field;
    const char* key;
    int32_t least; /**< lowest value that a client may set */
    int32_t most;  /**< highest value that a client may set */
};

/** One of the flags. */
struct TvFlagRow {
    static constexpr ValueType kType = ValueType::FEATURE;

    const char* method; /**< the interface's getter */
    const char* setter; /**< the interface's setter */
    uint32_t type;      /**< the interface's number of the flag */
    const char* name;   /**< as dumped */
    bool TvConfigInfo::*field;
    const char* key;
    FlagRule rule;
};

/** All systems, in the order of the record. */
inline constexpr TvSystemRow kTvSystems[] = {
        {"getAtvSystem", "setAtvSystem", "mAtvSystem", &TvConfigInfo::mAtvSystem,
         "persist.vendor.mlk.tv.atv_system", 0, 1},
        {"getDtvSystem", "setDtvSystem", "mDtvSystem", &TvConfigInfo::mDtvSystem,
         "persist.vendor.mlk.tv.dtv_system", 1, 4},
};

/**
 * All flags, in the order of the record. The last key has no ".tv" in it: the framework service
 * uses the same property.
 */
inline constexpr TvFlagRow kTvFlags[] = {
        {"atvEnabled", "setAtvEnabled", 1, "mAtvEnabled", &TvConfigInfo::mAtvEnabled,
         "persist.vendor.mlk.tv.enable_atv", FlagRule::PLAIN},
        {"atvAntennaEnabled", "setAtvAntennaEnabled", 2, "mAtvAntennaEnabled",
         &TvConfigInfo::mAtvAntennaEnabled, "persist.vendor.mlk.tv.atv_antenna",
         FlagRule::UNDER_ATV},
        {"atvCableEnabled", "setAtvCableEnabled", 3, "mAtvCableEnabled",
         &TvConfigInfo::mAtvCableEnabled, "persist.vendor.mlk.tv.atv_cable", FlagRule::UNDER_ATV},
        {"dtvEnabled", "setDtvEnabled", 5, "mDtvEnabled", &TvConfigInfo::mDtvEnabled,
         "persist.vendor.mlk.tv.enable_dtv", FlagRule::PLAIN},
        {"dtvAntennaEnabled", "setDtvAntennaEnabled", 6, "mDtvAntennaEnabled",
         &TvConfigInfo::mDtvAntennaEnabled, "persist.vendor.mlk.tv.dtv_antenna",
         FlagRule::UNDER_DTV},
        {"dtvCableEnabled", "setDtvCableEnabled", 7, "mDtvCableEnabled",
         &TvConfigInfo::mDtvCableEnabled, "persist.vendor.mlk.tv.dtv_cable", FlagRule::UNDER_DTV},
        {"dtvSatelliteEnabled", "setDtvSatelliteEnabled", 8, "mDtvSatelliteEnabled",
         &TvConfigInfo::mDtvSatelliteEnabled, "persist.vendor.mlk.tv.dtv_satellite",
         FlagRule::UNDER_DTV},
        {"pvrEnabled", "setPvrEnabled", 9, "mPvrEnabled", &TvConfigInfo::mPvrEnabled,
         "persist.vendor.mlk.tv.enable_pvr", FlagRule::PLAIN},
        {"livepauseEnabled", "setLivepauseEnabled", 10, "mLivepauseEnabled",
         &TvConfigInfo::mLivepauseEnabled, "persist.vendor.mlk.tv.enable_livepause",
         FlagRule::PLAIN},
        {"hdmiEnabled", "setHdmiEnabled", 11, "mHdmiEnabled", &TvConfigInfo::mHdmiEnabled,
         "persist.vendor.mlk.tv.enable_hdmi", FlagRule::PLAIN},
        {"vgaEnabled", "setVgaEnabled", 12, "mVgaEnabled", &TvConfigInfo::mVgaEnabled,
         "persist.vendor.mlk.tv.enable_vga", FlagRule::PLAIN},
        {"avEnabled", "setAvEnabled", 13, "mAvEnabled", &TvConfigInfo::mAvEnabled,
         "persist.vendor.mlk.tv.enable_av", FlagRule::PLAIN},
        {"yppEnabled", "setYppEnabled", 14, "mYppEnabled", &TvConfigInfo::mYppEnabled,
         "persist.vendor.mlk.tv.enable_ypp", FlagRule::PLAIN},
        {"ciEnabled", "setCiEnabled", 15, "mCiEnabled", &TvConfigInfo::mCiEnabled,
         "persist.vendor.mlk.tv.enable_ci", FlagRule::PLAIN},
        {"pipEnabled", "setPipEnabled", 16, "mPipEnabled", &TvConfigInfo::mPipEnabled,
         "persist.vendor.mlk.tv.enable_pip", FlagRule::PLAIN},
        {"mheg5Enabled", "setMheg5Enabled", 17, "mMheg5Enabled", &TvConfigInfo::mMheg5Enabled,
         "persist.vendor.mlk.tv.enable_mheg5", FlagRule::PLAIN},
        {"gingaEnabled", "setGingaEnabled", 18, "mGingaEnabled", &TvConfigInfo::mGingaEnabled,
         "persist.vendor.mlk.tv.enable_ginga", FlagRule::PLAIN},
        {"hbbtvEnabled", "setHbbtvEnabled", 19, "mHbbtvEnabled", &TvConfigInfo::mHbbtvEnabled,
         "persist.vendor.mlk.tv.enable_hbbtv", FlagRule::PLAIN},
        {"teltexEnabled", "setTeltexEnabled", 20, "mTeltexEnabled", &TvConfigInfo::mTeltexEnabled,
         "persist.vendor.mlk.tv.enable_tt", FlagRule::PLAIN},
        {"closeCaptionEnabled", "setCloseCaptionEnabled", 21, "mCloseCaptionEnabled",
         &TvConfigInfo::mCloseCaptionEnabled, "persist.vendor.mlk.tv.enable_cc",
         FlagRule::CAPTION_MASTER},
        {"atscCloseCaptionEnabled", "setAtscCloseCaptionEnabled", 22, "mAtscCloseCaptionEnabled",
         &TvConfigInfo::mAtscCloseCaptionEnabled, "persist.vendor.mlk.tv.enable_atsc_cc",
         FlagRule::CAPTION},
        {"ntscCloseCaptionEnabled", "setNtscCloseCaptionEnabled", 23, "mNtscCloseCaptionEnabled",
         &TvConfigInfo::mNtscCloseCaptionEnabled, "persist.vendor.mlk.tv.enable_ntsc_cc",
         FlagRule::CAPTION},
        {"isdbCloseCaptionEnabled", "setIsdbCloseCaptionEnabled", 24, "mIsdbCloseCaptionEnabled",
         &TvConfigInfo::mIsdbCloseCaptionEnabled, "persist.vendor.mlk.tv.enable_isdb_cc",
         FlagRule::CAPTION},
        {"getWOWEnabled", "setWOWEnabled", 25, "mWOWEnabled", &TvConfigInfo::mWOWEnabled,
         "persist.vendor.mlk.enable_wow", FlagRule::PLAIN},
};

/** Number of the row of a system's getter. */
constexpr size_t tvSystemItem(std::string_view method) {
    return rowOf(kTvSystems, method);
}

/** Number of the row of a flag's getter. */
constexpr size_t tvFlagItem(std::string_view method) {
    return rowOf(kTvFlags, method);
}

/** The flag that must be true for this one to be loaded as true; null if it has no master. */
constexpr const TvFlagRow* masterOf(const TvFlagRow& row) {
    switch (row.rule) {
        case FlagRule::UNDER_ATV:
            return &kTvFlags[tvFlagItem("atvEnabled")];
        case FlagRule::UNDER_DTV:
            return &kTvFlags[tvFlagItem("dtvEnabled")];
        case FlagRule::CAPTION:
            return &kTvFlags[tvFlagItem("closeCaptionEnabled")];
        case FlagRule::PLAIN:
        case FlagRule::CAPTION_MASTER:
            break;
    }
    return nullptr;
}

/** The flag of that type; null if no flag has it, as with 0 and 4. */
constexpr const TvFlagRow* findFlag(uint32_t type) {
    for (const TvFlagRow& row : kTvFlags) {
        if (row.type == type) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
