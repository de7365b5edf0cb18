#include <android/log.h>
#include <gmock/gmock.h>

#include <functional>
#include <iterator>
#include <set>

#include "projectconfigs/tests/ServiceOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

using Service = IMlkProjectConfigs;
using Answer = std::optional<OptionalString>;

// A call and the item that it answers with, as makers of project files know it.
struct Getter {
    const char* name;
    std::function<Answer(Service&)> call;
    const char* section;
    const char* key;
};

template <typename Method, typename... Arguments>
std::function<Answer(Service&)> of(Method method, Arguments... arguments) {
    return [=](Service& service) { return ask(service, method, arguments...); };
}

const Getter kGetters[] = {
        {"getClientType", of(&Service::getClientType), "[CLIENT_TYPE_INFO]", "CLIENT_TYPE"},
        {"getProjectName", of(&Service::getProjectName), "[PROJECT_NAME_CFG]", "PROJECT_NAME"},
        {"getPanelName", of(&Service::getPanelName), "[PANEL]", "m_pPanelName"},
        {"getOverscanPath", of(&Service::getOverscanPath), "[OVERSCAN]", "OVERSCAN_PATH"},
        {"getSSCPath", of(&Service::getSSCPath), "[SSC]", "m_pSSCName"},
        {"getPQPath", of(&Service::getPQPath), "[MISC_PQ_MAP_CFG]", "PQ"},
        {"getEQPath 0", of(&Service::getEQPath, 0), "[DIGITAL_AMPLIFIER_CFG]", "ST_EQ0_NAME"},
        {"getEQPath 1", of(&Service::getEQPath, 1), "[DIGITAL_AMPLIFIER_CFG]", "ST_EQ1_NAME"},
        {"getAMPSelection MAIN", of(&Service::getAMPSelection, CommonPath::AMP_MAIN),
         "[DIGITAL_AMPLIFIER_CFG]", "ST_AMP_SELECTION"},
        {"getAMPSelection SUB", of(&Service::getAMPSelection, CommonPath::AMP_SUB),
         "[DIGITAL_AMPLIFIER_CFG]", "ST_AMP_SUB_SELECTION"},
        {"getAMPAddr 0", of(&Service::getAMPAddr, 0), "[DIGITAL_AMPLIFIER_CFG]", "ST_AMP_ADDR0"},
        {"getAMPAddr 1", of(&Service::getAMPAddr, 1), "[DIGITAL_AMPLIFIER_CFG]", "ST_AMP_ADDR1"},
        {"getVolumeCurve", of(&Service::getVolumeCurve), "[VOLUME_CURVE_CFG]", "VOLUME_CURVE"},
        {"getAQPath", of(&Service::getAQPath), "[AQ]", "AQBin_Path"},
        {"getHDMIEdidPath 0 1.4", of(&Service::getHDMIEdidPath, 0, EdidVer::EDID_1P4),
         "[HDMI_EDID_1]", "HDMI_EDID_File_1P4"},
        {"getHDMIEdidPath 1 2.0", of(&Service::getHDMIEdidPath, 1, EdidVer::EDID_2P0),
         "[HDMI_EDID_2]", "HDMI_EDID_File_2P0"},
        {"getHDMIEdidPath 2 2.1", of(&Service::getHDMIEdidPath, 2, EdidVer::EDID_2P1),
         "[HDMI_EDID_3]", "HDMI_EDID_File_2P1"},
        {"getHDMIEdidPath 3 1.4", of(&Service::getHDMIEdidPath, 3, EdidVer::EDID_1P4),
         "[HDMI_EDID_4]", "HDMI_EDID_File_1P4"},
        {"getHDMIEdidPath 0 unknown", of(&Service::getHDMIEdidPath, 0, EdidVer{3}), "[HDMI_EDID_1]",
         ""},
        {"getHDMIHdcpPath 1X", of(&Service::getHDMIHdcpPath, HdcpVer::HDCP_1X), "[HDCP_KEY_1X]",
         "HDCP_KEY_File"},
        {"getHDMIHdcpPath 2X", of(&Service::getHDMIHdcpPath, HdcpVer::HDCP_2X), "[HDCP_KEY_2X]",
         "HDCP_KEY_File"},
        {"getPowerLogoPath", of(&Service::getPowerLogoPath), "[PowerLogoMode]", "PowerLogoPath"},
        {"getBootAnimationPath", of(&Service::getBootAnimationPath), "[BootAnimation]", "FileName"},
        {"getInputSource", of(&Service::getInputSource), "[LiveTV]", "inputSource"},
        {"getTunerType", of(&Service::getTunerType), "[LiveTV]", "tuner_type"},
        {"getIRConfig", of(&Service::getIRConfig), "[IR]", "IR_CONFIG"},
        {"getIRFilter", of(&Service::getIRFilter), "[IRFilter]", "IR_Filter"},
        {"getRegionName", of(&Service::getRegionName), "[MODEL_REGION_NAME_CFG]", "REGION_NAME"},
        {"getTvChannelDatabasePath", of(&Service::getTvChannelDatabasePath), "[LiveTV]",
         "TvChannelDatabasePath"},
        {"getTunerConfig 0", of(&Service::getTunerConfig, 0), "[Tuner]", "TP0_FE"},
        {"getTunerConfig 1", of(&Service::getTunerConfig, 1), "[Tuner]", "TP1_FE"},
};

class ItemGettersTest : public ServiceOnSet {
  protected:
    void load(const std::string& text) {
        project(text);
        start();
        mLog.clear();
    }
    std::string powerOnMode(const std::string& status) {
        load("[PowerOnMode]\nModeStatus=" + status + "\n");
        return number(asked(&Service::getPowerOnMode));
    }
    std::string flagsOf(const std::string& value) {
        load("[LiveTV]\nDPVR=" + value + "\nHbbtv=" + value + "\n");
        return flag(asked(&Service::getDPVREnabled)) + " " + flag(asked(&Service::getHBBTVEnabled));
    }
};

TEST_F(ItemGettersTest, EachAnswersItsItem) {
    std::string all;
    for (const Getter& getter : kGetters) {
        all += std::string(getter.section) + "\n" + getter.key + "=value of " + getter.name + "\n";
    }
    load(all);
    for (const Getter& getter : kGetters) {
        EXPECT_EQ(text(getter.call(*mService)), std::string("value of ") + getter.name);
    }
}

TEST_F(ItemGettersTest, EachAnswersAnEmptyTextForAMissingItem) {
    load("");
    for (const Getter& getter : kGetters) {
        EXPECT_EQ(text(getter.call(*mService)), "") << getter.name;
    }
}

TEST_F(ItemGettersTest, SelectorOutOfRangeGetsNoAnswer) {
    load("[DIGITAL_AMPLIFIER_CFG]\n=x\n[HDMI_EDID_1]\n=x\n[Tuner]\n=x\n[HDCP_KEY_1X]\n=x\n");
    for (const int32_t selector : {2, 3, 4, 5, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(text(asked(&Service::getEQPath, selector)), "no answer") << selector;
        EXPECT_EQ(text(asked(&Service::getAMPAddr, selector)), "no answer") << selector;
        EXPECT_EQ(text(asked(&Service::getTunerConfig, selector)), "no answer") << selector;
        EXPECT_EQ(text(asked(&Service::getAMPSelection, CommonPath(selector))), "no answer")
                << selector;
        EXPECT_EQ(text(asked(&Service::getHDMIHdcpPath, HdcpVer(selector))), "no answer")
                << selector;
    }
    for (const int32_t port : {4, 5, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(text(asked(&Service::getHDMIEdidPath, port, EdidVer::EDID_1P4)), "no answer")
                << port;
        EXPECT_EQ(text(asked(&Service::getHDMIEdidPath, port, EdidVer{9})), "no answer") << port;
    }
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(ItemGettersTest, UnknownEdidVersionAsksForTheEmptyKey) {
    load("[HDMI_EDID_1]\n=the empty one\n");
    for (const uint32_t version : {3U, 4U, 26U, 0xffffffffU}) {
        EXPECT_EQ(text(asked(&Service::getHDMIEdidPath, 0, EdidVer(version))), "the empty one");
        EXPECT_EQ(text(asked(&Service::getHDMIEdidPath, 1, EdidVer(version))), "");
    }
}

TEST_F(ItemGettersTest, PowerOnModeIsANumberUpToTwo) {
    EXPECT_EQ(powerOnMode("0"), "0");
    EXPECT_EQ(powerOnMode("1"), "1");
    EXPECT_EQ(powerOnMode(" 2x"), "2");
    EXPECT_EQ(powerOnMode("abc"), "0");
    EXPECT_EQ(powerOnMode(""), "0");
    EXPECT_EQ(powerOnMode("3"), "no answer");
    EXPECT_EQ(powerOnMode("-1"), "no answer");
    EXPECT_EQ(powerOnMode("2147483648"), "no answer");
    EXPECT_EQ(powerOnMode("4294967297"), "1") << "the low 32 bits";
    load("");
    EXPECT_EQ(number(asked(&Service::getPowerOnMode)), "0");
}

TEST_F(ItemGettersTest, FlagIsTrueForExactlyTrue) {
    EXPECT_EQ(flagsOf("true"), "true true");
    EXPECT_EQ(flagsOf("\"true\" # yes"), "true true");
    for (const char* other : {"True", "TRUE", "true\t", "1", "yes", "tru", "truee", "false", ""}) {
        EXPECT_EQ(flagsOf(other), "false false") << other;
    }
    load("[LiveTV]\nDPVR=true\n");
    EXPECT_EQ(flag(asked(&Service::getDPVREnabled)), "true");
    EXPECT_EQ(flag(asked(&Service::getHBBTVEnabled)), "false");
}

TEST_F(ItemGettersTest, EveryRowOfTheTableIsUsedByAGetter) {
    std::set<std::string> names = {"getPowerOnMode", "getDPVREnabled", "getHBBTVEnabled"};
    for (const Getter& getter : kGetters) {
        const std::string name = getter.name;
        names.insert(name.substr(0, name.find(' ')));
    }
    EXPECT_EQ(names.size(), std::size(kProjectItems));
    for (const ProjectItemRow& row : kProjectItems) {
        EXPECT_EQ(names.count(row.method), 1U) << row.method;
    }
}

TEST_F(ItemGettersTest, CustomerIdAndMountPoints) {
    start();
    EXPECT_EQ(text(asked(&Service::getCustomerId)), "42");
    EXPECT_EQ(text(asked(&Service::getTvconfigsPath)), mSet.tvconfigs());
    EXPECT_EQ(text(asked(&Service::getTvdataPath)), mSet.tvdata());
    EXPECT_EQ(text(asked(&Service::getImpdataPath)), mSet.impdata());
}

TEST_F(ItemGettersTest, AnyItemByCategoryAndKey) {
    load("top=0\n[LiveTV]\nTvConfig=/tvconfigs/tv.config\n");
    const auto get = [this](const char* category, const char* key) {
        return text(asked(&Service::getConfig, ProjectConfigKey{category, key}));
    };
    EXPECT_EQ(get("[LiveTV]", "TvConfig"), mSet.tvconfigs() + "/tv.config");
    EXPECT_EQ(get("", "top"), "0");
    EXPECT_EQ(get("LiveTV", "TvConfig"), "");
    EXPECT_EQ(get("[LiveTV]", "tvconfig"), "");
    EXPECT_EQ(get("", ""), "");
}

TEST_F(ItemGettersTest, ItemsOfACategoryInByteOrder) {
    load("[S]\nB=1\nAA=2\nA=3\n[T]\nC=4\n");
    const auto items = asked(&Service::getConfigsByCategory, "[S]");
    ASSERT_TRUE(items.has_value());
    std::vector<std::pair<std::string, std::string>> got;
    for (const ConfigKeyValue& item : *items) {
        got.emplace_back(item.key, item.value);
    }
    EXPECT_THAT(got, ElementsAre(Pair("A", "3"), Pair("AA", "2"), Pair("B", "1")));
    EXPECT_EQ(asked(&Service::getConfigsByCategory, "S")->size(), 0U);
}

TEST_F(ItemGettersTest, NameEndsAtItsNul) {
    load("[S]\nk=1\n");
    const std::string section("[S]\0tail", 8);
    EXPECT_EQ(text(asked(&Service::getConfig, ProjectConfigKey{section, std::string("k\0", 2)})),
              "1");
    EXPECT_EQ(asked(&Service::getConfigsByCategory, section)->size(), 1U);
}

TEST_F(ItemGettersTest, CategoryWithoutTextHasNoItems) {
    load("top=0\n");
    EXPECT_EQ(asked(&Service::getConfigsByCategory, absentText())->size(), 0U);
    EXPECT_EQ(asked(&Service::getConfigsByCategory, "")->size(), 1U);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
