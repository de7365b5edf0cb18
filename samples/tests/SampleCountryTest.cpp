// What the country changes for clients of the service that runs on the sample.

#include <gmock/gmock.h>

#include <algorithm>

#include "samples/tests/ServedSample.h"

namespace mlk::samples {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Words = std::vector<std::string>;

constexpr const char* kTrue = "{\"success\":true,\"value\":true}\n";
constexpr const char* kFalse = "{\"success\":true,\"value\":false}\n";

class SampleCountryTest : public ServedSample {
  protected:
    static std::string project(Words words) {
        words.insert(words.begin(), "IMlkProjectConfigs");
        return call(std::move(words));
    }
    static std::string item(const std::string& category, const std::string& key) {
        return project({"getConfig", category, key});
    }
    // A text value as mlkctl prints it.
    static std::string text(const std::string& value) {
        return "{\"success\":true,\"value\":\"" + value + "\"}\n";
    }
    static std::string feature(const std::string& name) {
        return call({"IMlkTvConfigs", "getFlag", name});
    }
    // The number of channels of a plan of the sample: its lines without remarks.
    static size_t channelsOf(const std::string& plan) {
        const auto lines = linesOf(contentOf("tvconfigs/freqtables/" + plan));
        return static_cast<size_t>(
                std::count_if(lines.begin(), lines.end(),
                              [](const std::string& line) { return line.rfind("//", 0) != 0; }));
    }
    static size_t channelsIn(const std::string& answer) {
        size_t count = 0;
        for (size_t at = answer.find("\"channel\":"); at != std::string::npos;
             at = answer.find("\"channel\":", at + 1)) {
            ++count;
        }
        return count;
    }
};

TEST_F(SampleCountryTest, PlansArePrintedByTheCountrysName) {
    const std::string cable = project({"getFreqTableList", "USA", "DTV_CABLE", "HRC"});
    EXPECT_THAT(cable, StartsWith("[{\"channel\":1,\"frequency\":73754,\"bandwidth\":6000000,"
                                  "\"label\":\"H1\",\"modulation\":5},{\"channel\":2,"));
    EXPECT_THAT(cable, EndsWith("{\"channel\":158,\"frequency\":997800,\"bandwidth\":6000000,"
                                "\"label\":\"H158\",\"modulation\":5}]\n"));
    EXPECT_EQ(channelsIn(cable), channelsOf("dtv/freqtable_atsc_cable_hrc"));
    EXPECT_EQ(project({"getFreqTableList", "44", "1", "2"}), cable);

    const std::string antenna = project({"getFreqTableList", "GERMANY", "DTV_ANTENNA", "AUTO"});
    EXPECT_THAT(antenna, StartsWith("[{\"channel\":5,\"frequency\":177500,\"bandwidth\":7000000,"
                                    "\"label\":\"E5\",\"modulation\":18},"));
    EXPECT_THAT(antenna, HasSubstr("{\"channel\":21,\"frequency\":474000,\"bandwidth\":8000000,"
                                   "\"label\":\"E21\",\"modulation\":18}"));
    EXPECT_EQ(channelsIn(antenna), channelsOf("dtv/freqtable_eu"));

    EXPECT_EQ(project({"getFreqTableList", "GERMANY", "DTV_CABLE", "HRC"}), "[]\n");
    EXPECT_EQ(project({"getFreqTableList", "DEFAULT", "DTV_ANTENNA", "AUTO"}), "[]\n");
}

TEST_F(SampleCountryTest, ANewSetStandsInItsMarketsLargestCountry) {
    EXPECT_EQ(mSet.dir().read("tvdata/tvsysmap/country_id.bin"), "COUNTRY_ID=14\n");
    EXPECT_EQ(project({"isSupportTvSysReload"}), kTrue);
    EXPECT_EQ(item("[COUNTRY]", "TV_SYSTEM"), text("DVB_WEST"));
    EXPECT_THAT(mlkctl({"show"}),
                HasSubstr("\nCountry\n"
                          "  Name              GERMANY\n"
                          "  Number            14\n"
                          "  TV system         DVB_WEST\n"
                          "  TV configuration  /tvconfigs/tv/tv_eu.config (country)\n"
                          "  Channels          DTV_ANTENNA: " +
                          std::to_string(channelsOf("dtv/freqtable_eu")) +
                          "\n"
                          "                    DTV_CABLE AUTO: " +
                          std::to_string(channelsOf("dtv/freqtable_dvbc_germany")) +
                          "\n"
                          "                    ATV_ANTENNA: " +
                          std::to_string(channelsOf("atv/freqtable_atv_bg")) +
                          "\n"
                          "                    ATV_CABLE AUTO: " +
                          std::to_string(channelsOf("atv/freqtable_atv_bg_cable")) +
                          "\n"
                          "  Languages         "));
}

TEST_F(SampleCountryTest, AnotherCountryHasItsFeaturesFromTheNextStartOn) {
    EXPECT_EQ(feature("ATV"), kTrue);
    EXPECT_EQ(feature("MHEG5"), kFalse);
    EXPECT_EQ(project({"setCountryId", "UNITED_KINGDOM"}), kTrue);
    const std::string file = text(mSet.tvconfigs() + "/tv/tv_uk.config");
    EXPECT_EQ(item("[LiveTV]", "TvConfig"), file);
    EXPECT_EQ(item("[COUNTRY]", "TV_SYSTEM"), text("DVB_UK"));
    EXPECT_EQ(feature("ATV"), kTrue) << "the file is only looked for at the start";
    EXPECT_EQ(feature("MHEG5"), kFalse);

    start();
    EXPECT_EQ(item("[LiveTV]", "TvConfig"), file);
    EXPECT_EQ(item("[COUNTRY]", "TV_SYSTEM"), text("DVB_UK"));
    EXPECT_EQ(feature("ATV"), kFalse);
    EXPECT_EQ(feature("MHEG5"), kTrue);
    EXPECT_EQ(project({"getLanguageList"}), "[\"eng\",\"wel\",\"gla\",\"gle\"]\n");
    EXPECT_THAT(mlkctl({"show"}), HasSubstr("\n  Name              UNITED_KINGDOM\n"));
}

TEST_F(SampleCountryTest, AModelWhoseMapLacksTheCountryHasItsOwnItems) {
    EXPECT_EQ(project({"setProjectId", "4"}), kTrue);
    start();
    EXPECT_EQ(item("[LiveTV]", "TvConfig"), text(mSet.tvconfigs() + "/tv/tv_na.config"));
    EXPECT_EQ(item("[COUNTRY]", "TV_SYSTEM"), text(""));
    EXPECT_EQ(project({"setCountryId", "USA"}), kTrue);
    EXPECT_THAT(mlkctl({"show"}), HasSubstr("\n                    DTV_CABLE HRC: 158\n"));
}

}  // namespace
}  // namespace mlk::samples
