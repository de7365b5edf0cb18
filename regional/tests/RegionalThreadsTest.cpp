#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <string>

#include "host/testing/QuietLog.h"
#include "host/testing/Threads.h"
#include "regional/CountryListParser.h"
#include "regional/FreqTableParser.h"
#include "regional/LanguageListParser.h"
#include "regional/TvSysMapCfgHolder.h"
#include "regional/tests/TvSysMapFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

constexpr int kThreads = 10;
constexpr int kRounds = 5;

class RegionalThreadsTest : public ::testing::Test, protected TvSysMapFiles {
  protected:
    RegionalThreadsTest() {
        mSystems = writeBoth();
        mCountries = write("countries.txt", "GERMANY\nunknown\nUSA\n");
        mLanguages = write("languages.txt", "eng\nger\n");
        for (const char* const folder : {"freqtables", "other"}) {
            write(std::string(folder) + "/country_freq_map.xml",
                  "<COUNTRY_FREQ_MAP><COUNTRY_NAME>USA</COUNTRY_NAME><DTV_ANTENA>air</DTV_ANTENA>"
                  "</COUNTRY_FREQ_MAP>");
            write(std::string(folder) + "/dtv/air", "2 6000000 57000 2 ODD\n3 0 63000 3 VSB8\n");
        }
    }
    // Calls every reader once and returns the number of wrong answers.
    int readAll(int id, bool byName = true) const {
        int wrong = 0;
        CountryListParser& parser = CountryListParser::GetInstance();
        wrong += parser.getCountryList(mCountries).size() != 3 ? 1 : 0;
        std::string name;
        wrong += parser.getCountryName(_tv_country{44}, name) && name == "USA" ? 0 : 1;
        std::vector<std::string> languages;
        LanguageListParser::GetInstance().getLanguageList(mLanguages, languages);
        wrong += languages.size() != 2 ? 1 : 0;
        CountryFreqMapParse& map = CountryFreqMapParse::GetInstance();
        if (byName) {
            const bool found = map.GetFreqTableNameByCountryName("USA", FreqTableType::DTV_ANTENNA,
                                                                 AtscCableType::AUTO, name);
            wrong += found && name == "air" ? 0 : 1;
        }
        std::vector<HidlFreqListItem> items;
        const std::string folder = set().tvconfigs() + (id % 2 == 0 ? "/freqtables" : "/other");
        wrong += processParser().GetTableList(folder, _tv_country{44}, FreqTableType::DTV_ANTENNA,
                                              AtscCableType::AUTO, items) &&
                                 items.size() == 2
                         ? 0
                         : 1;
        return wrong;
    }

    std::string mSystems;
    std::string mCountries;
    std::string mLanguages;
};

TEST_F(RegionalThreadsTest, EveryReaderFromManyThreadsWhileTheCountryChanges) {
    std::atomic<int> wrong = 0;
    const mlk::testing::QuietLog quiet;
    // The folder is chosen before any thread asks with a name alone.
    EXPECT_EQ(readAll(0, false), 0);
    mlk::testing::inThreads(kThreads, [&](int id) {
        for (int round = 0; round < kRounds; ++round) {
            if (id == 0) {
                CountryFreqMapParse::GetInstance().loadCountryFreqMapXML();
            }
            const _tv_country country{(id + round) % 2 == 0 ? 14 : 44};
            TvSysMapCfgHolder holder = processHolder();
            wrong += holder.getConfigs(mSystems, country).empty() ? 1 : 0;
            wrong += holder.saveCountryId(country) ? 0 : 1;
            TvSysMapCfgHolder saved = processHolder();
            wrong += saved.getConfigs(mSystems, kNoCountry).empty() ? 1 : 0;
            wrong += readAll(id);
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE((std::set<std::string>{"COUNTRY_ID=14\n", "COUNTRY_ID=44\n"}).count(countryId()));
}

// Threads that do nothing else, so that they nearly always meet.
TEST_F(RegionalThreadsTest, LookUpsWhileTheMapIsLoadedAgain) {
    constexpr int kLookUps = 300;
    std::atomic<int> wrong = 0;
    const mlk::testing::QuietLog quiet;
    EXPECT_EQ(readAll(0, false), 0);
    mlk::testing::inThreads(4, [&](int id) {
        CountryFreqMapParse& map = CountryFreqMapParse::GetInstance();
        for (int round = 0; round < kLookUps; ++round) {
            std::string name;
            if (id == 0) {
                wrong += map.loadCountryFreqMapXML() ? 0 : 1;
            } else if (id == 1) {
                const std::string folder =
                        set().tvconfigs() + (round % 2 == 0 ? "/freqtables" : "/other");
                const bool found = map.GetFreqTableNameByCountry(folder, _tv_country{44},
                                                                 FreqTableType::DTV_ANTENNA,
                                                                 AtscCableType::AUTO, name);
                wrong += found && name == "air" ? 0 : 1;
            } else {
                const bool found = map.GetFreqTableNameByCountryName(
                        "USA", FreqTableType::DTV_ANTENNA, AtscCableType::AUTO, name);
                wrong += found && name == "air" ? 0 : 1;
            }
        }
    });
    EXPECT_EQ(wrong, 0);
}

// A set whose first start sees two callers at once has one country, and both get its items.
TEST_F(RegionalThreadsTest, TheFirstStartByManyThreads) {
    std::atomic<int> wrong = 0;
    mlk::testing::inThreads(kThreads, [&](int) {
        TvSysMapCfgHolder holder = processHolder();
        wrong += holder.getConfigs(mSystems, kNoCountry).size() == 3 ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(countryId(), "COUNTRY_ID=14\n");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
