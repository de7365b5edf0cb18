#include "regional/CountryFreqMapParse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "regional/tests/RegionalFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr _tv_country kGermany{14};
constexpr _tv_country kUsa{44};

std::string block(const std::string& country, const std::string& rest) {
    return "<COUNTRY_FREQ_MAP><COUNTRY_NAME>" + country + "</COUNTRY_NAME>" + rest +
           "</COUNTRY_FREQ_MAP>\n";
}

// Memory runs out at the second country, once.
class NoMemoryOnce : public ReadObserver {
  public:
    void onLine(const ReadLine& line) override {
        if (line.owner == "USA" && !mHasThrown) {
            mHasThrown = true;
            throw std::bad_alloc();
        }
    }
    void onProblem(const ReadProblem&) override {}

  private:
    bool mHasThrown = false;
};

class CountryFreqMapParseTest : public ::testing::Test, protected RegionalFiles {
  protected:
    // The table's name, or the text for a refusal.
    std::string lookUp(_tv_country country, FreqTableType type,
                       AtscCableType cableType = AtscCableType::AUTO,
                       const std::string& path = "") {
        std::string name = "untouched";
        const bool found = mMap.GetFreqTableNameByCountry(path, country, type, cableType, name);
        return found ? name : "no: " + name;
    }
    void load(const std::string& blocks) {
        writeFreqMap(blocks);
        EXPECT_EQ(mMap.GetTvConfigPath(), set().tvconfigs() + "/freqtables");
        EXPECT_TRUE(mMap.loadCountryFreqMapXML());
    }
    static constexpr auto kDtvAntenna = FreqTableType::DTV_ANTENNA;
    static constexpr auto kDtvCable = FreqTableType::DTV_CABLE;
    static constexpr auto kAtvAntenna = FreqTableType::ATV_ANTENNA;
    static constexpr auto kAtvCable = FreqTableType::ATV_CABLE;

    CountryFreqMapParse& mMap = CountryFreqMapParse::GetInstance();
};

TEST_F(CountryFreqMapParseTest, MapThatMemoryDidNotSufficeForIsReadAgain) {
    writeFreqMap(block("GERMANY", "<DTV_ANTENA>a</DTV_ANTENA>") +
                 block("USA", "<DTV_ANTENA>b</DTV_ANTENA>"));
    NoMemoryOnce observer;
    CountryFreqMapParse map(systemPartitions, RegionalData::GetInstance().countries, &observer);
    map.GetTvConfigPath();
    const auto find = [&](std::string& name) {
        return map.GetFreqTableNameByCountryName("USA", FreqTableType::DTV_ANTENNA,
                                                 AtscCableType::AUTO, name);
    };
    std::string name;
    EXPECT_THROW(find(name), std::bad_alloc);
    EXPECT_TRUE(find(name));
    EXPECT_EQ(name, "b");
}

TEST_F(CountryFreqMapParseTest, TheFirstLookupReadsTheFile) {
    const std::string path =
            writeFreqMap(block("GERMANY", "<DTV_ANTENA>freqtable_eu</DTV_ANTENA>"));
    EXPECT_EQ(lookUp(kGermany, kDtvAntenna), "freqtable_eu");
    EXPECT_THAT(debugLines(),
                ElementsAre("GetTvConfigPath from TvPartitionPath: " + set().tvconfigs() +
                                    "/freqtables",
                            "CountryFreqMapParse country index 14, success 1, name GERMANY",
                            "coutryFreqMap size: 0",
                            "loadCountryFreqMapXML begin, country freq map size: 0, " + path,
                            "loadCountryFreqMapXML done, size 1",
                            "GetFreqTableNameByCountryName read success: 1"));
    EXPECT_THAT(errors(), ElementsAre("loadCountryFreqMapXML without antena a name"));
    log().clear();
    EXPECT_EQ(lookUp(kGermany, kAtvAntenna), "") << "an entry without a table is no error";
    EXPECT_THAT(
            debugLines(),
            ElementsAre("CountryFreqMapParse country index 14, success 1, name GERMANY",
                        "coutryFreqMap size: 1", "GetFreqTableNameByCountryName read success: 0"));
}

TEST_F(CountryFreqMapParseTest, ReadsAllOfABlock) {
    load(block("USA",
               "<DTV_ANTENA>air</DTV_ANTENA><DTV_CABLE TYPE='AUTO'>a</DTV_CABLE>"
               "<DTV_CABLE TYPE='STD'>s</DTV_CABLE><DTV_CABLE TYPE='HRC'>h</DTV_CABLE>"
               "<DTV_CABLE TYPE='IRC'>i</DTV_CABLE><ATV_ANTENA>ntsc</ATV_ANTENA>"
               "<ATV_CABLE TYPE='STD'>as</ATV_CABLE><ATV_CABLE>aa</ATV_CABLE>"));
    EXPECT_THAT(errors(), IsEmpty());
    const auto entries = RegionalPeer::entries();
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].countryName, "USA");
    EXPECT_EQ(entries[0].dtvAntenna, "air");
    EXPECT_THAT(entries[0].dtvCable,
                ElementsAre(Pair(AtscCableType::AUTO, "a"), Pair(AtscCableType::STD, "s"),
                            Pair(AtscCableType::HRC, "h"), Pair(AtscCableType::IRC, "i")));
    EXPECT_EQ(entries[0].atvAntenna, "ntsc");
    EXPECT_THAT(entries[0].atvCable,
                ElementsAre(Pair(AtscCableType::AUTO, "aa"), Pair(AtscCableType::STD, "as")));
    const auto lines = debugLines();
    EXPECT_THAT(std::vector<std::string>(lines.end() - 6, lines.end()),
                ElementsAre("loadCountryFreqMapXML cable auto name: a",
                            "loadCountryFreqMapXML cable std name: s",
                            "loadCountryFreqMapXML cable hrc name: h",
                            "loadCountryFreqMapXML cable irc name: i",
                            "loadCountryFreqMapXML cable std name: as",
                            "loadCountryFreqMapXML done, size 1"));
    EXPECT_EQ(lookUp(kUsa, kDtvCable, AtscCableType::HRC), "h");
    EXPECT_EQ(lookUp(kUsa, kAtvCable, AtscCableType::STD), "as");
    EXPECT_EQ(lookUp(kUsa, kAtvCable, AtscCableType::IRC), "no: untouched");
}

TEST_F(CountryFreqMapParseTest, NoPlanStandsInForAnother) {
    writeFreqMap(block("GERMANY", "<DTV_CABLE TYPE='AUTO'>a</DTV_CABLE>"));
    EXPECT_EQ(lookUp(kGermany, kDtvCable, AtscCableType::STD), "no: untouched")
            << "also at the lookup that reads the file";
    EXPECT_EQ(lookUp(kGermany, kDtvCable, AtscCableType::STD), "no: untouched");
    EXPECT_EQ(lookUp(kGermany, kDtvCable, AtscCableType::AUTO), "a");
    EXPECT_EQ(lookUp(kGermany, kDtvCable, static_cast<AtscCableType>(7)), "no: untouched");
}

TEST_F(CountryFreqMapParseTest, OnlyTheBeginningOfTypeCounts) {
    load(block("USA",
               "<DTV_CABLE TYPE='STDX'>s</DTV_CABLE><DTV_CABLE TYPE='AUTOMATIC'>a"
               "</DTV_CABLE><DTV_CABLE TYPE='HRC2'>h</DTV_CABLE>"));
    EXPECT_EQ(lookUp(kUsa, kDtvCable, AtscCableType::STD), "s");
    EXPECT_EQ(lookUp(kUsa, kDtvCable, AtscCableType::AUTO), "a");
    EXPECT_EQ(lookUp(kUsa, kDtvCable, AtscCableType::HRC), "h");
}

TEST_F(CountryFreqMapParseTest, AnUnknownTypeIsSkipped) {
    load(block("USA",
               "<DTV_CABLE TYPE='auto'>a</DTV_CABLE><DTV_CABLE TYPE='AUT'>b</DTV_CABLE>"
               "<DTV_CABLE TYPE=''>c</DTV_CABLE><DTV_CABLE TYPE=' STD'>d</DTV_CABLE>"));
    EXPECT_THAT(RegionalPeer::entries()[0].dtvCable, IsEmpty());
    EXPECT_THAT(debugLines(), Not(Contains(::testing::HasSubstr("cable"))));
}

TEST_F(CountryFreqMapParseTest, OfTwoTablesOfOneTypeTheFirstCounts) {
    load(block("USA", "<DTV_CABLE TYPE='HRC'>1</DTV_CABLE><DTV_CABLE TYPE='HRC'>2</DTV_CABLE>"));
    EXPECT_EQ(lookUp(kUsa, kDtvCable, AtscCableType::HRC), "1");
}

TEST_F(CountryFreqMapParseTest, ATableWithoutTextIsSkipped) {
    load(block("USA",
               "<DTV_CABLE TYPE='HRC'/><DTV_CABLE TYPE='HRC'>2</DTV_CABLE><DTV_CABLE/>"
               "<DTV_ANTENA/><ATV_ANTENA></ATV_ANTENA>"));
    EXPECT_EQ(lookUp(kUsa, kDtvCable, AtscCableType::HRC), "2");
    EXPECT_EQ(lookUp(kUsa, kDtvCable, AtscCableType::AUTO), "no: untouched");
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "");
    EXPECT_THAT(debugLines(), Contains("loadCountryFreqMapXML cable hrc name: "));
    EXPECT_THAT(errors(), IsEmpty()) << "the antenna elements are there";
}

TEST_F(CountryFreqMapParseTest, ABlockWithoutCountryIsSkipped) {
    load("<COUNTRY_FREQ_MAP><DTV_ANTENA>x</DTV_ANTENA></COUNTRY_FREQ_MAP>"
         "<COUNTRY_FREQ_MAP><COUNTRY_NAME/></COUNTRY_FREQ_MAP>" +
         block("USA", "<DTV_ANTENA>u</DTV_ANTENA><ATV_ANTENA>n</ATV_ANTENA>"));
    EXPECT_THAT(errors(), ElementsAre("loadCountryFreqMapXML without country name",
                                      "loadCountryFreqMapXML without country name"));
    EXPECT_EQ(RegionalPeer::entries().size(), 1U);
}

TEST_F(CountryFreqMapParseTest, MissingAntennasAreOnlyLogged) {
    load(block("USA", ""));
    EXPECT_THAT(errors(), ElementsAre("loadCountryFreqMapXML without antena name",
                                      "loadCountryFreqMapXML without antena a name"));
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "");
}

TEST_F(CountryFreqMapParseTest, BlocksBeginAtTheFirstOfTheirName) {
    load("<OTHER><COUNTRY_NAME>USA</COUNTRY_NAME></OTHER>" + block("GERMANY", "") +
         "<ANY><COUNTRY_NAME>JAPAN</COUNTRY_NAME></ANY>");
    const auto entries = RegionalPeer::entries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].countryName, "GERMANY");
    EXPECT_EQ(entries[1].countryName, "JAPAN");
}

TEST_F(CountryFreqMapParseTest, OfACountrysBlocksTheLastThatHasTheTableWins) {
    load(block("USA", "<DTV_ANTENA>1</DTV_ANTENA><DTV_CABLE>c</DTV_CABLE>") +
         block("GERMANY", "<DTV_ANTENA>g</DTV_ANTENA>") +
         block("USA", "<DTV_ANTENA>2</DTV_ANTENA>"));
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "2");
    EXPECT_EQ(lookUp(kUsa, kDtvCable), "c");
}

TEST_F(CountryFreqMapParseTest, NamesAreExactAndTextsKeepTheirBlanks) {
    load(block("usa", "<DTV_ANTENA>1</DTV_ANTENA>") + block(" USA", "") +
         block("GERMANY", "<DTV_ANTENA> freqtable_eu\n</DTV_ANTENA>"));
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "no: untouched");
    EXPECT_EQ(lookUp(kGermany, kDtvAntenna), " freqtable_eu\n");
}

TEST_F(CountryFreqMapParseTest, ByName) {
    load(block("ATLANTIS", "<DTV_ANTENA>deep</DTV_ANTENA>"));
    std::string name;
    EXPECT_TRUE(
            mMap.GetFreqTableNameByCountryName("ATLANTIS", kDtvAntenna, AtscCableType::AUTO, name));
    EXPECT_EQ(name, "deep");
    EXPECT_FALSE(
            mMap.GetFreqTableNameByCountryName("ATLANTI", kDtvAntenna, AtscCableType::AUTO, name));
}

TEST_F(CountryFreqMapParseTest, ACountryWithoutNameHasNoTables) {
    load(block("USA", "<DTV_ANTENA>u</DTV_ANTENA>"));
    log().clear();
    EXPECT_EQ(lookUp(_tv_country{161}, kDtvAntenna), "no: untouched");
    EXPECT_EQ(lookUp(_tv_country{999}, kDtvAntenna), "no: untouched");
    EXPECT_THAT(debugLines(),
                ElementsAre("CountryFreqMapParse country index 161, success 0, name ",
                            "CountryFreqMapParse country index 999, success 0, name "));
}

TEST_F(CountryFreqMapParseTest, AnUnknownTypeOfTableGivesNothing) {
    load(block("USA", "<DTV_ANTENA>u</DTV_ANTENA>"));
    EXPECT_EQ(lookUp(kUsa, static_cast<FreqTableType>(4)), "no: untouched");
    EXPECT_EQ(lookUp(kUsa, static_cast<FreqTableType>(0xffffffff)), "no: untouched");
}

TEST_F(CountryFreqMapParseTest, AFileWithoutEntriesAnswersTrueAndIsReadAgain) {
    writeFreqMap("<OTHER/>");
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "untouched");
    EXPECT_THAT(debugLines(), Contains("loadCountryFreqMapXML done, size 0"));
    writeFreqMap(block("USA", "<DTV_ANTENA>u</DTV_ANTENA>"));
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "u");
}

TEST_F(CountryFreqMapParseTest, AMissingOrBrokenFileIsTriedAgain) {
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "no: untouched");
    EXPECT_THAT(errors(),
                ElementsAre("loadCountryFreqMapXML LoadFile fail, error XML_ERROR_FILE_NOT_FOUND"));
    log().clear();
    const std::string path = writeFreqMap("<COUNTRY_FREQ_MAP>\n");
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "no: untouched");
    EXPECT_THAT(errors(),
                ElementsAre(path + ":1: no well-formed XML: the file ends within an element that "
                                   "begins here",
                            "loadCountryFreqMapXML LoadFile fail, error XML_ERROR_PARSING"));
    EXPECT_THAT(debugLines(), Contains("GetFreqTableNameByCountryName read success: 0"));
    writeFreqMap(block("USA", "<DTV_ANTENA>u</DTV_ANTENA>"));
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "u");
}

TEST_F(CountryFreqMapParseTest, AFailedReloadLeavesNoEntries) {
    load(block("USA", "<DTV_ANTENA>u</DTV_ANTENA>"));
    writeFreqMap("<");
    log().clear();
    EXPECT_FALSE(mMap.loadCountryFreqMapXML());
    EXPECT_THAT(debugLines(),
                ElementsAre("loadCountryFreqMapXML begin, country freq map size: 1, " +
                            set().tvconfigs() + "/freqtables/country_freq_map.xml"));
    EXPECT_THAT(RegionalPeer::entries(), IsEmpty());
}

TEST_F(CountryFreqMapParseTest, AFifoInPlaceOfTheFileHoldsNobodyUp) {
    const std::string folder = set().dir().mkdir("tvconfigs/freqtables");
    ASSERT_EQ(mkfifo((folder + "/country_freq_map.xml").c_str(), 0600), 0);
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "no: untouched");
    EXPECT_EQ(errors().back(),
              "loadCountryFreqMapXML LoadFile fail, error XML_ERROR_FILE_COULD_NOT_BE_OPENED");
}

TEST_F(CountryFreqMapParseTest, TheLastFolderGivenIsTheOneForAll) {
    write("a/country_freq_map.xml", block("USA", "<DTV_ANTENA>a</DTV_ANTENA>"));
    write("b/country_freq_map.xml", block("USA", "<DTV_ANTENA>b</DTV_ANTENA>"));
    const std::string a = set().tvconfigs() + "/a";
    const std::string b = set().tvconfigs() + "/b";
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna, AtscCableType::AUTO, a), "a");
    EXPECT_EQ(mMap.GetTvConfigPath(), a);
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna, AtscCableType::AUTO, b), "a")
            << "a map with entries stays, whatever the folder";
    EXPECT_EQ(mMap.GetTvConfigPath(), b);
    EXPECT_EQ(lookUp(kUsa, kDtvAntenna), "a");
    EXPECT_EQ(mMap.GetTvConfigPath(), b) << "no folder given, none changed";
    EXPECT_THAT(debugLines(), Not(Contains(::testing::HasSubstr("from TvPartitionPath"))));
    EXPECT_EQ(lookUp(_tv_country{161}, kDtvAntenna, AtscCableType::AUTO, a), "no: untouched");
    EXPECT_EQ(mMap.GetTvConfigPath(), a) << "the folder counts even when the country does not";
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
