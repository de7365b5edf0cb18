#include "regional/FreqTableParser.h"

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/log/HostLog.h"
#include "regional/RegionalData.h"
#include "regional/tests/RegionalFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr _tv_country kUsa{44};

// "channel/bandwidth/frequency/label/modulation"
std::string textOf(const HidlFreqListItem& item) {
    std::ostringstream text;
    text << item.channel << '/' << item.bandwidth << '/' << item.frequency << '/'
         << std::string(reinterpret_cast<const char*>(item.label.data())) << '/' << item.modulation;
    return text.str();
}

// Does something once, when this process first logs that line, before the line's author goes on.
class OnLog {
  public:
    OnLog(std::string line, std::function<void()> action) {
        sLine = std::move(line);
        sAction = std::move(action);
        __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
        __android_log_set_logger([](const __android_logger_data*, const char* text) {
            if (text == sLine && sAction) {
                // What it logs itself comes here, too.
                std::exchange(sAction, nullptr)();
            }
        });
    }
    ~OnLog() {
        mlk_host_log_install();
        sAction = nullptr;
    }
    OnLog(const OnLog&) = delete;
    OnLog& operator=(const OnLog&) = delete;

    static bool isDone() { return !sAction; }

  private:
    // A logger has no data of its own.
    inline static std::string sLine;
    inline static std::function<void()> sAction;
};

class FreqTableParserTest : public ::testing::Test, protected RegionalFiles {
  protected:
    std::vector<std::string> parse(const std::string& text) const {
        return parseIn(write("freqtables/dtv/table", text));
    }
    static std::vector<std::string> parseIn(const std::string& path) {
        std::vector<HidlFreqListItem> items(1);
        if (!processParser().ParseFreqTable(path, items)) {
            EXPECT_EQ(items.size(), 1U) << "a failure leaves the items alone";
            return {"failed"};
        }
        std::vector<std::string> texts;
        for (const HidlFreqListItem& item : items) {
            texts.push_back(textOf(item));
        }
        return texts;
    }
    void writeUsa(const std::string& table) const {
        writeFreqMap("<COUNTRY_FREQ_MAP><COUNTRY_NAME>USA</COUNTRY_NAME><DTV_ANTENA>" + table +
                     "</DTV_ANTENA><ATV_ANTENA>ntsc</ATV_ANTENA></COUNTRY_FREQ_MAP>");
    }
    static bool list(FreqTableType type, std::vector<HidlFreqListItem>& items) {
        return processParser().GetTableList("", kUsa, type, AtscCableType::AUTO, items);
    }
    // The log lines after those of the country map, each with its priority.
    std::vector<std::string> parserLines() const {
        std::vector<std::string> lines;
        for (const std::string& line : log().brief()) {
            if (line.substr(2).rfind("GetTableList", 0) == 0) {
                lines.push_back(line);
            }
        }
        return lines;
    }
};

TEST_F(FreqTableParserTest, ColumnsStandApartByBlanksOrCommas) {
    EXPECT_THAT(parse("21 8000000 474000\n"
                      "21,8000000,474000,E21,DVB_AUTO\n"
                      " , 22 ,,8000000, ,482000  E22,DVB_AUTO,more\r\n"
                      "23 8000000 490000 E23"),
                ElementsAre("21/8000000/474000//0", "21/8000000/474000/E21/18",
                            "22/8000000/482000/E22/18", "23/8000000/490000/E23/0"));
}

// A file that was written on another system has one at every end of a line.
TEST_F(FreqTableParserTest, CarriageReturnsPartColumns) {
    EXPECT_THAT(parse("21,8000000,474000\r\n"
                      "22,8000000,482000,E22\r\n"
                      "23,8000000,490000,E23,DVB_AUTO\r\n"
                      "24\r8000000\r498000\rE24\rDVB_AUTO\n"),
                ElementsAre("21/8000000/474000//0", "22/8000000/482000/E22/0",
                            "23/8000000/490000/E23/18", "24/8000000/498000/E24/18"));
}

TEST_F(FreqTableParserTest, ATabBelongsToItsColumn) {
    EXPECT_THAT(parse("1 2 3 A\tB DVB_AUTO\n"), ElementsAre("1/2/3/A\tB/18"));
}

TEST_F(FreqTableParserTest, NumbersAreReadAsFarAsTheyGo) {
    EXPECT_THAT(parse("+5x 7e6 -0 E5\n"
                      "a 8000000 1\n"
                      "65541 -8 1\n"
                      "-1 1 4294967296\n"
                      "-1 1 1\n"
                      "1 1 2147483647\n"
                      "\t7 \t8 \t9\n"),
                ElementsAre("0/8000000/1//0", "5/-8/1//0", "65535/1/1//0", "1/1/2147483647//0",
                            "7/8/9//0"));
}

TEST_F(FreqTableParserTest, NoBandwidthIsSixMegahertz) {
    EXPECT_THAT(parse("2,0,55250,ATV\n3,none,61250\n"),
                ElementsAre("2/6000000/55250/ATV/0", "3/6000000/61250//0"));
}

TEST_F(FreqTableParserTest, ALineWithoutFrequencyIsDropped) {
    EXPECT_THAT(parse("3 0 0 QAM64\n4 8000000\n5\n6 7 -1\n7 7 x\n ,\n8 7 1\n"),
                ElementsAre("8/7/1//0"));
}

TEST_F(FreqTableParserTest, RemarksAndVeryShortLinesAreSkipped) {
    EXPECT_THAT(parse("// 1 2 3\n//\n\n9\n9"), IsEmpty());
    EXPECT_THAT(parse(" // 2 3\n/1 2 3\n"), ElementsAre("0/2/3//0", "0/2/3//0"))
            << "a remark has its marks at the very beginning";
    EXPECT_THAT(parse(""), IsEmpty());
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(FreqTableParserTest, ALabelHasFourCharacters) {
    EXPECT_THAT(parse("1 2 3 ABCDEF\n1 2 3 ABCD\n1 2 3 A QAM64\n"),
                ElementsAre("1/2/3/ABCD/0", "1/2/3/ABCD/0", "1/2/3/A/9"));
    std::vector<HidlFreqListItem> items;
    ASSERT_TRUE(processParser().ParseFreqTable(write("t", "1 2 3 ABCDEF\n"), items));
    EXPECT_EQ(items[0].label[3], 'D');
    EXPECT_EQ(items[0].label[4], 0);
}

TEST_F(FreqTableParserTest, EveryModulationInEitherColumn) {
    const std::vector<std::string> names = {
            "UNKNOW",   "ATV}",      "OQPSK",    "VSB8",  "VSB16",  "QAM_AUTO",
            "QAM4",     "QAM16",     "QAM32",    "QAM64", "QAM128", "QAM256",
            "QAM512",   "QAM1024",   "QPSK",     "BPSK",  "OFDM",   "ISDB_AUTO",
            "DVB_AUTO", "DTMB_AUTO", "ABS_AUTO", "DVB_S", "DVB_S2", "DVB_S_AUTO"};
    ASSERT_EQ(names.size(), 24U);
    for (size_t code = 0; code < names.size(); ++code) {
        EXPECT_THAT(
                parse("1 2 3 " + names[code] + "\n1 2 3 L " + names[code] + "\n"),
                ElementsAre("1/2/3//" + std::to_string(code), "1/2/3/L/" + std::to_string(code)))
                << names[code];
    }
}

TEST_F(FreqTableParserTest, OfTwoModulationsTheSecondCounts) {
    EXPECT_THAT(parse("1 2 3 QAM64 QAM256\n1 2 3 QAM64 nonsense\n"),
                ElementsAre("1/2/3//11", "1/2/3//0"));
}

TEST_F(FreqTableParserTest, AnUnknownModulationIsKnownFromThenOn) {
    EXPECT_THAT(parse("1 2 3 NEW1\n1 2 3 L NEW1\n1 2 3 NEW1\n1 2 3 L NEW1\n"),
                ElementsAre("1/2/3/NEW1/0", "1/2/3/L/0", "1/2/3//0", "1/2/3/L/0"));
    EXPECT_THAT(parse("1 2 3 NEW1\n"), ElementsAre("1/2/3//0")) << "also in the next file";
    EXPECT_THAT(parse("1 2 3 ATV\n"), ElementsAre("1/2/3/ATV/0")) << "a label is no addition";
    EXPECT_EQ(RegionalPeer::addedNames(), 1U);
}

TEST_F(FreqTableParserTest, ALongLineIsReadInPiecesOf49) {
    // The first piece has 49 characters; the rest is the second.
    const std::string first = "1 2 3 ABCD QAM64 " + std::string(32, 'x');
    ASSERT_EQ(first.size(), 49U);
    EXPECT_THAT(parse(first + "4 5 6 EFGH\n7 8 9\n"),
                ElementsAre("1/2/3/ABCD/9", "4/5/6/EFGH/0", "7/8/9//0"));
    EXPECT_THAT(parse(first.substr(0, 48) + "\n4 5 6\n"), ElementsAre("1/2/3/ABCD/9", "4/5/6//0"))
            << "48 characters and the line feed are one piece";
    EXPECT_THAT(parse("// " + std::string(46, 'x') + "4 5 6\n"), ElementsAre("4/5/6//0"))
            << "the rest of a long remark is no remark";
    EXPECT_THAT(parse(first + "\n7 8 9"), ElementsAre("1/2/3/ABCD/9", "7/8/9//0"));
}

TEST_F(FreqTableParserTest, ANulByteHidesTheRestOfItsPiece) {
    EXPECT_THAT(parse(std::string("1 2 3\0 AB QAM64\n4 5 6\n", 22)),
                ElementsAre("1/2/3//0", "4/5/6//0"));
    EXPECT_THAT(parse(std::string("\0 1 2 3\n4 5 6\n", 14)), ElementsAre("4/5/6//0"));
}

TEST_F(FreqTableParserTest, WhatCannotBeReadFails) {
    EXPECT_THAT(parseIn(""), ElementsAre("failed"));
    EXPECT_THAT(log().lines(), IsEmpty());
    const std::string missing = set().tvconfigs() + "/missing";
    EXPECT_THAT(parseIn(missing), ElementsAre("failed"));
    EXPECT_THAT(errors(), ElementsAre("[ParseFreqTable 92] fd is null, " + missing));
    const std::string fifo = set().tvconfigs() + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_THAT(parseIn(fifo), ElementsAre("failed"));
    EXPECT_EQ(errors().back(), "[ParseFreqTable 92] fd is null, " + fifo);
    EXPECT_THAT(parseIn(set().tvconfigs()), ElementsAre("failed"));
}

TEST_F(FreqTableParserTest, PathsByKind) {
    write("freqtables/dtv/t", "");
    write("freqtables/t", "");
    const std::string folder = set().tvconfigs() + "/freqtables";
    std::string path;
    EXPECT_TRUE(processParser().GetFreqTablePath(FreqTableType::DTV_ANTENNA, "t", path));
    EXPECT_EQ(path, folder + "/dtv/t");
    EXPECT_TRUE(processParser().GetFreqTablePath(FreqTableType::DTV_CABLE, "t", path));
    EXPECT_EQ(path, folder + "/dtv/t");
    EXPECT_FALSE(processParser().GetFreqTablePath(FreqTableType::ATV_ANTENNA, "t", path));
    EXPECT_EQ(path, folder + "/atv/t");
    EXPECT_FALSE(processParser().GetFreqTablePath(FreqTableType::ATV_CABLE, "t", path));
    EXPECT_EQ(path, folder + "/atv/t");
    EXPECT_TRUE(processParser().GetFreqTablePath(static_cast<FreqTableType>(9), "/t", path));
    EXPECT_EQ(path, folder + "/t");
    path = "before";
    EXPECT_FALSE(processParser().GetFreqTablePath(FreqTableType::DTV_ANTENNA, "", path));
    EXPECT_EQ(path, "before");
}

TEST_F(FreqTableParserTest, FindsACountrysTable) {
    writeUsa("air");
    const std::string path = write("freqtables/dtv/air", "2 6000000 57000 VSB8\n");
    std::vector<HidlFreqListItem> items;
    EXPECT_TRUE(list(FreqTableType::DTV_ANTENNA, items));
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(textOf(items[0]), "2/6000000/57000//3");
    EXPECT_THAT(parserLines(), ElementsAre("D/GetTableList country index 44 type 0, freqName: air",
                                           "D/GetTableList full freq path,sucess 1: " + path,
                                           "D/GetTableList get freq ,sucess 1: size: 1"));
}

TEST_F(FreqTableParserTest, AnotherFolderMayBeGiven) {
    write("other/country_freq_map.xml",
          "<COUNTRY_FREQ_MAP><COUNTRY_NAME>USA</COUNTRY_NAME>"
          "<DTV_ANTENA>t</DTV_ANTENA></COUNTRY_FREQ_MAP>");
    write("other/dtv/t", "2 6000000 57000\n");
    std::vector<HidlFreqListItem> items;
    EXPECT_TRUE(processParser().GetTableList(set().tvconfigs() + "/other", kUsa,
                                             FreqTableType::DTV_ANTENNA, AtscCableType::AUTO,
                                             items));
    EXPECT_EQ(items.size(), 1U);
}

// Otherwise a call for one folder opens the file of another.
TEST_F(FreqTableParserTest, AFolderGivenMeanwhileDoesNotCount) {
    writeUsa("air");
    write("freqtables/dtv/air", "2 6000000 57000\n");
    write("other/dtv/air", "3 6000000 63000\n");
    const std::string folder = set().tvconfigs() + "/freqtables";
    const std::string other = set().tvconfigs() + "/other";
    CountryFreqMapParse& plans = RegionalData::GetInstance().plans;
    for (const std::string& given : {folder, std::string()}) {
        std::string name;
        plans.GetFreqTableNameByCountry(folder, kUsa, FreqTableType::DTV_ANTENNA,
                                        AtscCableType::AUTO, name);
        const auto useOther = [&] {
            plans.GetFreqTableNameByCountry(other, kUsa, FreqTableType::DTV_ANTENNA,
                                            AtscCableType::AUTO, name);
        };
        // Another thread, as another call is: this one holds the log's lock.
        const OnLog meanwhile("GetTableList country index 44 type 0, freqName: air",
                              [&] { std::thread(useOther).join(); });
        std::vector<HidlFreqListItem> items;
        EXPECT_TRUE(processParser().GetTableList(given, kUsa, FreqTableType::DTV_ANTENNA,
                                                 AtscCableType::AUTO, items));
        EXPECT_TRUE(OnLog::isDone());
        ASSERT_EQ(items.size(), 1U);
        EXPECT_EQ(textOf(items[0]), "2/6000000/57000//0");
        EXPECT_EQ(plans.GetTvConfigPath(), other) << "later calls use it";
    }
}

TEST_F(FreqTableParserTest, ATableOfRemarksIsAnEmptyList) {
    writeUsa("air");
    write("freqtables/dtv/air", "// nothing here\n");
    std::vector<HidlFreqListItem> items(3);
    EXPECT_TRUE(list(FreqTableType::DTV_ANTENNA, items));
    EXPECT_THAT(items, IsEmpty());
    EXPECT_EQ(parserLines().back(), "D/GetTableList get freq ,sucess 1: size: 0");
}

TEST_F(FreqTableParserTest, NoTableForTheCountry) {
    writeUsa("");
    std::vector<HidlFreqListItem> items(1);
    EXPECT_FALSE(list(FreqTableType::DTV_CABLE, items));
    EXPECT_FALSE(list(FreqTableType::DTV_ANTENNA, items));
    EXPECT_THAT(parserLines(), ElementsAre("D/GetTableList sucess 0 freqName: ",
                                           "D/GetTableList sucess 1 freqName: "));
    EXPECT_EQ(items.size(), 1U);
}

TEST_F(FreqTableParserTest, ATableThatIsNotThere) {
    writeUsa(" air");
    write("freqtables/dtv/air", "2 6000000 57000\n");
    std::vector<HidlFreqListItem> items;
    EXPECT_FALSE(list(FreqTableType::DTV_ANTENNA, items));
    EXPECT_THAT(parserLines(), ElementsAre("D/GetTableList country index 44 type 0, freqName:  air",
                                           "E/GetTableList full freq path,sucess 0: " +
                                                   set().tvconfigs() + "/freqtables/dtv/ air"));
    EXPECT_FALSE(list(FreqTableType::ATV_ANTENNA, items));
    EXPECT_EQ(parserLines().back(), "E/GetTableList full freq path,sucess 0: " + set().tvconfigs() +
                                            "/freqtables/atv/ntsc");
}

TEST_F(FreqTableParserTest, ATableThatCannotBeRead) {
    writeUsa("air");
    set().dir().mkdir("tvconfigs/freqtables/dtv/air");
    std::vector<HidlFreqListItem> items;
    EXPECT_FALSE(list(FreqTableType::DTV_ANTENNA, items));
    EXPECT_EQ(parserLines().back(), "D/GetTableList get freq ,sucess 0: size: 0");
    EXPECT_THAT(errors(),
                ElementsAre(set().tvconfigs() +
                                    "/freqtables/dtv/air: cannot be read: not a regular file",
                            "[ParseFreqTable 92] fd is null, " + set().tvconfigs() +
                                    "/freqtables/dtv/air"));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
