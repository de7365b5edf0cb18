// What an observer hears of the regional files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>
#include <vector>

#include "common/testing/FixedProperties.h"
#include "common/testing/RecordedLines.h"
#include "host/testing/LogCapture.h"
#include "host/testing/ReadHook.h"
#include "host/testing/TempDir.h"
#include "regional/FreqTableParser.h"
#include "regional/LanguageListParser.h"
#include "regional/RegionalData.h"
#include "regional/TvSysMapCfgHolder.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::LogCapture;
using mlk::testing::ReadHook;
using mlk::testing::TempDir;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

class RegionalLinesTest : public ::testing::Test {
  protected:
    using Heard = std::vector<std::string>;

    Heard countries(const std::string& text) {
        mPath = mDir.write("tvconfigs/list.txt", text);
        readCountries();
        return mHeard.of(mPath);
    }
    Heard languages(const std::string& text) {
        mPath = mDir.write("tvconfigs/list.txt", text);
        readLanguages();
        return mHeard.of(mPath);
    }
    Heard plan(const std::string& text) {
        mPath = mDir.write("tvconfigs/plan", text);
        readPlan();
        return mHeard.of(mPath);
    }
    Heard systems(const std::string& text) {
        mPath = mDir.write("tvconfigs/systems.xml", text);
        readSystems();
        return mHeard.of(mPath);
    }
    Heard countryMap(const std::string& text) {
        mPath = mDir.write("tvconfigs/map.xml", text);
        readCountryMap();
        return mHeard.of(mPath);
    }
    Heard frequencyMap(const std::string& text) {
        mPath = mDir.write("tvconfigs/freqtables/country_freq_map.xml", text);
        readFrequencyMap();
        return mHeard.of(mPath);
    }

    // These read the file at mPath, the last one the only file it may have.
    void readCountries() {
        mHeard.clear();
        mData.countries.getCountryList(mPath);
    }
    void readLanguages() {
        mHeard.clear();
        std::vector<std::string> languages;
        LanguageListParser::GetInstance().getLanguageList(mPath, languages, &mHeard);
    }
    void readPlan() {
        mHeard.clear();
        FreqTableParser(mData).ParseFreqTable(mPath, mChannels);
    }
    void readSystems() {
        mHeard.clear();
        mHolder.loadConfigXmlFile(mPath);
    }
    void readCountryMap() {
        const std::string name = mPath.substr(mPath.rfind('/'));
        mHolder.loadConfigXmlFile(
                mDir.write("names_map.xml",
                           "<CountryTvSysMapXML>/tvconfigs" + name + "</CountryTvSysMapXML>"));
        mHeard.clear();
        mHolder.loadCountryTvConfigMapXML();
    }
    void readFrequencyMap() {
        mHeard.clear();
        mData.plans.GetTvConfigPath();
        mData.plans.loadCountryFreqMapXML();
    }

    const TempDir mDir;
    const Partitions mPartitions{mDir.path("tvconfigs"), mDir.path("tvdata"), mDir.path("impdata")};
    FixedProperties mProperties;
    LogCapture mLog;
    RecordedLines mHeard;
    RegionalData mData{[this] { return mPartitions; }, &mHeard};
    TvSysMapCfgHolder mHolder{mPartitions, mProperties, mData};
    std::vector<HidlFreqListItem> mChannels;
    std::string mPath;
};

TEST_F(RegionalLinesTest, Lists) {
    const std::string text = "FRANCE\n\n,,\n,GERMANY,here\nfrance \r\nFRANCE\0x\n"s +
                             std::string(256, 'x') + "\nUSA";
    const auto expected = ElementsAre(
            "1 item \"FRANCE\" |FRANCE|", "2 nothing \"\"",
            "3 problem: nothing but commas, line skipped", "3 ignored \",,\"",
            "4 item \",GERMANY,here\" |GERMANY|", "5 item \"france \r\" |france \r|",
            "6 item \"FRANCE\" |FRANCE| nul",
            "7 problem: line longer than 255 bytes, its rest is skipped",
            "7 item \"xxxxxxxx...(255)\" |xxxxxxxx...(255)| cut", "8 item \"USA\" |USA|");
    EXPECT_THAT(countries(text), expected);
    EXPECT_THAT(languages(text), expected);
}

TEST_F(RegionalLinesTest, ChannelPlan) {
    EXPECT_THAT(
            plan("// channels\n"
                 "21, 8000000, 474000, E21, DVB_AUTO\n"
                 "\n"
                 "22 8000000\r\n"
                 "\r\n"
                 " ,\n"
                 "x\n"
                 "23,0,490000\0,E23\n"s
                 "\0\n"s
                 "24,0,498000"),
            ElementsAre("1 nothing \"// channels\"",
                        "2 item \"21, 8000000, 474000, E21, DVB_AUTO\" |21|", "3 nothing \"\"",
                        "4 ignored \"22 8000000\r\" |22|", "5 nothing \"\r\"", "6 nothing \" ,\"",
                        "7 ignored \"x\" |x|", "8 item \"23,0,490000\" |23| nul",
                        "9 nothing \"\" nul", "10 item \"24,0,498000\" |24|"));
    EXPECT_EQ(mChannels.size(), 3U);
}

TEST_F(RegionalLinesTest, LongLinesOfAPlanAreRead) {
    // 48 bytes and a line feed are one piece.
    const std::string fits = "21,0,474000 " + std::string(36, ' ') + "\n";
    ASSERT_EQ(fits.size(), 49U);
    const std::string remark =
            "// " + std::string(46, '-') + "22,0,482000 twice " + std::string(31, '-') + "end\n";
    EXPECT_THAT(plan(fits + remark + "23,0,490000\n"),
                ElementsAre("1 item \"21,0,474...(48)\" |21|", "2 nothing \"// -----...(49)\" cut",
                            "2:50 item \"22,0,482...(49)\" |22| cut", "2:99 ignored \"end\" |end|",
                            "3 item \"23,0,490000\" |23|"));
    EXPECT_EQ(mChannels.size(), 3U);
    // A NUL does not end the line, and its piece goes on after it.
    EXPECT_THAT(plan("a\0"s + std::string(47, 'x') + "24,0,498000\n"),
                ElementsAre("1 ignored \"a\" |a| cut nul", "1:50 item \"24,0,498000\" |24|"));
    // The last line has no line feed: nothing follows its 49 bytes, or one does.
    EXPECT_THAT(plan(std::string(49, 'x')),
                ElementsAre("1 ignored \"xxxxxxxx...(49)\" |xxxxxxxx...(49)|"));
    EXPECT_THAT(plan(std::string(50, 'x')),
                ElementsAre("1 ignored \"xxxxxxxx...(49)\" |xxxxxxxx...(49)| cut",
                            "1:50 ignored \"x\" |x|"));
    EXPECT_THAT(plan(""), IsEmpty());
    // A line of 49 bytes is whole; its line feed is a piece of its own.
    EXPECT_THAT(plan(std::string(49, 'x') + "\n23,0,490000\n"),
                ElementsAre("1 ignored \"xxxxxxxx...(49)\" |xxxxxxxx...(49)|", "1:50 nothing \"\"",
                            "2 item \"23,0,490000\" |23|"));
}

TEST_F(RegionalLinesTest, TvSystemFile) {
    EXPECT_THAT(systems("<Other>x</Other>\n"
                        "<CountryTvSysMapXML>/tvconfigs/map.xml</CountryTvSysMapXML>\n"
                        "<CountryTvSysMapXML>/twice</CountryTvSysMapXML>\n"
                        "<TvSystemConfigration>\n"
                        "  <Before/>\n"
                        "  <TvSystem type=\"DVB\">\n"
                        "    <First category=\"[A]\" key=\"k\" value=\"0\"/>\n"
                        "    <Item category=\"[A]\" key=\"k\" value=\"/tvdata/1\"/>\n"
                        "    <Item category=\"[A]\" key=\"k\" value=\"2\"/>\n"
                        "    <Item category=\"[A]\" value=\"3\"/>\n"
                        "    <Other category=\"[A]\" key=\"\" value=\"\"/>\n"
                        "  </TvSystem>\n"
                        "  <TvSystem/>\n"
                        "  <TvSystem type=\"ATSC\"><Item category=\"[A]\" key=\"k\" value=\"4\"/>\n"
                        "  </TvSystem>\n"
                        "  <TvSystem type=\"DVB\"><Item category=\"[A]\" key=\"k\" value=\"5\"/>\n"
                        "  </TvSystem>\n"
                        "</TvSystemConfigration>\n"
                        "<TvSystemConfigration/>\n"),
                ElementsAre("1 ignored |Other|x", "2 item |CountryTvSysMapXML|/tvconfigs/map.xml",
                            "3 ignored |CountryTvSysMapXML|/twice",
                            "19 ignored |TvSystemConfigration|", "5 ignored |Before|",
                            "6 section |TvSystem| of DVB", "7 ignored |First| of DVB",
                            "8 item [A]|k|/tvdata/1 of DVB", "9 item [A]|k|2 of DVB old",
                            "10 problem: item without category, key or value, skipped",
                            "10 ignored [A]||3 of DVB", "11 item [A]|| of DVB",
                            "13 problem: TV system without type, skipped", "13 ignored |TvSystem|",
                            "14 section |TvSystem| of ATSC", "14 item [A]|k|4 of ATSC",
                            "16 section |TvSystem| of DVB", "16 item [A]|k|5 of DVB old"));
    EXPECT_THAT(systems("<A/>"), ElementsAre("1 ignored |A|"));
}

TEST_F(RegionalLinesTest, CountryMap) {
    EXPECT_THAT(
            countryMap("<Before/>\n"
                       "<COUNTRY_TVCONFIG_MAP>\n"
                       "  <COUNTRY_NAME>FRANCE</COUNTRY_NAME>\n"
                       "  <TV_SYSTEM>DVB</TV_SYSTEM>\n"
                       "  <TV_SYSTEM>TWICE</TV_SYSTEM>\n"
                       "  <TV_CONFIG/>\n"
                       "  <TV_SYSTM>ATSC</TV_SYSTM>\n"
                       "</COUNTRY_TVCONFIG_MAP>\n"
                       "<COUNTRY_TVCONFIG_MAP><TV_SYSTEM>DVB</TV_SYSTEM>\n"
                       "</COUNTRY_TVCONFIG_MAP>\n"
                       "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>USA</COUNTRY_NAME>\n"
                       "</COUNTRY_TVCONFIG_MAP>\n"),
            ElementsAre("1 ignored |Before|", "2 section |COUNTRY_TVCONFIG_MAP| of FRANCE",
                        "3 item |COUNTRY_NAME|FRANCE of FRANCE", "4 item |TV_SYSTEM|DVB of FRANCE",
                        "5 item |TV_SYSTEM|TWICE of FRANCE old", "6 item |TV_CONFIG| of FRANCE",
                        "7 ignored |TV_SYSTM|ATSC of FRANCE",
                        "9 problem: country without COUNTRY_NAME, skipped",
                        "9 ignored |COUNTRY_TVCONFIG_MAP|",
                        "11 section |COUNTRY_TVCONFIG_MAP| of USA",
                        "11 item |COUNTRY_NAME|USA of USA"));
}

TEST_F(RegionalLinesTest, FrequencyMap) {
    EXPECT_THAT(
            frequencyMap("<Before/>\n"
                         "<COUNTRY_FREQ_MAP>\n"
                         "  <DTV_CABLE TYPE=\"HRC\">hrc</DTV_CABLE>\n"
                         "  <COUNTRY_NAME>USA</COUNTRY_NAME>\n"
                         "  <DTV_ANTENA>air</DTV_ANTENA>\n"
                         "  <DTV_ANTENNA>air</DTV_ANTENNA>\n"
                         "  <DTV_CABLE TYPE=\"HRC2\">again</DTV_CABLE>\n"
                         "  <DTV_CABLE TYPE=\"QAM\">unknown</DTV_CABLE>\n"
                         "  <DTV_CABLE/>\n"
                         "  <ATV_CABLE>cable</ATV_CABLE>\n"
                         "  <DTV_ANTENA>twice</DTV_ANTENA>\n"
                         "</COUNTRY_FREQ_MAP>\n"
                         "<COUNTRY_FREQ_MAP/>\n"),
            ElementsAre("1 ignored |Before|", "2 section |COUNTRY_FREQ_MAP| of USA",
                        "4 item |COUNTRY_NAME|USA of USA", "5 item |DTV_ANTENA|air of USA",
                        "6 ignored |DTV_ANTENNA|air of USA", "11 item |DTV_ANTENA|twice of USA old",
                        "3 item HRC|DTV_CABLE|hrc of USA", "7 item HRC2|DTV_CABLE|again of USA old",
                        "8 ignored QAM|DTV_CABLE|unknown of USA", "9 ignored |DTV_CABLE| of USA",
                        "10 item |ATV_CABLE|cable of USA",
                        "13 problem: country without COUNTRY_NAME, skipped",
                        "13 ignored |COUNTRY_FREQ_MAP|"));
}

// A hostile file must not keep an observer's program busy for hours.
TEST_F(RegionalLinesTest, ManyElementsOfARecordAreToldInTurn) {
    constexpr size_t kCount = 100'000;
    std::string children;
    std::string all;
    for (size_t number = 0; number < kCount; ++number) {
        children += "<e" + std::to_string(number) + "/>";
        all += "<TvSystem type=\"A\"><Item category=\"c\" key=\"k\" value=\"\"/></TvSystem>";
    }
    EXPECT_EQ(countryMap("<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>A</COUNTRY_NAME>" + children +
                         "</COUNTRY_TVCONFIG_MAP>")
                      .size(),
              kCount + 2);
    EXPECT_EQ(frequencyMap("<COUNTRY_FREQ_MAP><COUNTRY_NAME>A</COUNTRY_NAME>" + children +
                           "</COUNTRY_FREQ_MAP>")
                      .size(),
              kCount + 2);
    EXPECT_EQ(systems("<TvSystemConfigration>" + all + "</TvSystemConfigration>").size(),
              2 * kCount);
}

TEST_F(RegionalLinesTest, MalformedXmlIsAProblemOfItsLine) {
    struct Row {
        const char* text;
        const char* problem;
    };
    constexpr Row kRows[] = {
            {"<A>\n<B>\n</A>",
             "2 problem: no well-formed XML: an element that begins here is not "
             "closed by a tag of its own name"},
            {"\n<A b=c/>",
             "2 problem: no well-formed XML: an attribute needs the form "
             "name=\"value\""},
            {"<A/>\n<B", "2 problem: no well-formed XML: a tag is not closed by \">\""},
            {"<A/>\n\n<!-- x", "3 problem: no well-formed XML: a comment is not closed by \"-->\""},
            {"<A>\n<![CDATA[ x</A>",
             "2 problem: no well-formed XML: a CDATA section is not closed by \"]]>\""},
            {"<A/>\n<?xml?>",
             "2 problem: no well-formed XML: a declaration stands only at the top "
             "and ends with \"?>\""},
            {"<!DOCTYPE", "1 problem: no well-formed XML: a \"<!\" is not closed by \">\""},
            {"<A>\n<B>\n",
             "2 problem: no well-formed XML: the file ends within an element that begins here"},
            {"", "0 problem: no well-formed XML: the file has no element"},
    };
    for (const Row& row : kRows) {
        EXPECT_THAT(systems(row.text), ElementsAre(row.problem)) << row.text;
        EXPECT_THAT(countryMap(row.text), ElementsAre(row.problem)) << row.text;
        EXPECT_THAT(frequencyMap(row.text), ElementsAre(row.problem)) << row.text;
    }
    std::string deep;
    for (int i = 0; i < 1000; ++i) {
        deep += "<A>";
    }
    EXPECT_THAT(systems(deep),
                ElementsAre("1 problem: no well-formed XML: elements are nested too deeply"));
}

TEST_F(RegionalLinesTest, TooManyAttributesAreAProblem) {
    std::string text = "<A";
    for (int i = 0; i < 257; ++i) {
        text += " a" + std::to_string(i) + "=''";
    }
    const auto expected = ElementsAre(
            "0 problem: more than 256 attributes in an element or 4096 character references in "
            "all");
    EXPECT_THAT(systems(text + "/>"), expected);
    EXPECT_THAT(countryMap(text + "/>"), expected);
    EXPECT_THAT(frequencyMap(text + "/>"), expected);
}

TEST_F(RegionalLinesTest, WhatCannotBeReadIsAProblemUnlessItIsMissing) {
    const std::string folder = mDir.mkdir("tvconfigs/freqtables");
    const std::function<void()> readers[] = {
            [this] { readCountries(); }, [this] { readLanguages(); }, [this] { readPlan(); },
            [this] { readSystems(); }, [this] { readCountryMap(); }};
    for (const auto& read : readers) {
        mPath = mDir.path("tvconfigs/missing");
        read();
        EXPECT_THAT(mHeard.all(), IsEmpty());
        mPath = folder;
        read();
        EXPECT_THAT(mHeard.of(folder),
                    ElementsAre("0 problem: cannot be read: not a regular file"));
        mPath = mDir.write("tvconfigs/huge", "");
        ASSERT_EQ(truncate(mPath.c_str(), off_t{1} << 32), 0);  // sparse
        read();
        EXPECT_THAT(mHeard.of(mPath),
                    ElementsAre("0 problem: cannot be read: larger than 16777216 bytes"));
    }
    readFrequencyMap();
    EXPECT_THAT(mHeard.all(), IsEmpty());
    ASSERT_EQ(mkdir((folder + "/country_freq_map.xml").c_str(), 0700), 0);
    readFrequencyMap();
    EXPECT_THAT(mHeard.all(), ElementsAre("0 problem: cannot be read: not a regular file"));
}

TEST_F(RegionalLinesTest, ReadErrorIsAProblem) {
    mPath = mDir.write("tvconfigs/file", "<A/>");
    const ReadHook hook([](int, void*, size_t) { return ReadHook::fail(EIO); });
    const std::string whole = "0 problem: cannot be read: Input/output error";
    const std::string further = "0 problem: cannot be read further: Input/output error";
    readCountries();
    EXPECT_THAT(mHeard.all(), ElementsAre(further));
    readLanguages();
    EXPECT_THAT(mHeard.all(), ElementsAre(further));
    readPlan();
    EXPECT_THAT(mHeard.all(), ElementsAre(whole));
    readSystems();
    EXPECT_THAT(mHeard.all(), ElementsAre(whole));
}

TEST_F(RegionalLinesTest, SavedCountryIsReadUpToItsLineAndNothingIsWritten) {
    EXPECT_EQ(mHolder.savedCountry(), std::nullopt);
    EXPECT_EQ(access(mDir.path("tvdata").c_str(), F_OK), -1);
    EXPECT_THAT(mHeard.all(), IsEmpty());
    EXPECT_THAT(mLog.lines(), IsEmpty());

    const std::string path =
            mDir.write("tvdata/tvsysmap/country_id.bin", "x\nCOUNTRY_ID= 14\nCOUNTRY_ID=44\n");
    EXPECT_EQ(mHolder.savedCountry(), _tv_country{14});
    EXPECT_THAT(mHeard.of(path),
                ElementsAre("1 nothing \"x\"", "2 item \"COUNTRY_ID= 14\" |COUNTRY_ID| 14"));
    EXPECT_EQ(mHolder.currentCountry(), kNoCountry) << "it only reads";

    mHeard.clear();
    mDir.write("tvdata/tvsysmap/country_id.bin", "COUNTRY_ID\nCOUNTRY_ID=44\n");
    EXPECT_EQ(mHolder.savedCountry(), kNoCountry);
    EXPECT_THAT(mHeard.of(path),
                ElementsAre("1 problem: no \"=\", line skipped", "1 ignored \"COUNTRY_ID\""));
    mDir.write("tvdata/tvsysmap/country_id.bin", "");
    EXPECT_EQ(mHolder.savedCountry(), kNoCountry) << "the service saves none then, either";
    EXPECT_EQ(mDir.read("tvdata/tvsysmap/country_id.bin"), "");
}

TEST_F(RegionalLinesTest, FirstCountryIsThatOfTheFirstRecord) {
    EXPECT_EQ(mHolder.firstCountry(), kNoCountry);
    countryMap(
            "<COUNTRY_TVCONFIG_MAP/>"
            "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>GERMANY</COUNTRY_NAME></COUNTRY_TVCONFIG_MAP>"
            "<COUNTRY_TVCONFIG_MAP><COUNTRY_NAME>USA</COUNTRY_NAME></COUNTRY_TVCONFIG_MAP>");
    EXPECT_EQ(mHolder.firstCountry(), _tv_country{14});
    EXPECT_EQ(access(mDir.path("tvdata").c_str(), F_OK), -1);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
