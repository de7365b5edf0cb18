// Countries, languages, frequencies and TV systems, as the service answers them.

#include <android/log.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

#include "projectconfigs/tests/RegionalOnSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::SizeIs;

class RegionalMethodsTest : public RegionalOnSet {
  protected:
    // Writes a project that names no regional file.
    void withoutFiles() const { project("[COUNTRY]\nx=\n"); }

    std::vector<uint32_t> countries() { return *asked(&IMlkProjectConfigs::getCountryList); }
    std::vector<uint32_t> launcherCountries() {
        return *asked(&IMlkProjectConfigs::getCLTVCountryList);
    }
    std::vector<std::string> languages() {
        const auto list = *asked(&IMlkProjectConfigs::getLanguageList);
        return {list.begin(), list.end()};
    }
    std::vector<HidlFreqListItem> channels(int32_t country, FreqTableType type,
                                           AtscCableType cableType = AtscCableType::AUTO) {
        return *asked(&IMlkProjectConfigs::getFreqTableList, country, type, cableType);
    }
    // Errors, except those about the auxiliary files, which this set does not have.
    std::vector<std::string> errors() const {
        std::vector<std::string> lines = logged(ANDROID_LOG_ERROR);
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [](const std::string& line) {
                                       return line.rfind("Can't get ", 0) == 0;
                                   }),
                    lines.end());
        return lines;
    }
    // The debug lines of the service that contain a text.
    std::vector<std::string> linesWith(const std::string& part) const {
        std::vector<std::string> lines;
        for (const std::string& line : logged(ANDROID_LOG_DEBUG)) {
            if (line.find(part) != std::string::npos) {
                lines.push_back(line);
            }
        }
        return lines;
    }
};

TEST_F(RegionalMethodsTest, ListsComeFromTheFilesThatTheProjectNames) {
    start();
    EXPECT_THAT(countries(), ElementsAre(14, 44, 4294967295U));
    EXPECT_THAT(launcherCountries(), ElementsAre(44));
    EXPECT_THAT(languages(), ElementsAre("eng", "ger"));
    EXPECT_THAT(linesWith("filePath:"),
                ElementsAre("filePath:" + mSet.tvconfigs() + "/menu.txt",
                            "filePath:" + mSet.tvconfigs() + "/cltv.txt",
                            "filePath:" + mSet.tvconfigs() + "/languages.txt"));
    EXPECT_THAT(linesWith("Totol"), ElementsAre("Totol country count:3", "Totol country count:1"));
}

TEST_F(RegionalMethodsTest, AProjectThatNamesNoFilesHasEmptyLists) {
    withoutFiles();
    start();
    mLog.clear();
    EXPECT_THAT(countries(), IsEmpty());
    EXPECT_THAT(launcherCountries(), IsEmpty());
    EXPECT_THAT(languages(), IsEmpty());
    EXPECT_THAT(mLog.lines(), IsEmpty()) << "nothing to say of a file that is not named";
}

TEST_F(RegionalMethodsTest, MissingListFilesAreEmptyLists) {
    for (const char* const name : {"/menu.txt", "/cltv.txt", "/languages.txt"}) {
        ASSERT_EQ(unlink((mSet.tvconfigs() + name).c_str()), 0);
    }
    start();
    EXPECT_THAT(countries(), IsEmpty());
    EXPECT_THAT(launcherCountries(), IsEmpty());
    EXPECT_THAT(languages(), IsEmpty());
    EXPECT_THAT(errors(), ElementsAre(mSet.tvconfigs() + "/menu.txt don't exist.",
                                      mSet.tvconfigs() + "/cltv.txt don't exist.",
                                      mSet.tvconfigs() + "/languages.txt don't exist."));
}

TEST_F(RegionalMethodsTest, ListsFollowTheProject) {
    write("tvconfigs/model/B.ini", "[COUNTRY]\nCOUNTRY_PATH=/tvconfigs/cltv.txt\n");
    start();
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::setProjectId, 2)), "true");
    EXPECT_THAT(countries(), ElementsAre(44));
    EXPECT_THAT(languages(), IsEmpty());
}

TEST_F(RegionalMethodsTest, AChannelHasAllItsFields) {
    start();
    mLog.clear();
    const auto items = channels(kUsa, FreqTableType::DTV_ANTENNA);
    ASSERT_THAT(items, SizeIs(2));
    EXPECT_EQ(items[0].channel, 2);
    EXPECT_EQ(items[0].frequency, 57000);
    EXPECT_EQ(items[0].bandwidth, 6000000);
    EXPECT_STREQ(reinterpret_cast<const char*>(items[0].label.data()), "C2");
    EXPECT_EQ(items[0].modulation, 3);
    EXPECT_EQ(static_cast<uint16_t>(items[1].channel), 65535);
    EXPECT_EQ(items[1].bandwidth, 6000000);
    EXPECT_STREQ(reinterpret_cast<const char*>(items[1].label.data()), "LONG");
    EXPECT_EQ(items[1].modulation, 0);
    EXPECT_EQ(logged(ANDROID_LOG_DEBUG).back(), "getfreqTable,sucess 1: size: 2");
}

TEST_F(RegionalMethodsTest, NoPlanIsAnEmptyList) {
    start();
    const auto expectNone = [&](int32_t country, FreqTableType type, AtscCableType cableType,
                                const std::string& line) {
        mLog.clear();
        EXPECT_THAT(channels(country, type, cableType), IsEmpty());
        EXPECT_EQ(logged(ANDROID_LOG_DEBUG).back(), line);
    };
    const std::string failed = "getfreqTable,sucess 0: size: 0";
    // A plan of remarks only is a plan with an empty list.
    expectNone(kUsa, FreqTableType::DTV_CABLE, AtscCableType::HRC,
               "getfreqTable,sucess 1: size: 0");
    expectNone(kUsa, FreqTableType::DTV_CABLE, AtscCableType::AUTO, failed);
    expectNone(kUsa, FreqTableType::ATV_ANTENNA, AtscCableType::AUTO, failed);
    expectNone(kGermany, FreqTableType::DTV_ANTENNA, AtscCableType::AUTO, failed);
    for (const int32_t country :
         {-1, 161, 186, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()}) {
        expectNone(country, FreqTableType::DTV_ANTENNA, AtscCableType::AUTO, failed);
    }
    // A client may send any number for an enumerator.
    expectNone(kUsa, static_cast<FreqTableType>(4), AtscCableType::AUTO, failed);
    expectNone(kUsa, static_cast<FreqTableType>(0xffffffff), AtscCableType::AUTO, failed);
    expectNone(kUsa, FreqTableType::DTV_CABLE, static_cast<AtscCableType>(4), failed);
}

TEST_F(RegionalMethodsTest, ChannelPlansLieInAFolderOfTheirOwnUnlessTheProjectNamesAnother) {
    withoutFiles();
    write("tvconfigs/other/country_freq_map.xml",
          "<COUNTRY_FREQ_MAP><COUNTRY_NAME>USA</COUNTRY_NAME><DTV_ANTENA>air</DTV_ANTENA>"
          "</COUNTRY_FREQ_MAP>");
    write("tvconfigs/other/dtv/air", "7 8000000 1\n");
    start();
    EXPECT_THAT(channels(kUsa, FreqTableType::DTV_ANTENNA), SizeIs(2));
    RegionalPeer::forget();
    project("[FREQTABLE]\nFREQ_TABLE_PATH=/tvconfigs/other\n");
    start();
    EXPECT_THAT(channels(kUsa, FreqTableType::DTV_ANTENNA), SizeIs(1));
}

TEST_F(RegionalMethodsTest, ReloadIsSupportedWhereTheProjectNamesATvSystemFile) {
    start();
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::isSupportTvSysReload)), "true");
    project("[COUNTRY]\ntvSysMap=/no/such/file\n");
    start();
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::isSupportTvSysReload)), "true");
    for (const char* const none : {"[COUNTRY]\ntvSysMap=\n", "[LiveTV]\ntvSysMap=x\n", ""}) {
        project(none);
        start();
        EXPECT_EQ(flag(asked(&IMlkProjectConfigs::isSupportTvSysReload)), "false") << none;
    }
}

TEST_F(RegionalMethodsTest, ANewSetStartsInTheFirstCountryOfTheMap) {
    start();
    EXPECT_EQ(countryId(), "COUNTRY_ID=14\n");
    EXPECT_EQ(tvConfig(), "/tv/eu.config");
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::getHBBTVEnabled)), "true");
    EXPECT_EQ(config("[S]", "data"), mSet.tvdata() + "/dvb");
    EXPECT_EQ(config("[S]", "absent"), "") << "a country replaces items, it adds none";
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(RegionalMethodsTest, TheItemsOfTheCountryAreLoggedAsTheyAreNow) {
    start();
    const auto lines = logged(ANDROID_LOG_DEBUG);
    const auto named =
            std::find(lines.begin(), lines.end(),
                      "[InitTvSysMapInfo:875] tvSysMapCfgIni=" + mSet.tvconfigs() + "/tvsys.xml");
    ASSERT_NE(named, lines.end());
    // The order of items: the shorter text comes first.
    ASSERT_GE(lines.size(), 4U);
    EXPECT_THAT(std::vector<std::string>(lines.end() - 4, lines.end()),
                ElementsAre("\t[S]:data=" + mSet.tvdata() + "/dvb",
                            "\t[S]:absent=", "\t[LiveTV]:Hbbtv=true",
                            "\t[LiveTV]:TvConfig=" + mSet.tvconfigs() + "/tv/eu.config"));
}

TEST_F(RegionalMethodsTest, TheCountryIsTheLastStepOfTheStart) {
    start();
    const auto lines = logged(ANDROID_LOG_DEBUG);
    const auto at = [&](const std::string& line) {
        return std::find(lines.begin(), lines.end(), line) - lines.begin();
    };
    EXPECT_LT(at("\tProject total item=9"),
              at("[InitTvSysMapInfo:875] tvSysMapCfgIni=" + mSet.tvconfigs() + "/tvsys.xml"));
    EXPECT_THAT(lines.back(), HasSubstr("[LiveTV]:TvConfig"));
}

TEST_F(RegionalMethodsTest, ACountryIsInForceAtOnceAndAfterARestart) {
    start();
    mLog.clear();
    EXPECT_EQ(setCountry(kUsa), "true");
    EXPECT_EQ(linesWith("tvSysMapCfgIni="),
              std::vector<std::string>{"[InitTvSysMapInfo:875] tvSysMapCfgIni=" + mSet.tvconfigs() +
                                       "/tvsys.xml"});
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG).back(), MatchesRegex("\\[saveCountryId:[0-9]+\\] id=44"))
            << "it is saved when its items are there";
    EXPECT_EQ(countryId(), "COUNTRY_ID=44\n");
    const auto expectUsa = [&] {
        EXPECT_EQ(tvConfig(), "/tv/na.config");
        EXPECT_EQ(flag(asked(&IMlkProjectConfigs::getHBBTVEnabled)), "false");
        EXPECT_EQ(config("[S]", "data"), mSet.tvdata() + "/atsc");
    };
    expectUsa();
    start();
    expectUsa();
    EXPECT_EQ(countryId(), "COUNTRY_ID=44\n");
}

TEST_F(RegionalMethodsTest, ANewProjectHasItsOwnItemsUntilTheCountryIsSetAgain) {
    start();
    EXPECT_EQ(flag(asked(&IMlkProjectConfigs::setProjectId, 1)), "true");
    EXPECT_EQ(tvConfig(), "/tv/model.config");
    EXPECT_EQ(config("[S]", "data"), "model");
    EXPECT_EQ(setCountry(-1), "false") << "no country is nothing to save";
    EXPECT_EQ(tvConfig(), "/tv/eu.config") << "the saved country's items are put in all the same";
    EXPECT_EQ(countryId(), "COUNTRY_ID=14\n");
}

TEST_F(RegionalMethodsTest, WithoutATvSystemFileTheCountryIsOnlySaved) {
    project(kOtherItems);
    start();
    EXPECT_THAT(linesWith("tvSysMapCfgIni="),
                ElementsAre("[InitTvSysMapInfo:875] tvSysMapCfgIni="));
    EXPECT_NE(access(countryIdPath().c_str(), F_OK), 0) << "a start without it saves no country";
    mLog.clear();
    EXPECT_EQ(setCountry(-1), "false");
    EXPECT_NE(access(countryIdPath().c_str(), F_OK), 0);
    EXPECT_THAT(logged(ANDROID_LOG_DEBUG),
                ElementsAre("[InitTvSysMapInfo:875] tvSysMapCfgIni=", "[saveCountryId:133] id=-1"));
    EXPECT_EQ(setCountry(kGermany), "true");
    EXPECT_EQ(countryId(), "COUNTRY_ID=14\n");
    EXPECT_EQ(tvConfig(), "/tv/model.config");
    EXPECT_EQ(config("[S]", "data"), "model");
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(RegionalMethodsTest, ACountryThatTheMapDoesNotHaveIsSavedAndChangesNothing) {
    start();
    for (const int32_t country : {20, 161, 186, -2, std::numeric_limits<int32_t>::min(),
                                  std::numeric_limits<int32_t>::max()}) {
        EXPECT_EQ(setCountry(country), "true") << country;
        EXPECT_EQ(countryId(), "COUNTRY_ID=" + std::to_string(country) + "\n");
        EXPECT_EQ(tvConfig(), "/tv/eu.config");
    }
    EXPECT_THAT(errors(), IsEmpty());
    start();
    EXPECT_EQ(tvConfig(), "/tv/model.config");
}

TEST_F(RegionalMethodsTest, BrokenFilesLeaveTheStoreAsItIs) {
    for (const char* const broken : {"<", "<CountryTvSysMapXML>/x.xml</CountryTvSysMapXML>"}) {
        write("tvconfigs/tvsys.xml", broken);
        start();
        EXPECT_EQ(tvConfig(), "/tv/model.config") << broken;
        EXPECT_THAT(errors(), Not(IsEmpty())) << broken;
        EXPECT_EQ(setCountry(kUsa), "true") << "saved all the same";
        EXPECT_EQ(config("[S]", "data"), "model") << broken;
    }
}

TEST_F(RegionalMethodsTest, ACountryThatCannotBeSavedIsInForceUntilTheEnd) {
    start();
    ASSERT_EQ(unlink(countryIdPath().c_str()), 0);
    mSet.dir().mkdir("tvdata/tvsysmap/country_id.bin");
    EXPECT_EQ(setCountry(kUsa), "false");
    EXPECT_THAT(errors(), Contains("[saveCountryId:153] Open " + countryIdPath() + " failed!"));
    EXPECT_EQ(tvConfig(), "/tv/na.config");
}

TEST_F(RegionalMethodsTest, NothingThatAClientAsksForAddsUp) {
    write("tvconfigs/menu.txt", "Germany\nAtlantis\nUSA\n");
    write("tvconfigs/countries.xml", country("GERMANY", "DVB", "/tvconfigs/tv/eu.config") +
                                             country("Lemuria", "DVB", "/tvconfigs/tv/eu.config"));
    start();
    // Two unknown countries of the menu, one of the map, one modulation.
    constexpr size_t kUnknownNames = 4;
    for (int32_t round = 0; round < 20; ++round) {
        EXPECT_THAT(countries(), ElementsAre(0, 0, 44));
        EXPECT_THAT(channels(kUsa, FreqTableType::DTV_ANTENNA), SizeIs(2));
        EXPECT_THAT(channels(1000 + round, FreqTableType::DTV_ANTENNA), IsEmpty());
        EXPECT_THAT(channels(kUsa, static_cast<FreqTableType>(round + 4)), IsEmpty());
        EXPECT_EQ(setCountry(1000 + round), "true");
        EXPECT_EQ(RegionalPeer::addedNames(), kUnknownNames);
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
