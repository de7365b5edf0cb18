// The model of a new product line, and the files that lead to it.

#include "tools/mlktree/Starter.h"

namespace mlk::tree {

namespace {

constexpr const char* kReadme = R"(# The product line of {MAKER}

| file | what it is |
|---|---|
| `tvconfigs/customer.ini` | where the service begins: customer and list of models |
| `tvconfigs/system/models.ini` | the list of models |
| `tvconfigs/model/{MODEL}.ini` | the one model; its lines name the other files |
| `tvconfigs/tv.config` | TV features: analogue system 0 is PAL and SECAM, 1 NTSC; digital system 1 is DVB, 2 ATSC, 3 ISDB, 4 DTMB. No blanks around `=`. A change on the set rewrites the file without its comments, so it has none |
| `tvconfigs/audio/panel.ini`, `tvconfigs/audio/audio_chassis.ini` | sound delays of the panel and of the chassis |
| `tvconfigs/country/countries.txt` | countries that the menu offers, one a line: name, comma, remark |
| `tvconfigs/language/languages.txt` | languages that the menu offers, in the same form |
| `tvconfigs/freqtables/` | channel plans, and the map that gives each country its plan |
| `tvconfigs/tvsysmap/` | what a country changes in a model |
| `tvdata/` | what a set keeps; the service writes the country here |
| `impdata/project_id.bin` | the index of this set's model |
| `impdata/board_id.bin` | the path of this set's board file, or `DEFAULT_BOARD_ID` for none |
| `data/property/` | system properties on a workstation, one file a property, without a line end |
| `mlktree.toml` | settings of `mlktree check` |

`mlktree check` finds mistakes. `MLK_ROOT=. PATH_OF_MLKCONFIGS/run` starts the service on a copy of this folder.
)";

constexpr const char* kSettings = R"(# Settings of mlktree. Paths are relative to this folder.

# Items that only the line's own programs read. check then knows their types, and explain shows the
# remarks.
[[key]]
section = "[PANEL]"
key = "m_nActiveWidth"
type = "integer"
least = 640
most = 15360
remark = "pixels of a line; the launcher chooses its icons by it"

# [[rule]] switches a rule off or gives it another severity, [[allow]] allows single findings:
#
# [[rule]]
# rule = "unused-file"
# files = "tvconfigs/factory/**"
# severity = "off"
# reason = "the programs of the plant read these"
)";

constexpr const char* kCustomer =
        R"(# The service looks for its two keywords anywhere in a line, comments included, so no comment
# may spell one out.
CUSTOMER_ID = {MAKER}
SYS_INI     = "/tvconfigs/system/models.ini"
)";

constexpr const char* kSystem =
        R"(# The models. The number is the index that a set keeps in project_id.bin: once shipped, it stays.
# Keep remarks off these lines, and do not comment a model out: its line would still count.
Model_1 = "/tvconfigs/model/{MODEL}.ini"
)";

constexpr const char* kModel =
        R"(# {MODEL}: everything that the service looks for. An item without a value is an empty text; getConfig
# also answers any item that you add. A "#" begins a comment anywhere in a line. Paths begin with the
# name of a partition: /tvconfigs, /tvdata or /impdata.

[PROJECT_NAME_CFG]
PROJECT_NAME = "{MODEL}"

[CLIENT_TYPE_INFO]
CLIENT_TYPE = RETAIL

[MODEL_REGION_NAME_CFG]
REGION_NAME = EUROPE

[PANEL]
m_pPanelName   = "PANEL-1"
m_nActiveWidth = 3840  # of the line's own; mlktree.toml declares it

[OVERSCAN]
OVERSCAN_PATH =

[SSC]
m_pSSCName =

[MISC_PQ_MAP_CFG]
PQ =

[DIGITAL_AMPLIFIER_CFG]
ST_AMP_SELECTION     =
ST_AMP_SUB_SELECTION =
ST_AMP_ADDR0         = 0x36
ST_AMP_ADDR1         =
ST_EQ0_NAME          =
ST_EQ1_NAME          =

[VOLUME_CURVE_CFG]
VOLUME_CURVE =

[AQ]
AQBin_Path =

[AUDIO]
AUDIO_CONFIG_PATH     = "/tvconfigs/audio/panel.ini"
AUDIO_CONFIG_IC_PATH  =
AUDIO_CONFIG_AVR_PATH =

[KARAOKE]
KARAOKE_CONFIG_PATH =

# EDID of each HDMI socket, for sources of HDMI 1.4, 2.0 and 2.1.
[HDMI_EDID_1]
HDMI_EDID_File_1P4 =
HDMI_EDID_File_2P0 =
HDMI_EDID_File_2P1 =

[HDMI_EDID_2]
HDMI_EDID_File_1P4 =
HDMI_EDID_File_2P0 =
HDMI_EDID_File_2P1 =

[HDMI_EDID_3]
HDMI_EDID_File_1P4 =
HDMI_EDID_File_2P0 =
HDMI_EDID_File_2P1 =

[HDMI_EDID_4]
HDMI_EDID_File_1P4 =
HDMI_EDID_File_2P0 =
HDMI_EDID_File_2P1 =

[HDCP_KEY_1X]
HDCP_KEY_File =

[HDCP_KEY_2X]
HDCP_KEY_File =

[PowerOnMode]
ModeStatus = 0  # 0 standby, 1 on, 2 as it was

[PowerLogoMode]
PowerLogoPath =

[BootAnimation]
FileName =

[LiveTV]
TvConfig              = "/tvconfigs/tv.config"
inputSource           = "TV,HDMI1,HDMI2,USB"
tuner_type            = T2
DPVR                  = false  # exactly "true" switches it on
Hbbtv                 = false
TvChannelDatabasePath =
LaunchCLTVByCountry   =
SubtitleDefault       = off    # of the line's own; the country replaces it

[Tuner]
TP0_FE = TUNER-1
TP1_FE =

[COUNTRY]
COUNTRY_PATH = "/tvconfigs/country/countries.txt"
tvSysMap     = "/tvconfigs/tvsysmap/systems.xml"

[FREQTABLE]
FREQ_TABLE_PATH = "/tvconfigs/freqtables"

[TV_LANGUAGE]
LANGUAGE_PATH = "/tvconfigs/language/languages.txt"

[IR]
IR_CONFIG =

[IRFilter]
IR_Filter =

[KEY]
KEY_CONFIG_PATH =

[DDCCI]
CUSTOMER_DDCCI_PATH =
)";

constexpr const char* kPanelAudio =
        R"(# How much later the picture of this panel is, in ms. Comments have lines of their own here.
[SPEAKER]
HDMI_DELAY = 40
)";

constexpr const char* kHardwareAudio =
        R"(# The delay of the chassis, in ms; the sum of both files counts. The property ro.hardware, here
# "chassis", makes the name of this file.
[SPEAKER]
HDMI_DELAY = 2
)";

// Without comments: the service drops them when a feature changes. README.md explains the file.
constexpr const char* kFeatures = R"(persist.vendor.mlk.tv.atv_system=0
persist.vendor.mlk.tv.enable_atv=false
persist.vendor.mlk.tv.atv_antenna=false
persist.vendor.mlk.tv.atv_cable=false
persist.vendor.mlk.tv.dtv_system=1
persist.vendor.mlk.tv.enable_dtv=true
persist.vendor.mlk.tv.dtv_antenna=true
persist.vendor.mlk.tv.dtv_cable=false
persist.vendor.mlk.tv.dtv_satellite=false
persist.vendor.mlk.tv.enable_pvr=false
persist.vendor.mlk.tv.enable_livepause=false
persist.vendor.mlk.tv.enable_hdmi=true
persist.vendor.mlk.tv.enable_vga=false
persist.vendor.mlk.tv.enable_av=false
persist.vendor.mlk.tv.enable_ypp=false
persist.vendor.mlk.tv.enable_ci=false
persist.vendor.mlk.tv.enable_pip=false
persist.vendor.mlk.tv.enable_mheg5=false
persist.vendor.mlk.tv.enable_ginga=false
persist.vendor.mlk.tv.enable_hbbtv=false
persist.vendor.mlk.tv.enable_tt=true
persist.vendor.mlk.tv.enable_cc=false
persist.vendor.mlk.tv.enable_atsc_cc=false
persist.vendor.mlk.tv.enable_ntsc_cc=false
persist.vendor.mlk.tv.enable_isdb_cc=false
persist.vendor.mlk.enable_wow=false
)";

}  // namespace

std::vector<StarterFile> starterModel() {
    return {
            {"README.md", kReadme},
            {"mlktree.toml", kSettings},
            {"tvconfigs/customer.ini", kCustomer},
            {"tvconfigs/system/models.ini", kSystem},
            {"tvconfigs/model/{MODEL}.ini", kModel},
            {"tvconfigs/tv.config", kFeatures},
            {"tvconfigs/audio/panel.ini", kPanelAudio},
            {"tvconfigs/audio/audio_chassis.ini", kHardwareAudio},
            {"impdata/project_id.bin", "PROJECT_ID=1\n"},
            {"impdata/board_id.bin", "BOARD_ID=DEFAULT_BOARD_ID\n"},
            {"data/property/ro.hardware", "chassis"},
    };
}

}  // namespace mlk::tree
