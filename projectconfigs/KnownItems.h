#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "common/ConfigKey.h"
#include "common/FileFormat.h"
#include "common/ValueType.h"
#include "regional/RegionalNames.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The items that the set reads for itself: each names a file or a folder. */
namespace item {

inline constexpr ConfigKey kPanelAudio("[AUDIO]", "AUDIO_CONFIG_PATH");
inline constexpr ConfigKey kICAudio("[AUDIO]", "AUDIO_CONFIG_IC_PATH");
inline constexpr ConfigKey kAvrAudio("[AUDIO]", "AUDIO_CONFIG_AVR_PATH");
inline constexpr ConfigKey kKaraoke("[KARAOKE]", "KARAOKE_CONFIG_PATH");
inline constexpr ConfigKey kGlobalKeys("[KEY]", "KEY_CONFIG_PATH");
inline constexpr ConfigKey kCustomerDdcci("[DDCCI]", "CUSTOMER_DDCCI_PATH");
inline constexpr ConfigKey kCountries("[COUNTRY]", "COUNTRY_PATH");
inline constexpr ConfigKey kCLTVCountries("[LiveTV]", "LaunchCLTVByCountry");
inline constexpr ConfigKey kTvSystems("[COUNTRY]", "tvSysMap");
inline constexpr ConfigKey kLanguages("[TV_LANGUAGE]", "LANGUAGE_PATH");
inline constexpr ConfigKey kChannelPlans("[FREQTABLE]", "FREQ_TABLE_PATH");

}  // namespace item

/** What the service knows of one item of the project store. */
struct KnownItem {
    ConfigKey name;
    ValueType type;
    FileFormat names; /**< the format of the file that the value names */
    /**
     * The methods of IMlkProjectConfigs that the item decides, with the arguments that choose it;
     * null after the last. An interface by its name stands for all its methods.
     */
    std::array<const char*, 2> readers;
    const char* note = ""; /**< what else there is to know of the value */
    int32_t least = 0;     /**< lowest number that is answered; only of an INTEGER */
    int32_t most = 0;      /**< highest number that is answered; only of an INTEGER */
};

/**
 * All items of the project store that the service reads, in the order of the documents. The getters
 * find theirs here (ProjectItems.h). The items of one getter stand together, section by section.
 *
 * Clients may ask getConfig and getConfigsByCategory for any other item.
 */
inline constexpr KnownItem kKnownItems[] = {
        {{"[CLIENT_TYPE_INFO]", "CLIENT_TYPE"},
         ValueType::TEXT,
         FileFormat::NONE,
         {"getClientType"}},
        {{"[PROJECT_NAME_CFG]", "PROJECT_NAME"},
         ValueType::TEXT,
         FileFormat::NONE,
         {"getProjectName"}},
        {{"[PANEL]", "m_pPanelName"}, ValueType::TEXT, FileFormat::NONE, {"getPanelName"}},
        {{"[OVERSCAN]", "OVERSCAN_PATH"}, ValueType::PATH, FileFormat::OPAQUE, {"getOverscanPath"}},
        {{"[SSC]", "m_pSSCName"}, ValueType::PATH, FileFormat::OPAQUE, {"getSSCPath"}},
        {{"[MISC_PQ_MAP_CFG]", "PQ"}, ValueType::PATH, FileFormat::OPAQUE, {"getPQPath"}},
        {{"[DIGITAL_AMPLIFIER_CFG]", "ST_EQ0_NAME"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getEQPath 0"}},
        {{"[DIGITAL_AMPLIFIER_CFG]", "ST_EQ1_NAME"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getEQPath 1"}},
        {{"[DIGITAL_AMPLIFIER_CFG]", "ST_AMP_SELECTION"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getAMPSelection AMP_MAIN"}},
        {{"[DIGITAL_AMPLIFIER_CFG]", "ST_AMP_SUB_SELECTION"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getAMPSelection AMP_SUB"}},
        {{"[DIGITAL_AMPLIFIER_CFG]", "ST_AMP_ADDR0"},
         ValueType::TEXT,
         FileFormat::NONE,
         {"getAMPAddr 0"},
         "such as `0x36`"},
        {{"[DIGITAL_AMPLIFIER_CFG]", "ST_AMP_ADDR1"},
         ValueType::TEXT,
         FileFormat::NONE,
         {"getAMPAddr 1"},
         "such as `0x37`"},
        {{"[VOLUME_CURVE_CFG]", "VOLUME_CURVE"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getVolumeCurve"}},
        {{"[AQ]", "AQBin_Path"}, ValueType::PATH, FileFormat::OPAQUE, {"getAQPath"}},
        {{"[HDMI_EDID_1]", "HDMI_EDID_File_1P4"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 0 EDID_1P4"}},
        {{"[HDMI_EDID_1]", "HDMI_EDID_File_2P0"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 0 EDID_2P0"}},
        {{"[HDMI_EDID_1]", "HDMI_EDID_File_2P1"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 0 EDID_2P1"}},
        {{"[HDMI_EDID_2]", "HDMI_EDID_File_1P4"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 1 EDID_1P4"}},
        {{"[HDMI_EDID_2]", "HDMI_EDID_File_2P0"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 1 EDID_2P0"}},
        {{"[HDMI_EDID_2]", "HDMI_EDID_File_2P1"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 1 EDID_2P1"}},
        {{"[HDMI_EDID_3]", "HDMI_EDID_File_1P4"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 2 EDID_1P4"}},
        {{"[HDMI_EDID_3]", "HDMI_EDID_File_2P0"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 2 EDID_2P0"}},
        {{"[HDMI_EDID_3]", "HDMI_EDID_File_2P1"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 2 EDID_2P1"}},
        {{"[HDMI_EDID_4]", "HDMI_EDID_File_1P4"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 3 EDID_1P4"}},
        {{"[HDMI_EDID_4]", "HDMI_EDID_File_2P0"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 3 EDID_2P0"}},
        {{"[HDMI_EDID_4]", "HDMI_EDID_File_2P1"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIEdidPath 3 EDID_2P1"}},
        {{"[HDCP_KEY_1X]", "HDCP_KEY_File"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIHdcpPath HDCP_1X"}},
        {{"[HDCP_KEY_2X]", "HDCP_KEY_File"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getHDMIHdcpPath HDCP_2X"}},
        {{"[PowerOnMode]", "ModeStatus"},
         ValueType::INTEGER,
         FileFormat::NONE,
         {"getPowerOnMode"},
         "no answer outside of the range",
         0,
         2},
        {{"[PowerLogoMode]", "PowerLogoPath"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getPowerLogoPath"}},
        {{"[BootAnimation]", "FileName"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getBootAnimationPath"}},
        {{"[LiveTV]", "inputSource"}, ValueType::TEXT, FileFormat::NONE, {"getInputSource"}},
        {{"[LiveTV]", "tuner_type"}, ValueType::TEXT, FileFormat::NONE, {"getTunerType"}},
        {{"[LiveTV]", "DPVR"}, ValueType::SWITCH, FileFormat::NONE, {"getDPVREnabled"}},
        {{"[LiveTV]", "Hbbtv"}, ValueType::SWITCH, FileFormat::NONE, {"getHBBTVEnabled"}},
        {{"[LiveTV]", "TvChannelDatabasePath"},
         ValueType::PATH,
         FileFormat::OPAQUE,
         {"getTvChannelDatabasePath"}},
        {kTvConfigItem,
         ValueType::PATH,
         FileFormat::TV_FEATURES,
         {"IMlkTvConfigs"},
         "the country may replace it"},
        {item::kCLTVCountries, ValueType::PATH, FileFormat::COUNTRY_LIST, {"getCLTVCountryList"}},
        {{"[IR]", "IR_CONFIG"}, ValueType::PATH, FileFormat::OPAQUE, {"getIRConfig"}},
        {{"[IRFilter]", "IR_Filter"},
         ValueType::TEXT,
         FileFormat::NONE,
         {"getIRFilter"},
         "or a path"},
        {{"[MODEL_REGION_NAME_CFG]", "REGION_NAME"},
         ValueType::TEXT,
         FileFormat::NONE,
         {"getRegionName"}},
        {{"[Tuner]", "TP0_FE"}, ValueType::TEXT, FileFormat::NONE, {"getTunerConfig 0"}},
        {{"[Tuner]", "TP1_FE"}, ValueType::TEXT, FileFormat::NONE, {"getTunerConfig 1"}},
        {item::kPanelAudio,
         ValueType::PATH,
         FileFormat::AUXILIARY,
         {"getAudioDelay"},
         "sound delays of the panel"},
        {item::kICAudio,
         ValueType::PATH,
         FileFormat::AUXILIARY,
         {"getAudioDelay"},
         "sound delays of the audio IC"},
        {item::kAvrAudio,
         ValueType::PATH,
         FileFormat::AUXILIARY,
         {"getAudioDelay"},
         "sound delays of any AVR; the files of single AVRs lie beside it"},
        {item::kKaraoke,
         ValueType::PATH,
         FileFormat::AUXILIARY,
         {"getKaraokeConfig"},
         "karaoke settings"},
        {item::kGlobalKeys,
         ValueType::PATH,
         FileFormat::AUXILIARY,
         {"getGlobalKeyConfig"},
         "functions of the keys"},
        {item::kCustomerDdcci,
         ValueType::PATH,
         FileFormat::AUXILIARY,
         {"getCustomerDdcciConfigInt", "getCustomerDdcciConfigString"},
         "DDC/CI settings"},
        {item::kCountries, ValueType::PATH, FileFormat::COUNTRY_LIST, {"getCountryList"}},
        {item::kTvSystems,
         ValueType::PATH,
         FileFormat::TV_SYSTEMS,
         {"isSupportTvSysReload", "setCountryId"},
         "empty: the set has no TV systems"},
        {item::kLanguages, ValueType::PATH, FileFormat::LANGUAGE_LIST, {"getLanguageList"}},
        {item::kChannelPlans,
         ValueType::FOLDER,
         FileFormat::CHANNEL_PLANS,
         {"getFreqTableList"},
         "empty: `/freqtables` on tvconfigs"},
};

/** The row of an item; null for one that only clients know. */
constexpr const KnownItem* findKnownItem(const ConfigKey& name) {
    for (const KnownItem& row : kKnownItems) {
        if (row.name.category == name.category && row.name.key == name.key) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
