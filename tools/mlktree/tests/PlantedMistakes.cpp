// The mistakes that people make in a product line, one a row.

#include "tools/mlktree/tests/PlantedMistakes.h"

namespace mlk::tree {

namespace {

constexpr auto kReplace = Planting::REPLACE;
constexpr auto kAppend = Planting::APPEND;
constexpr auto kWhole = Planting::WHOLE;
constexpr auto kRemove = Planting::REMOVE;

constexpr const char* kCustomer = "tvconfigs/customer.ini";
constexpr const char* kSystem = "tvconfigs/system/tarnquill_skerry.ini";
constexpr const char* kModel = "tvconfigs/model/TRQ43_M2_EU.ini";
constexpr const char* kOther = "tvconfigs/model/TRQ50_M2_NA.ini";
constexpr const char* kBoard = "tvconfigs/board/skerry_b2.ini";
constexpr const char* kPanel = "tvconfigs/audio/panel_osmr_uhd60.ini";
constexpr const char* kKeys = "tvconfigs/keys/keys_joystick.ini";
constexpr const char* kFeatures = "tvconfigs/tv/tv_eu.config";
constexpr const char* kList = "tvconfigs/country/country_eu.txt";
constexpr const char* kCountries = "tvconfigs/tvsysmap/countries_eu.xml";
constexpr const char* kTvSystems = "tvconfigs/tvsysmap/tvsys_eu.xml";
constexpr const char* kPlanMap = "tvconfigs/freqtables/country_freq_map.xml";
constexpr const char* kPlan = "tvconfigs/freqtables/dtv/freqtable_eu";
constexpr const char* kProjectId = "impdata/project_id.bin";
constexpr const char* kBoardId = "impdata/board_id.bin";

const std::string kLongLine = "REMARK = " + std::string(1100, 'x') + "\n";
const std::string kLongEntry = "GERMANY," + std::string(300, 'x') + "\n";

}  // namespace

const std::vector<PlantedMistake>& plantedMistakes() {
    static const std::vector<PlantedMistake> mistakes = {
            // Names.
            {"TypoInKey", kModel, kReplace, "m_pPanelName ", "m_pPanleName ", "misspelt-key",
             nullptr, "m_pPanleName"},
            {"KeyInOtherCase", kModel, kReplace, "tuner_type ", "Tuner_Type ", "misspelt-key",
             nullptr, "Tuner_Type"},
            {"TypoInKeyOfBoard", kBoard, kReplace, "m_pSSCName ", "m_pSSCNmae ", "misspelt-key",
             nullptr, "m_pSSCNmae"},
            {"TypoInOwnKey", kModel, kReplace, "BL_STRINGS ", "BL_STRNGS ", "unlike-other-models",
             nullptr, "BL_STRNGS"},
            {"SectionInOtherCase", kModel, kReplace, "[PANEL] ", "[Panel] ", "misspelt-section",
             nullptr, "[Panel]"},
            {"SectionOfBoardInOtherCase", kBoard, kReplace, "[SSC]", "[Ssc]", "misspelt-section",
             nullptr, "[Ssc]"},
            {"OwnSectionMisspelt", kModel, kReplace, "[THERMAL]", "[THREMAL]",
             "unlike-other-models", nullptr, "[THREMAL]"},
            {"OwnSectionOfBoardInOtherCase", kBoard, kReplace, "[THERMAL] ", "[Thermal] ",
             "unlike-other-models", nullptr, "[Thermal]"},
            {"KeyInOtherSection", kModel, kReplace,
             "[Tuner]   # T2/C on path 0, S2 on path 1\n"
             "TP0_FE             = ZDR410_T2C\n",
             "TP0_FE             = ZDR410_T2C\n[Tuner]\n", "misplaced-key", nullptr, "TP0_FE "},
            {"ItemMissing", kOther, kReplace,
             "ModeStatus       = 2  # 0 standby, 1 on, 2 as it was\n", "", "missing-item", nullptr,
             "[PowerOnMode]"},
            {"OwnItemMissing", kOther, kReplace, "BL_DUTY_MIN ", "#BL_DUTY_MIN ",
             "own-item-missing", nullptr, "[BACKLIGHT]"},
            // Lines.
            {"LineWithoutEquals", kModel, kReplace, "PROJECT_STAGE   = MP", "PROJECT_STAGE   MP",
             "no-equals", nullptr, "PROJECT_STAGE"},
            {"SectionWithoutFirstBracket", kModel, kReplace, "[OVERSCAN]", "OVERSCAN]",
             "broken-section", nullptr, "OVERSCAN]"},
            {"SectionWithoutLastBracket", kModel, kReplace, "[OVERSCAN]", "[OVERSCAN",
             "broken-section", nullptr, "[OVERSCAN"},
            {"IndentedSection", kModel, kReplace, "[OVERSCAN]", " [OVERSCAN]", "broken-section",
             nullptr, " [OVERSCAN]"},
            {"TabBeforeEquals", kModel, kReplace, "OVERSCAN_PATH =", "OVERSCAN_PATH\t=", "tab",
             nullptr, "OVERSCAN_PATH"},
            {"IndentedComment", kModel, kReplace, "# Lines as the", "  # Lines as the",
             "indented-comment", nullptr, "# Lines as the"},
            {"SemicolonComment", kModel, kReplace, "m_nLanes ", ";m_nLanes ", "semicolon-comment",
             nullptr, ";m_nLanes"},
            {"OverLongLine", kModel, kAppend, "", kLongLine, "long-line", nullptr, "REMARK"},
            {"OverLongEntry", kList, kAppend, "", kLongEntry, "long-line", nullptr, "xxxx"},
            {"MarkInModel", kModel, kReplace, "# Tarnquill", "\xEF\xBB\xBF# Tarnquill",
             "byte-order-mark", nullptr, "# Tarnquill"},
            {"MarkInList", kList, kReplace, "GERMANY", "\xEF\xBB\xBFGERMANY", "byte-order-mark",
             nullptr, "GERMANY"},
            {"MarkInPlan", kPlan, kReplace, "// DVB-T/T2", "\xEF\xBB\xBF// DVB-T/T2",
             "byte-order-mark", nullptr, "// DVB-T/T2"},
            {"CarriageReturnsInSystemFile", kSystem, Planting::REPLACE_EACH, "\n", "\r\n",
             "carriage-return", nullptr, "Model_1 ="},
            {"Latin1", kModel, kReplace, "Marl 43", "M\xE4rl 43", "not-utf8", nullptr, "rl 43"},
            // Values.
            {"SemicolonsInList", kModel, kReplace, "TV,AV,HDMI1", "TV;AV;HDMI1", "vanishing-symbol",
             nullptr, "TV;AV"},
            {"HashInValue", kModel, kReplace, "= Marl", "= LC#400", "cut-value", nullptr, "LC#400"},
            {"SwitchInOtherCase", kModel, kReplace, "= true  # exactly", "= True  # exactly",
             "item-switch", nullptr, "= True"},
            {"SwitchAsNumber", kOther, kReplace, "Hbbtv                  = false",
             "Hbbtv                  = 1", "item-switch", nullptr, "Hbbtv "},
            {"NumberOutOfRange", kModel, kReplace, "ModeStatus       = 0", "ModeStatus       = 5",
             "item-number", nullptr, "ModeStatus "},
            {"HexadecimalNumber", kModel, kReplace, "ModeStatus       = 0",
             "ModeStatus       = 0x1", "item-number", nullptr, "ModeStatus "},
            {"NumberMissing", kModel, kReplace, "ModeStatus       = 0",
             "ModeStatus       =", "item-number", nullptr, "ModeStatus "},
            {"OwnValueOutOfRange", kOther, kReplace, "BL_DUTY_MIN       = ",
             "BL_DUTY_MIN       = 20", "own-value", nullptr, "BL_DUTY_MIN "},
            {"KeyTwice", kModel, kReplace, "m_nLanes         = 8;",
             "m_nLanes         = 8;\nm_nLanes         = 4;", "key-twice", nullptr,
             "m_nLanes         = 4"},
            // Paths.
            {"AudioFileMissing", kPanel, kRemove, "", "", "missing-file", kModel,
             "AUDIO_CONFIG_PATH "},
            {"SpreadSpectrumFileMissing", "tvconfigs/ssc/ssc_b2.ini", kRemove, "", "",
             "missing-file", kBoard, "m_pSSCName"},
            {"ModelFileInOtherCase", kSystem, kReplace, "TRQ43_M2_EU", "TRQ43_m2_EU",
             "missing-file", nullptr, "TRQ43_m2_EU"},
            {"FileInOtherCase", kModel, kReplace, "pq/pq_trq43.bin", "PQ/pq_trq43.bin",
             "missing-file", nullptr, "PQ/pq_trq43"},
            {"OwnFileMissing", kModel, kReplace, "gamma_uhd.bin", "gama_uhd.bin", "missing-file",
             nullptr, "gama_uhd"},
            {"SystemFileMissing", kSystem, kRemove, "", "", "missing-file", kCustomer, "SYS_INI "},
            {"CustomerFileMissing", kCustomer, kRemove, "", "", "missing-file", nullptr, ""},
            {"BoardFileMissing", kBoardId, kReplace, "skerry_b2", "skerry_b3", "missing-file",
             nullptr, "skerry_b3"},
            {"PartitionWithoutSlash", kModel, kReplace, "/tvdata/channels/", "/tvdatachannels/",
             "partition-prefix", nullptr, "/tvdatachannels"},
            {"PartitionMisspelt", kModel, kReplace, "/tvconfigs/logo", "/tvconfig/logo",
             "partition-prefix", nullptr, "/tvconfig/logo"},
            {"RelativePath", kModel, kReplace, "\"/tvconfigs/keys", "\"tvconfigs/keys",
             "relative-path", nullptr, "\"tvconfigs/keys"},
            {"PathOfFolder", kModel, kReplace, "/tvconfigs/ir/remote_voice.ini", "/tvconfigs/ir",
             "unusable-file", nullptr, "IR_CONFIG "},
            {"FolderInPlaceOfFile", kKeys, Planting::FOLDER, "", "", "unusable-file", kModel,
             "KEY_CONFIG_PATH"},
            // Customer file, models, identity.
            {"SystemFileNotNamed", kCustomer, kReplace, "SYS_INI  ", "SYSINI  ", "misspelt-keyword",
             nullptr, "SYSINI"},
            {"CustomerIdMissing", kCustomer, kReplace, "CUSTOMER_ID   = TARNQUILL\n", "",
             "incomplete-chain", nullptr, ""},
            {"IndexOfNoModel", kProjectId, kReplace, "2", "9", "model-index", nullptr, "9"},
            {"KeywordMisspelt", kProjectId, kWhole, "", "PROJECTID=1\n", "identity-keyword",
             nullptr, "PROJECTID"},
            {"IndexIsNoNumber", kProjectId, kWhole, "", "PROJECT_ID=two\n", "identity-number",
             nullptr, "two"},
            {"IdentityEmpty", kProjectId, kWhole, "", "", "identity-keyword", nullptr, ""},
            {"BlankAfterDefault", kBoardId, kWhole, "", "BOARD_ID=DEFAULT_BOARD_ID \n",
             "board-value", nullptr, "DEFAULT"},
            {"CarriageReturnAfterDefault", kBoardId, kWhole, "", "BOARD_ID=DEFAULT_BOARD_ID\r\n",
             "board-value", nullptr, "DEFAULT"},
            {"IndexTwice", kSystem, kReplace, "Model_2", "Model_1", "same-index", nullptr,
             "TRQ43_M2_EU"},
            {"IndexIsNoNumberInList", kSystem, kReplace, "Model_4", "Model_four", "model-number",
             nullptr, "Model_four"},
            {"ModelCommentedOut", kSystem, kReplace, "Model_4 =", "#Model_4 =", "commented-keyword",
             nullptr, "#Model_4"},
            {"ModelKeywordInOtherCase", kSystem, kReplace, "Model_4", "MODEL_4", "misspelt-keyword",
             nullptr, "MODEL_4"},
            {"RemarkAfterModel", kSystem, kReplace, "TRQ50_M2_NA.ini\"",
             "TRQ50_M2_NA.ini\" # North America", "model-remark", nullptr, "# North America"},
            {"ModelOutsideOfItsFolder", kSystem, kReplace, "/tvconfigs/model/TRQ50",
             "/tvconfigs/TRQ50", "missing-file", nullptr, "/tvconfigs/TRQ50"},
            {"ModelNotNamed", kSystem, kReplace, "Model_6 = \"/tvconfigs/model/TRQ65_C3_UK.ini\"\n",
             "", "unnamed-model", "tvconfigs/model/TRQ65_C3_UK.ini", ""},
            // Audio, karaoke, keys, DDC/CI.
            {"KeyTwiceInAudio", kPanel, kReplace, "ATV_DELAY       = 84",
             "ATV_DELAY       = 84\nATV_DELAY       = 90", "key-twice", nullptr,
             "ATV_DELAY       = 90"},
            {"HexadecimalDelay", kPanel, kReplace, "= 68", "= 0x44", "delay-number", nullptr,
             "0x44"},
            {"DelayWithoutValue", kPanel, kReplace, "DTV_DELAY       = 68",
             "DTV_DELAY       =", "no-value", nullptr, "DTV_DELAY"},
            {"DelayWithUnit", kPanel, kReplace, "= 68", "= 68ms", "delay-number", nullptr, "68ms"},
            {"RemarkAfterSection", kPanel, kReplace, "[SPDIF]", "[SPDIF] # optical",
             "text-after-section", nullptr, "[SPDIF]"},
            // TV features.
            {"KeyTwiceInFeatures", kFeatures, kAppend, "",
             "persist.vendor.mlk.tv.enable_pvr=false\n", "key-twice", nullptr,
             "persist.vendor.mlk.tv.enable_pvr=false"},
            {"FeatureInOtherCase", kFeatures, kReplace, "enable_ci=true", "enable_ci=True",
             "feature-value", nullptr, "enable_ci="},
            {"FeatureWithBlanks", kFeatures, kReplace, "enable_hdmi=true", "enable_hdmi = true",
             "feature-blanks", nullptr, "enable_hdmi"},
            {"FeaturesWithoutLastLineEnd", kFeatures, Planting::CUT_END, "", "", "unended-line",
             nullptr, "enable_isdb_cc"},
            {"FeatureMisspelt", kFeatures, kReplace, "enable_livepause", "enable_livepuase",
             "misspelt-feature", nullptr, "enable_livepuase"},
            {"FeatureUnknown", kFeatures, kAppend, "", "persist.vendor.mlk.tv.colour=true\n",
             "unknown-feature", nullptr, "tv.colour"},
            {"SystemOutOfRange", kFeatures, kReplace, "dtv_system=1", "dtv_system=7",
             "feature-value", nullptr, "dtv_system="},
            {"RemarkAfterFeature", kFeatures, kReplace, "enable_ci=true", "enable_ci=true # slot",
             "remark-in-value", nullptr, "enable_ci="},
            // Properties.
            {"PropertyIsNoSwitch", "data/property/persist.vendor.mlk.enstr", kWhole, "", "True",
             "property-value", nullptr, "True"},
            {"PropertyWithLineEnd", "data/property/ro.hardware", kAppend, "", "\n",
             "property-line-end", nullptr, "skerry"},
            {"HardwareMisspelt", "data/property/ro.hardware", kWhole, "", "skery", "hardware-audio",
             nullptr, "skery"},
            {"HardwareAudioMissing", "tvconfigs/audio/audio_skerry.ini", kRemove, "", "",
             "hardware-audio", "data/property/ro.hardware", "skerry"},
            {"PropertyMisspelt", "data/property/persist.vendor.mlk.forcestr", Planting::MOVE, "",
             "data/property/persist.vendor.mlk.force_str", "misspelt-property",
             "data/property/persist.vendor.mlk.force_str", "0"},
            // Countries, TV systems, plans.
            {"CountryMisspeltInList", kList, kReplace, "AUSTRIA", "AUSTIRA", "unknown-country",
             nullptr, "AUSTIRA"},
            {"CountryInOtherCase", kList, kReplace, "AUSTRIA", "Austria", "unknown-country",
             nullptr, "Austria"},
            {"CountryMisspeltInMap", kCountries, kReplace, "AUSTRIA", "AUSTIRA", "unknown-country",
             nullptr, "AUSTIRA"},
            {"TvSystemUndefined", kCountries, kReplace, "DVB_WEST", "DVB_WETS",
             "undefined-tv-system", nullptr, "DVB_WETS"},
            {"KeyOfTvSystemMisspelt", kTvSystems, kReplace, "LcnDefault", "LcnDefualt",
             "misspelt-item", nullptr, "LcnDefualt"},
            {"CategoryWithoutBrackets", kTvSystems, kReplace, "category=\"[LiveTV]\"",
             "category=\"LiveTV\"", "category-without-brackets", nullptr, "category=\"LiveTV\""},
            {"BrokenXml", kCountries, kReplace, "</COUNTRY_NAME>", "</COUNTRY_NAM>",
             "malformed-xml", nullptr, "</COUNTRY_NAM>"},
            {"ColumnsSwapped", kPlan, kReplace, "5, 7000000, 177500", "5, 177500, 7000000",
             "implausible-channel", nullptr, "5, 177500, 7000000"},
            {"ColumnLeftOut", kPlan, kReplace, "5, 7000000, 177500, E5", "5, 177500, E5",
             "channel-without-frequency", nullptr, "5, 177500, E5"},
            {"PlanMissing", "tvconfigs/freqtables/dtv/freqtable_dvbt_russia", kRemove, "", "",
             "missing-file", kPlanMap, "freqtable_dvbt_russia"},
            {"AntennaWithTwoN", kPlanMap, kReplace, "<DTV_ANTENA>freqtable_eu</DTV_ANTENA>",
             "<DTV_ANTENNA>freqtable_eu</DTV_ANTENNA>", "unknown-element", nullptr, "DTV_ANTENNA"},
            {"CableTypeUnknown", kPlanMap, kReplace, "TYPE=\"AUTO\"", "TYPE=\"ANY\"", "cable-type",
             nullptr, "TYPE=\"ANY\""},
            {"ModulationUnknown", kPlan, kReplace, "E5, DVB_AUTO", "E5, DVBT_AUTO",
             "unknown-modulation", nullptr, "DVBT_AUTO"},
            {"ChannelTwice", kPlan, kReplace, "6, 7000000, 184500, E6, DVB_AUTO",
             "6, 7000000, 184500, E6, DVB_AUTO\n6, 7000000, 184500, E6, DVB_AUTO",
             "repeated-channel", nullptr, ""},
    };
    return mistakes;
}

}  // namespace mlk::tree
