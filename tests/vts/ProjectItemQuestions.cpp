#include <algorithm>
#include <limits>
#include <map>
#include <set>

#include "tests/vts/ProjectQuestions.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;

namespace {

using I = IMlkProjectConfigs;
using TextGetter = Return<void> (I::*)(std::function<void(const OptionalString&)>);

struct ItemRow {
    const char* name;
    TextGetter getter;
    const char* section;
    const char* key;
};

#define ROW(method, section, key) \
    { #method, &I::method, section, key }

constexpr ItemRow kTexts[] = {
        ROW(getClientType, "[CLIENT_TYPE_INFO]", "CLIENT_TYPE"),
        ROW(getProjectName, "[PROJECT_NAME_CFG]", "PROJECT_NAME"),
        ROW(getPanelName, "[PANEL]", "m_pPanelName"),
        ROW(getOverscanPath, "[OVERSCAN]", "OVERSCAN_PATH"),
        ROW(getSSCPath, "[SSC]", "m_pSSCName"),
        ROW(getPQPath, "[MISC_PQ_MAP_CFG]", "PQ"),
        ROW(getVolumeCurve, "[VOLUME_CURVE_CFG]", "VOLUME_CURVE"),
        ROW(getAQPath, "[AQ]", "AQBin_Path"),
        ROW(getPowerLogoPath, "[PowerLogoMode]", "PowerLogoPath"),
        ROW(getBootAnimationPath, "[BootAnimation]", "FileName"),
        ROW(getInputSource, "[LiveTV]", "inputSource"),
        ROW(getTunerType, "[LiveTV]", "tuner_type"),
        ROW(getIRConfig, "[IR]", "IR_CONFIG"),
        ROW(getRegionName, "[MODEL_REGION_NAME_CFG]", "REGION_NAME"),
        ROW(getTvChannelDatabasePath, "[LiveTV]", "TvChannelDatabasePath"),
        ROW(getIRFilter, "[IRFilter]", "IR_Filter"),
};
#undef ROW

// Selectors below and above every range.
constexpr int32_t kSelectors[] = {-1,
                                  0,
                                  1,
                                  2,
                                  3,
                                  4,
                                  std::numeric_limits<int32_t>::min(),
                                  std::numeric_limits<int32_t>::max()};

std::string callText(const char* name, int64_t argument) {
    return std::string(name) + "(" + std::to_string(argument) + ")";
}

// A method whose selector chooses the key. A selector without a key gets no answer.
template <typename Selector>
void addSelections(Questions& questions, const ProjectService& service, const PlainSet& set,
                   const char* name,
                   Return<void> (I::*method)(Selector, std::function<void(const OptionalString&)>),
                   const char* section, const std::vector<const char*>& keys) {
    for (const int32_t selector : kSelectors) {
        const bool known = selector >= 0 && static_cast<size_t>(selector) < keys.size();
        questions.push_back(
                {callText(name, selector),
                 [=] { return ask(*service, name, method, static_cast<Selector>(selector)); },
                 known ? textOfText(set.value(section, keys[static_cast<size_t>(selector)]))
                       : kRefused});
    }
}

void addSelectors(Questions& questions, const ProjectService& service, const PlainSet& set) {
    const char* const amplifier = "[DIGITAL_AMPLIFIER_CFG]";
    addSelections(questions, service, set, MLK_METHOD(I, getEQPath), amplifier,
                  {"ST_EQ0_NAME", "ST_EQ1_NAME"});
    addSelections(questions, service, set, MLK_METHOD(I, getAMPSelection), amplifier,
                  {"ST_AMP_SELECTION", "ST_AMP_SUB_SELECTION"});
    addSelections(questions, service, set, MLK_METHOD(I, getAMPAddr), amplifier,
                  {"ST_AMP_ADDR0", "ST_AMP_ADDR1"});
    addSelections(questions, service, set, MLK_METHOD(I, getTunerConfig), "[Tuner]",
                  {"TP0_FE", "TP1_FE"});
    const std::vector<std::string> hdcp = {"[HDCP_KEY_1X]", "[HDCP_KEY_2X]"};
    const std::vector<std::string> edid = {"[HDMI_EDID_1]", "[HDMI_EDID_2]", "[HDMI_EDID_3]",
                                           "[HDMI_EDID_4]"};
    const std::vector<const char*> versions = {"HDMI_EDID_File_1P4", "HDMI_EDID_File_2P0",
                                               "HDMI_EDID_File_2P1"};
    for (const int32_t selector : kSelectors) {
        const auto place = static_cast<uint32_t>(selector);
        questions.push_back({callText("getHDMIHdcpPath", selector),
                             [=] {
                                 return ask(*service, MLK_METHOD(I, getHDMIHdcpPath),
                                            static_cast<HdcpVer>(selector));
                             },
                             place < hdcp.size()
                                     ? textOfText(set.value(hdcp[place].c_str(), "HDCP_KEY_File"))
                                     : kRefused});
        for (const int32_t version : kSelectors) {
            // An unknown version asks for the empty key; only an unknown port is refused.
            const auto number = static_cast<uint32_t>(version);
            const char* const key = number < versions.size() ? versions[number] : "";
            questions.push_back(
                    {callText("getHDMIEdidPath", selector) + " version " + std::to_string(version),
                     [=] {
                         return ask(*service, MLK_METHOD(I, getHDMIEdidPath), selector,
                                    static_cast<EdidVer>(version));
                     },
                     place < edid.size() ? textOfText(set.value(edid[place].c_str(), key))
                                         : kRefused});
        }
    }
}

void addIdentity(Questions& questions, const ProjectService& service, const PlainSet& set) {
    questions.push_back({"getProjectId", [=] { return ask(*service, MLK_METHOD(I, getProjectId)); },
                         textOfNumber(set.projectId)});
    questions.push_back({"getProjectMaxIdx",
                         [=] { return ask(*service, MLK_METHOD(I, getProjectMaxIdx)); },
                         textOfNumber(static_cast<int32_t>(set.chain.maxIdx()))});
    questions.push_back({"getProjectIniList",
                         [=] { return ask(*service, MLK_METHOD(I, getProjectIniList)); },
                         listText(set.chain.iniList())});
    questions.push_back({"getCustomerId",
                         [=] { return ask(*service, MLK_METHOD(I, getCustomerId)); },
                         textOfText(set.chain.customerId())});
    questions.push_back({"getTvconfigsPath",
                         [=] { return ask(*service, MLK_METHOD(I, getTvconfigsPath)); },
                         textOfText(set.tvconfigs)});
    questions.push_back({"getTvdataPath",
                         [=] { return ask(*service, MLK_METHOD(I, getTvdataPath)); },
                         textOfText(set.tvdata)});
    questions.push_back({"getImpdataPath",
                         [=] { return ask(*service, MLK_METHOD(I, getImpdataPath)); },
                         textOfText(set.impdata)});
}

void addConverted(Questions& questions, const ProjectService& service, const PlainSet& set) {
    const int32_t mode = numberOf(set.value("[PowerOnMode]", "ModeStatus"));
    questions.push_back({"getPowerOnMode",
                         [=] { return ask(*service, MLK_METHOD(I, getPowerOnMode)); },
                         mode >= 0 && mode <= 2 ? textOfNumber(mode) : kRefused});
    questions.push_back({"getDPVREnabled",
                         [=] { return ask(*service, MLK_METHOD(I, getDPVREnabled)); },
                         textOfFlag(set.value("[LiveTV]", "DPVR") == "true")});
    questions.push_back({"getHBBTVEnabled",
                         [=] { return ask(*service, MLK_METHOD(I, getHBBTVEnabled)); },
                         textOfFlag(set.value("[LiveTV]", "Hbbtv") == "true")});
}

void addItem(Questions& questions, const ProjectService& service, const std::string& section,
             const std::string& key, const std::string& value) {
    questions.push_back(
            {"getConfig(" + section + ", " + key + ")",
             [=] {
                 return ask(*service, MLK_METHOD(I, getConfig), ProjectConfigKey{section, key});
             },
             textOfText(value)});
}

void addSection(Questions& questions, const ProjectService& service, const std::string& section,
                const std::vector<ConfigKeyValue>& items) {
    questions.push_back({"getConfigsByCategory(" + section + ")",
                         [=] {
                             return ask(*service, MLK_METHOD(I, getConfigsByCategory),
                                        hidl_string(section));
                         },
                         listText(items)});
}

void addItems(Questions& questions, const ProjectService& service, const PlainSet& set) {
    // The order of a map of texts is that of the answer.
    std::map<std::string, std::vector<ConfigKeyValue>> sections;
    for (const auto& [name, value] : set.items()) {
        addItem(questions, service, name.first, name.second, value);
        sections[name.first].push_back({name.second, value});
    }
    for (const auto& [section, items] : sections) {
        addSection(questions, service, section, items);
    }
    for (const char* section : {"", "[", "[NO SUCH SECTION]", "LiveTV", "[livetv]"}) {
        if (sections.count(section) == 0) {
            addItem(questions, service, section, "TvConfig", "");
            addSection(questions, service, section, {});
        }
    }
    addItem(questions, service, "[LiveTV]", std::string(3000, 'x'), "");
}

}  // namespace

Questions itemQuestions(const ProjectService& service, const PlainSet& set) {
    Questions questions;
    addIdentity(questions, service, set);
    for (const ItemRow& row : kTexts) {
        questions.push_back({row.name, [=] { return ask(*service, row.name, row.getter); },
                             textOfText(set.value(row.section, row.key))});
    }
    addSelectors(questions, service, set);
    addConverted(questions, service, set);
    addItems(questions, service, set);
    return questions;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
