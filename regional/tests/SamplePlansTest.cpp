// Compares the sample's channel plans with the standards that they follow.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "regional/FreqTableParser.h"
#include "regional/tests/RegionalFiles.h"
#include "regional/tests/SamplePlanRules.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::ContainerEq;
using ::testing::HasSubstr;

const std::filesystem::path kFolder =
        std::filesystem::path(MLK_SAMPLES_DIR) / "partitions/tvconfigs/freqtables";

std::vector<std::string> readPlan(const std::string& name) {
    std::vector<HidlFreqListItem> items;
    EXPECT_TRUE(processParser().ParseFreqTable(kFolder / name, items)) << name;
    std::vector<std::string> lines;
    for (const HidlFreqListItem& item : items) {
        lines.push_back(lineOf(item.channel, item.bandwidth, item.frequency * int64_t{1000},
                               reinterpret_cast<const char*>(item.label.data()), item.modulation));
    }
    return lines;
}

std::string textOf(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(SamplePlansTest, FollowTheirStandards) {
    for (const auto& [name, lines] : samplePlans()) {
        EXPECT_THAT(readPlan(name), ContainerEq(lines)) << name;
    }
}

TEST(SamplePlansTest, NoneIsLeftUnchecked) {
    const Plans plans = samplePlans();
    size_t files = 0;
    for (const char* const kind : {"dtv", "atv"}) {
        for (const auto& entry : std::filesystem::directory_iterator(kFolder / kind)) {
            EXPECT_EQ(plans.count(kind + ("/" + entry.path().filename().string())), 1U)
                    << entry.path();
            ++files;
        }
    }
    EXPECT_EQ(files, plans.size());
}

// Well-known frequencies of the plans.
TEST(SamplePlansTest, WellKnownChannels) {
    const auto expect = [](const std::string& plan, const std::string& line) {
        EXPECT_THAT(readPlan(plan), ::testing::Contains(line)) << plan;
    };
    expect("dtv/freqtable_eu", "21 8000000 474000 E21 18");
    expect("dtv/freqtable_eu", "12 7000000 226500 E12 18");
    expect("dtv/freqtable_dvbt_australia", "12 7000000 226500 12 18");
    expect("dtv/freqtable_atsc_air", "7 6000000 177000 7 3");
    expect("dtv/freqtable_isdb", "14 6000000 473143 14 17");
    expect("dtv/freqtable_isdb_japan", "27 6000000 557143 27 17");
    expect("dtv/freqtable_dtmb", "13 8000000 474000 DS13 19");
    expect("dtv/freqtable_atsc_cable_std", "2 6000000 57000 C2 5");
    expect("dtv/freqtable_atsc_cable_std", "98 6000000 111025 C98 5");
    expect("dtv/freqtable_atsc_cable_hrc", "2 6000000 55753 H2 5");
    expect("dtv/freqtable_atsc_cable_irc", "5 6000000 81013 I5 5");
    expect("dtv/freqtable_dvbc_germany", "138 8000000 442000 S38 5");
    expect("atv/freqtable_atv_bg", "5 7000000 175250 E5 1");
    expect("atv/freqtable_atv_m", "2 6000000 55250 2 1");
    expect("atv/freqtable_atv_m_cable_std", "14 6000000 121263 C14 1");
    expect("atv/freqtable_atv_m_cable_hrc", "2 6000000 54003 H2 1");
    expect("atv/freqtable_atv_dk", "1 8000000 49750 R1 1");
    expect("atv/freqtable_atv_m_japan", "62 6000000 765250 J62 1");
}

// A longer line would be read as two.
TEST(SamplePlansTest, LinesFitTheReader) {
    for (const auto& [name, lines] : samplePlans()) {
        std::istringstream text(textOf(kFolder / name));
        size_t channels = 0;
        for (std::string line; std::getline(text, line);) {
            EXPECT_LE(line.size(), 48U) << name << ": " << line;
            channels += line.rfind("//", 0) == 0 ? 0 : 1;
        }
        EXPECT_EQ(channels, lines.size()) << name;
    }
}

TEST(SamplePlansTest, EachNamesItsStandard) {
    const std::string guide = textOf(std::filesystem::path(MLK_SAMPLES_DIR) / "regional.md");
    for (const auto& [name, lines] : samplePlans()) {
        EXPECT_THAT(textOf(kFolder / name), HasSubstr("\n// Standard: ")) << name;
        EXPECT_THAT(guide, HasSubstr("`" + name.substr(4) + "`")) << name;
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
