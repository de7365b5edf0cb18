#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/RowOf.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * One getter of IMlkProjectConfigs that answers with an item of the project store.
 *
 * A selector, counted from 0, chooses among the sections or the keys. A method without a selector
 * has one section and one key.
 */
struct ProjectItemRow {
    const char* method;
    std::array<const char*, 4> sections;  // in order; null after the last
    std::array<const char*, 3> keys;      // in order; null after the last
    const char* otherKey = nullptr;       // key for every further selector; null: no answer
};

/** All such getters, in the order of the interface. */
inline constexpr ProjectItemRow kProjectItems[] = {
        {"getClientType", {"[CLIENT_TYPE_INFO]"}, {"CLIENT_TYPE"}},
        {"getProjectName", {"[PROJECT_NAME_CFG]"}, {"PROJECT_NAME"}},
        {"getPanelName", {"[PANEL]"}, {"m_pPanelName"}},
        {"getOverscanPath", {"[OVERSCAN]"}, {"OVERSCAN_PATH"}},
        {"getSSCPath", {"[SSC]"}, {"m_pSSCName"}},
        {"getPQPath", {"[MISC_PQ_MAP_CFG]"}, {"PQ"}},
        {"getEQPath", {"[DIGITAL_AMPLIFIER_CFG]"}, {"ST_EQ0_NAME", "ST_EQ1_NAME"}},
        {"getAMPSelection",
         {"[DIGITAL_AMPLIFIER_CFG]"},
         {"ST_AMP_SELECTION", "ST_AMP_SUB_SELECTION"}},
        {"getAMPAddr", {"[DIGITAL_AMPLIFIER_CFG]"}, {"ST_AMP_ADDR0", "ST_AMP_ADDR1"}},
        {"getVolumeCurve", {"[VOLUME_CURVE_CFG]"}, {"VOLUME_CURVE"}},
        {"getAQPath", {"[AQ]"}, {"AQBin_Path"}},
        {"getHDMIEdidPath",
         {"[HDMI_EDID_1]", "[HDMI_EDID_2]", "[HDMI_EDID_3]", "[HDMI_EDID_4]"},
         {"HDMI_EDID_File_1P4", "HDMI_EDID_File_2P0", "HDMI_EDID_File_2P1"},
         ""},
        {"getHDMIHdcpPath", {"[HDCP_KEY_1X]", "[HDCP_KEY_2X]"}, {"HDCP_KEY_File"}},
        {"getPowerOnMode", {"[PowerOnMode]"}, {"ModeStatus"}},
        {"getPowerLogoPath", {"[PowerLogoMode]"}, {"PowerLogoPath"}},
        {"getBootAnimationPath", {"[BootAnimation]"}, {"FileName"}},
        {"getInputSource", {"[LiveTV]"}, {"inputSource"}},
        {"getTunerType", {"[LiveTV]"}, {"tuner_type"}},
        {"getDPVREnabled", {"[LiveTV]"}, {"DPVR"}},
        {"getHBBTVEnabled", {"[LiveTV]"}, {"Hbbtv"}},
        {"getIRConfig", {"[IR]"}, {"IR_CONFIG"}},
        {"getRegionName", {"[MODEL_REGION_NAME_CFG]"}, {"REGION_NAME"}},
        {"getTunerConfig", {"[Tuner]"}, {"TP0_FE", "TP1_FE"}},
        {"getTvChannelDatabasePath", {"[LiveTV]"}, {"TvChannelDatabasePath"}},
        {"getIRFilter", {"[IRFilter]"}, {"IR_Filter"}},
};

/** The index of a method's row. */
constexpr size_t projectItem(std::string_view method) {
    return rowOf(kProjectItems, method);
}

/** Section that a selector chooses; null for one that is out of range. */
constexpr const char* sectionOf(const ProjectItemRow& row, uint32_t selector) {
    return selector < row.sections.size() ? row.sections[selector] : nullptr;
}

/** Key that a selector chooses; null for one that is out of range. */
constexpr const char* keyOf(const ProjectItemRow& row, uint32_t selector) {
    const char* const key = selector < row.keys.size() ? row.keys[selector] : nullptr;
    return key != nullptr ? key : row.otherKey;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
