#include "projectconfigs/ProjectSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "common/testing/FixedProperties.h"
#include "common/testing/RecordedLines.h"
#include "host/testing/LogCapture.h"
#include "host/testing/TempDir.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::ElementsAre;

constexpr _tv_country kGermany{14};
constexpr _tv_country kUsa{44};

std::string country(const std::string& name, const std::string& system) {
    return "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>" + name + "</COUNTRY_NAME><TV_SYSTEM>" + system +
           "</TV_SYSTEM><TV_CONFIG>/tvconfigs/tv/" + name + "</TV_CONFIG></COUNTRY_TVCONFIG_MAP>";
}

std::string tvSystem(const std::string& name, const std::string& value) {
    return "<TvSystem type=\"" + name + "\"><Item category=\"[TV]\" key=\"system\" value=\"" +
           value + "\"/></TvSystem>";
}

/** A product line of two models and two boards. No environment variable names it. */
class ProjectSetTest : public ::testing::Test {
  protected:
    ProjectSetTest() {
        unsetenv("MLK_ROOT");
        write("customer.ini", "CUSTOMER_ID=42\nSYS_INI=/tvconfigs/sys.ini\n");
        write("sys.ini", "Model_1=/tvconfigs/model/A.ini\nModel_2=/tvconfigs/model/B.ini\n");
        const std::string shared =
                "[COUNTRY]\ntvSysMap=/tvconfigs/systems.xml\nCOUNTRY_PATH=/tvconfigs/list.txt\n"
                "[TV]\nsystem=\n[LiveTV]\nTvConfig=\n[BOARD]\nname=\n"
                "[FREQTABLE]\nFREQ_TABLE_PATH=/tvconfigs/freqtables\n";
        write("model/A.ini", shared + "[PANEL]\nm_pPanelName=A\n[AUDIO]\n"
                                      "AUDIO_CONFIG_PATH=/tvconfigs/audio/a.ini\n");
        write("model/B.ini", shared + "[PANEL]\nm_pPanelName=B\n[KARAOKE]\n"
                                      "KARAOKE_CONFIG_PATH=/tvconfigs/karaoke.ini\n");
        write("board/one.ini", "[BOARD]\nname=one\n");
        write("board/two.ini", "[BOARD]\nname=two\n");
        write("audio/a.ini", "[DELAY]\nspeaker=7\n");
        write("audio/audio_chip.ini", "[DELAY]\nspeaker=30\n");
        write("karaoke.ini", "[MIC]\ngain=3\n");
        write("list.txt", "GERMANY\nUSA\nATLANTIS\n");
        write("systems.xml",
              "<CountryTvSysMapXML>/tvconfigs/countries.xml</CountryTvSysMapXML>"
              "<TvSystemConfigration>" +
                      tvSystem("DVB", "dvb") + tvSystem("ATSC", "atsc") +
                      "</TvSystemConfigration>");
        write("countries.xml", country("GERMANY", "DVB") + country("USA", "ATSC"));
        write("freqtables/country_freq_map.xml",
              "<COUNTRY_FREQ_MAP><COUNTRY_NAME>GERMANY</COUNTRY_NAME>"
              "<DTV_ANTENA>eu</DTV_ANTENA></COUNTRY_FREQ_MAP>");
        write("freqtables/dtv/eu", "21, 8000000, 474000, E21, DVB_AUTO\n");
        mProperties.set("ro.hardware", "chip");
    }
    void write(const std::string& name, const std::string& text) {
        mDir.write("tvconfigs/" + name, text);
    }
    Partitions partitions() const {
        return {mDir.path("tvconfigs"), mDir.path("tvdata"), mDir.path("impdata")};
    }
    static std::string item(const ProjectSet& set, const char* category, const char* key) {
        return set.items().getInfo({category, key});
    }

    mlk::testing::TempDir mDir;
    mlk::testing::LogCapture mLog;
    FixedProperties mProperties;
    FixedProperties mNoProperties;
};

TEST_F(ProjectSetTest, TwoSetsSideBySide) {
    RegionalData dataA([this] { return partitions(); });
    RegionalData dataB([this] { return partitions(); });
    const ProjectSet a(partitions(), mProperties, dataA, {1, "/tvconfigs/board/one.ini", kGermany});
    const ProjectSet b(partitions(), mNoProperties, dataB, {2, "/tvconfigs/board/two.ini", kUsa});

    EXPECT_EQ(item(a, "[PANEL]", "m_pPanelName"), "A");
    EXPECT_EQ(item(b, "[PANEL]", "m_pPanelName"), "B");
    EXPECT_EQ(item(a, "[BOARD]", "name"), "one");
    EXPECT_EQ(item(b, "[BOARD]", "name"), "two");
    EXPECT_EQ(item(a, "[TV]", "system"), "dvb");
    EXPECT_EQ(item(b, "[TV]", "system"), "atsc");
    EXPECT_EQ(item(a, "[LiveTV]", "TvConfig"), partitions().tvconfigs + "/tv/GERMANY");
    EXPECT_EQ(item(b, "[LiveTV]", "TvConfig"), partitions().tvconfigs + "/tv/USA");
    EXPECT_EQ(a.sounds().delay({"[DELAY]", "speaker"}, false), 37);
    EXPECT_EQ(b.sounds().delay({"[DELAY]", "speaker"}, false), 0);
    EXPECT_EQ(a.karaoke().lookUp({"[MIC]", "gain"}), "");
    EXPECT_EQ(b.karaoke().lookUp({"[MIC]", "gain"}), "3");
    EXPECT_EQ(a.region().plan(kGermany, FreqTableType::DTV_ANTENNA, AtscCableType::AUTO).size(),
              1U);
    EXPECT_EQ(b.region().plan(kUsa, FreqTableType::DTV_ANTENNA, AtscCableType::AUTO).size(), 0U);
}

// What one set learns from its files does not change another set.
TEST_F(ProjectSetTest, UnknownNamesStayWithTheirSet) {
    RegionalData dataA([this] { return partitions(); });
    RegionalData dataB([this] { return partitions(); });
    const ProjectSet a(partitions(), mProperties, dataA, {1, "", kGermany});
    write("list.txt", "AMERICA\n");
    EXPECT_THAT(a.region().countries(), ElementsAre(_tv_country{0}));
    std::string name;
    EXPECT_TRUE(dataA.countries.getCountryName(_tv_country{0}, name));
    EXPECT_EQ(name, "AMERICA");
    EXPECT_TRUE(dataB.countries.getCountryName(_tv_country{0}, name));
    EXPECT_EQ(name, "ANDORRA");
}

TEST_F(ProjectSetTest, EachReaderOfASetTellsItsObserver) {
    RecordedLines heard;
    RegionalData data([this] { return partitions(); }, &heard);
    const auto path = [this](const std::string& name) { return mDir.path("tvconfigs/" + name); };
    write("other.ini", "SYS_INI=/tvconfigs/sys.ini\n");
    write("model/A.ini",
          "[COUNTRY]\ntvSysMap=/tvconfigs/systems.xml\n"
          "COUNTRY_PATH=/tvconfigs/list.txt\n"
          "[TV_LANGUAGE]\nLANGUAGE_PATH=/tvconfigs/languages.txt\n"
          "[FREQTABLE]\nFREQ_TABLE_PATH=/tvconfigs/freqtables\n"
          "[AUDIO]\nAUDIO_CONFIG_PATH=/tvconfigs/audio/a.ini\n"
          "AUDIO_CONFIG_IC_PATH=/tvconfigs/audio/ic.ini\n"
          "AUDIO_CONFIG_AVR_PATH=/tvconfigs/audio/avr.ini\n"
          "[KARAOKE]\nKARAOKE_CONFIG_PATH=/tvconfigs/karaoke.ini\n"
          "[KEY]\nKEY_CONFIG_PATH=/tvconfigs/keys.ini\n"
          "[DDCCI]\nCUSTOMER_DDCCI_PATH=/tvconfigs/ddcci.ini\n");
    for (const char* name : {"audio/ic.ini", "audio/avr.ini", "keys.ini", "ddcci.ini"}) {
        write(name, "[A]\nb=1\n");
    }
    write("languages.txt", "en\n");
    const ProjectSet set(partitions(), mProperties, data,
                         {1, "/tvconfigs/board/one.ini", kGermany, path("other.ini")}, &heard);
    EXPECT_THAT(heard.files(),
                ElementsAre(path("other.ini"), path("sys.ini"), path("model/A.ini"),
                            path("board/one.ini"), path("audio/a.ini"), path("audio/ic.ini"),
                            path("audio/avr.ini"), path("audio/audio_chip.ini"),
                            path("karaoke.ini"), path("keys.ini"), path("ddcci.ini"),
                            path("systems.xml"), path("countries.xml")));
    heard.clear();
    EXPECT_EQ(set.region().countries().size(), 3U);
    EXPECT_EQ(set.region().languages().size(), 1U);
    EXPECT_EQ(set.region().plan(kGermany, FreqTableType::DTV_ANTENNA, AtscCableType::AUTO).size(),
              1U);
    EXPECT_THAT(heard.files(),
                ElementsAre(path("list.txt"), path("languages.txt"),
                            path("freqtables/country_freq_map.xml"), path("freqtables/dtv/eu")));
}

TEST_F(ProjectSetTest, TwoProductLinesSideBySide) {
    const mlk::testing::TempDir other;
    other.write("tvconfigs/customer.ini", "SYS_INI=/tvconfigs/sys.ini\n");
    other.write("tvconfigs/sys.ini", "Model_1=/tvconfigs/X.ini\n");
    other.write("tvconfigs/X.ini", "[PANEL]\nm_pPanelName=X\n[P]\npath=/tvdata/x\n");
    const Partitions others{other.path("tvconfigs"), other.path("tvdata"), other.path("impdata")};
    RegionalData data([this] { return partitions(); });
    RegionalData otherData([&] { return others; });
    const ProjectSet here(partitions(), mProperties, data, {1, "", kGermany});
    const ProjectSet there(others, mProperties, otherData, {1, "", kGermany});
    EXPECT_EQ(item(here, "[PANEL]", "m_pPanelName"), "A");
    EXPECT_EQ(item(there, "[PANEL]", "m_pPanelName"), "X");
    EXPECT_EQ(item(there, "[P]", "path"), others.tvdata + "/x");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
