#include "tests/vts/TvRows.h"

#include <unistd.h>

#include <utility>

#include "tvconfigs/testing/SlowEditor.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

using ::android::sp;
using implementation::SlowEditor;

#define FLAG(type, getter, setter, key, master)                                                  \
    {                                                                                            \
        ConfigType::type, #getter, &IMlkTvConfigs::getter, #setter, &IMlkTvConfigs::setter, key, \
                ConfigType::master                                                               \
    }

const std::vector<TvFlagRow>& tvFlagRows() {
    static const auto& kRows = *new std::vector<TvFlagRow>{
            FLAG(ATV, atvEnabled, setAtvEnabled, "persist.vendor.mlk.tv.enable_atv", ATV),
            FLAG(ATV_ANTENNA, atvAntennaEnabled, setAtvAntennaEnabled,
                 "persist.vendor.mlk.tv.atv_antenna", ATV),
            FLAG(ATV_CABLE, atvCableEnabled, setAtvCableEnabled, "persist.vendor.mlk.tv.atv_cable",
                 ATV),
            FLAG(DTV, dtvEnabled, setDtvEnabled, "persist.vendor.mlk.tv.enable_dtv", DTV),
            FLAG(DTV_ANTENNA, dtvAntennaEnabled, setDtvAntennaEnabled,
                 "persist.vendor.mlk.tv.dtv_antenna", DTV),
            FLAG(DTV_CABLE, dtvCableEnabled, setDtvCableEnabled, "persist.vendor.mlk.tv.dtv_cable",
                 DTV),
            FLAG(DTV_SATELLITE, dtvSatelliteEnabled, setDtvSatelliteEnabled,
                 "persist.vendor.mlk.tv.dtv_satellite", DTV),
            FLAG(PVR, pvrEnabled, setPvrEnabled, "persist.vendor.mlk.tv.enable_pvr", PVR),
            FLAG(LIVEPAUSE, livepauseEnabled, setLivepauseEnabled,
                 "persist.vendor.mlk.tv.enable_livepause", LIVEPAUSE),
            FLAG(HDMI, hdmiEnabled, setHdmiEnabled, "persist.vendor.mlk.tv.enable_hdmi", HDMI),
            FLAG(VGA, vgaEnabled, setVgaEnabled, "persist.vendor.mlk.tv.enable_vga", VGA),
            FLAG(AV, avEnabled, setAvEnabled, "persist.vendor.mlk.tv.enable_av", AV),
            FLAG(YPP, yppEnabled, setYppEnabled, "persist.vendor.mlk.tv.enable_ypp", YPP),
            FLAG(CI, ciEnabled, setCiEnabled, "persist.vendor.mlk.tv.enable_ci", CI),
            FLAG(PIP, pipEnabled, setPipEnabled, "persist.vendor.mlk.tv.enable_pip", PIP),
            FLAG(MHEG5, mheg5Enabled, setMheg5Enabled, "persist.vendor.mlk.tv.enable_mheg5", MHEG5),
            FLAG(GINGA, gingaEnabled, setGingaEnabled, "persist.vendor.mlk.tv.enable_ginga", GINGA),
            FLAG(HBBTV, hbbtvEnabled, setHbbtvEnabled, "persist.vendor.mlk.tv.enable_hbbtv", HBBTV),
            FLAG(TELTEX, teltexEnabled, setTeltexEnabled, "persist.vendor.mlk.tv.enable_tt",
                 TELTEX),
            FLAG(CLOSE_CAPTION, closeCaptionEnabled, setCloseCaptionEnabled,
                 "persist.vendor.mlk.tv.enable_cc", CLOSE_CAPTION),
            FLAG(ATSC_CLOSE_CAPTION, atscCloseCaptionEnabled, setAtscCloseCaptionEnabled,
                 "persist.vendor.mlk.tv.enable_atsc_cc", CLOSE_CAPTION),
            FLAG(NTSC_CLOSE_CAPTION, ntscCloseCaptionEnabled, setNtscCloseCaptionEnabled,
                 "persist.vendor.mlk.tv.enable_ntsc_cc", CLOSE_CAPTION),
            FLAG(ISDB_CLOSE_CAPTION, isdbCloseCaptionEnabled, setIsdbCloseCaptionEnabled,
                 "persist.vendor.mlk.tv.enable_isdb_cc", CLOSE_CAPTION),
            FLAG(WOW, getWOWEnabled, setWOWEnabled, "persist.vendor.mlk.enable_wow", WOW),
    };
    return kRows;
}
#undef FLAG

bool tvFileValue(const std::string& tvConfigPath, const std::string& key, std::string& value) {
    if (access(tvConfigPath.c_str(), R_OK) != 0) {
        return false;
    }
    SlowEditor file;
    file.update(tvConfigPath);
    for (const auto& [name, text] : file.items) {
        if (name == key) {
            value = text;
            return true;
        }
    }
    return false;
}

namespace {

std::string loaded(const std::string& tvConfigPath, const std::string& key) {
    constexpr size_t kMost = 91;
    std::string value;
    return tvFileValue(tvConfigPath, key, value) ? value.substr(0, kMost) : propertyOf(key);
}

bool flagOf(const std::string& text) {
    return text == "true" || (text != "false" && numberOf(text) > 0);
}

}  // namespace

PlainFeatures::PlainFeatures(const std::string& tvConfigPath)
    : atvSystem(numberOf(loaded(tvConfigPath, kAtvSystemKey))),
      dtvSystem(numberOf(loaded(tvConfigPath, kDtvSystemKey))) {
    for (const TvFlagRow& row : tvFlagRows()) {
        const bool masterOff = row.master != row.type && !flags[row.master];
        flags[row.type] = !masterOff && flagOf(loaded(tvConfigPath, row.key));
    }
}

Questions tvQuestions(const sp<IMlkTvConfigs>& service, const PlainFeatures& features) {
    Questions questions = {
            {"getAtvSystem", [=] { return ask(*service, MLK_METHOD(IMlkTvConfigs, getAtvSystem)); },
             textOfNumber(features.atvSystem)},
            {"getDtvSystem", [=] { return ask(*service, MLK_METHOD(IMlkTvConfigs, getDtvSystem)); },
             textOfNumber(features.dtvSystem)}};
    for (const TvFlagRow& row : tvFlagRows()) {
        questions.push_back({row.getterName,
                             [=] { return ask(*service, row.getterName, row.getter); },
                             textOfFlag(features.flags.at(row.type))});
    }
    for (const uint32_t number :
         {0U,  1U,  2U,  3U,  4U,  5U,  6U,  7U,  8U,  9U,  10U, 11U, 12U,         13U,        14U,
          15U, 16U, 17U, 18U, 19U, 20U, 21U, 22U, 23U, 24U, 25U, 26U, 0x7fffffffU, 0xffffffffU}) {
        const auto flag = features.flags.find(static_cast<ConfigType>(number));
        questions.push_back({"getFlag(" + std::to_string(number) + ")",
                             [=] {
                                 return ask(*service, MLK_METHOD(IMlkTvConfigs, getFlag),
                                            static_cast<ConfigType>(number));
                             },
                             flag != features.flags.end() ? textOfFlag(flag->second)
                                                          : textOf(OptionalBool{false, false})});
    }
    return questions;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
