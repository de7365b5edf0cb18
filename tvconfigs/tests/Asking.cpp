#include "tvconfigs/tests/Asking.h"

#include <algorithm>
#include <stdexcept>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr char kAtv[] = "persist.vendor.mlk.tv.enable_atv";
constexpr char kDtv[] = "persist.vendor.mlk.tv.enable_dtv";
constexpr char kCaption[] = "persist.vendor.mlk.tv.enable_cc";

}  // namespace

const std::vector<TvFlag>& tvFlags() {
    using I = IMlkTvConfigs;
    using T = ConfigType;
    static const std::vector<TvFlag> kFlags = {
            {"mAtvEnabled", T::ATV, &I::atvEnabled, &I::setAtvEnabled, kAtv, nullptr},
            {"mAtvAntennaEnabled", T::ATV_ANTENNA, &I::atvAntennaEnabled, &I::setAtvAntennaEnabled,
             "persist.vendor.mlk.tv.atv_antenna", kAtv},
            {"mAtvCableEnabled", T::ATV_CABLE, &I::atvCableEnabled, &I::setAtvCableEnabled,
             "persist.vendor.mlk.tv.atv_cable", kAtv},
            {"mDtvEnabled", T::DTV, &I::dtvEnabled, &I::setDtvEnabled, kDtv, nullptr},
            {"mDtvAntennaEnabled", T::DTV_ANTENNA, &I::dtvAntennaEnabled, &I::setDtvAntennaEnabled,
             "persist.vendor.mlk.tv.dtv_antenna", kDtv},
            {"mDtvCableEnabled", T::DTV_CABLE, &I::dtvCableEnabled, &I::setDtvCableEnabled,
             "persist.vendor.mlk.tv.dtv_cable", kDtv},
            {"mDtvSatelliteEnabled", T::DTV_SATELLITE, &I::dtvSatelliteEnabled,
             &I::setDtvSatelliteEnabled, "persist.vendor.mlk.tv.dtv_satellite", kDtv},
            {"mPvrEnabled", T::PVR, &I::pvrEnabled, &I::setPvrEnabled,
             "persist.vendor.mlk.tv.enable_pvr", nullptr},
            {"mLivepauseEnabled", T::LIVEPAUSE, &I::livepauseEnabled, &I::setLivepauseEnabled,
             "persist.vendor.mlk.tv.enable_livepause", nullptr},
            {"mHdmiEnabled", T::HDMI, &I::hdmiEnabled, &I::setHdmiEnabled,
             "persist.vendor.mlk.tv.enable_hdmi", nullptr},
            {"mVgaEnabled", T::VGA, &I::vgaEnabled, &I::setVgaEnabled,
             "persist.vendor.mlk.tv.enable_vga", nullptr},
            {"mAvEnabled", T::AV, &I::avEnabled, &I::setAvEnabled,
             "persist.vendor.mlk.tv.enable_av", nullptr},
            {"mYppEnabled", T::YPP, &I::yppEnabled, &I::setYppEnabled,
             "persist.vendor.mlk.tv.enable_ypp", nullptr},
            {"mCiEnabled", T::CI, &I::ciEnabled, &I::setCiEnabled,
             "persist.vendor.mlk.tv.enable_ci", nullptr},
            {"mPipEnabled", T::PIP, &I::pipEnabled, &I::setPipEnabled,
             "persist.vendor.mlk.tv.enable_pip", nullptr},
            {"mMheg5Enabled", T::MHEG5, &I::mheg5Enabled, &I::setMheg5Enabled,
             "persist.vendor.mlk.tv.enable_mheg5", nullptr},
            {"mGingaEnabled", T::GINGA, &I::gingaEnabled, &I::setGingaEnabled,
             "persist.vendor.mlk.tv.enable_ginga", nullptr},
            {"mHbbtvEnabled", T::HBBTV, &I::hbbtvEnabled, &I::setHbbtvEnabled,
             "persist.vendor.mlk.tv.enable_hbbtv", nullptr},
            {"mTeltexEnabled", T::TELTEX, &I::teltexEnabled, &I::setTeltexEnabled,
             "persist.vendor.mlk.tv.enable_tt", nullptr},
            {"mCloseCaptionEnabled", T::CLOSE_CAPTION, &I::closeCaptionEnabled,
             &I::setCloseCaptionEnabled, kCaption, nullptr},
            {"mAtscCloseCaptionEnabled", T::ATSC_CLOSE_CAPTION, &I::atscCloseCaptionEnabled,
             &I::setAtscCloseCaptionEnabled, "persist.vendor.mlk.tv.enable_atsc_cc", kCaption,
             true},
            {"mNtscCloseCaptionEnabled", T::NTSC_CLOSE_CAPTION, &I::ntscCloseCaptionEnabled,
             &I::setNtscCloseCaptionEnabled, "persist.vendor.mlk.tv.enable_ntsc_cc", kCaption,
             true},
            {"mIsdbCloseCaptionEnabled", T::ISDB_CLOSE_CAPTION, &I::isdbCloseCaptionEnabled,
             &I::setIsdbCloseCaptionEnabled, "persist.vendor.mlk.tv.enable_isdb_cc", kCaption,
             true},
            {"mWOWEnabled", T::WOW, &I::getWOWEnabled, &I::setWOWEnabled,
             "persist.vendor.mlk.enable_wow", nullptr}};
    return kFlags;
}

const TvFlag& tvFlag(const std::string& key) {
    const auto& flags = tvFlags();
    const auto flag = std::find_if(flags.begin(), flags.end(),
                                   [&](const TvFlag& each) { return each.key == key; });
    if (flag == flags.end()) {
        throw std::runtime_error("no flag " + key);
    }
    return *flag;
}

const std::vector<TvSystem>& tvSystems() {
    using I = IMlkTvConfigs;
    static const std::vector<TvSystem> kSystems = {
            {"mAtvSystem", &I::getAtvSystem, &I::setAtvSystem, "persist.vendor.mlk.tv.atv_system",
             0, 1},
            {"mDtvSystem", &I::getDtvSystem, &I::setDtvSystem, "persist.vendor.mlk.tv.dtv_system",
             1, 4}};
    return kSystems;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
