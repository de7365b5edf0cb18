// The chain of customer, system, model and board files, read by the product's own parser.

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "host/testing/LogCapture.h"
#include "projectconfigs/BoardID.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/ProjectID.h"
#include "samples/tests/SampleSet.h"

namespace mlk::samples {
namespace {

using mlk::testing::LogCapture;
using mlk::testing::LogLine;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using vendor::morlak::mlkconfigs::V1_0::implementation::BoardID;
using vendor::morlak::mlkconfigs::V1_0::implementation::findKnownItem;
using vendor::morlak::mlkconfigs::V1_0::implementation::kKnownItems;
using vendor::morlak::mlkconfigs::V1_0::implementation::KnownItem;
using vendor::morlak::mlkconfigs::V1_0::implementation::ProjectID;
using vendor::morlak::mlkconfigs::V1_0::implementation::ValueType;

constexpr const char* kNoBoard = "DEFAULT_BOARD_ID";
constexpr size_t kLeastItems = 200;

// Distinct values of one item over all models.
std::set<std::string> valuesOf(SampleSet& sample, const char* section, const char* key) {
    std::set<std::string> values;
    for (int model = 1; model <= kModelCount; ++model) {
        sample.select(model, kNoBoard);
        values.insert(sample.value(section, key));
    }
    return values;
}

TEST(SampleSystem, ListsEveryModelTheCommentedOneToo) {
    SampleSet sample;
    sample.select(1, kNoBoard);
    std::vector<std::string> list;
    sample.parser().getProjectIniList(list);
    EXPECT_THAT(list, ElementsAre("TRQ32_S1_EU.ini", "TRQ43_M2_EU.ini", "TRQ55_M2_LATAM.ini",
                                  "TRQ50_M2_NA.ini", "TRQ55_C3_CN.ini", "TRQ65_C3_UK.ini",
                                  "TRQ75_C4_APAC.ini"));
    EXPECT_EQ(sample.parser().getProjectMaxIdx(), static_cast<unsigned>(kModelCount));
    EXPECT_EQ(sample.parser().getCustomerId(), "TARNQUILL");

    const auto lines = linesOf(contentOf("tvconfigs/system/tarnquill_skerry.ini"));
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) {
                                return line.find("Model_") != std::string::npos &&
                                       line.front() == '#';
                            }),
              1);
}

TEST(SampleSystem, TheModelsDiffer) {
    SampleSet sample;
    EXPECT_EQ(valuesOf(sample, "[PROJECT_NAME_CFG]", "PROJECT_NAME").size(), kModelCount);
    EXPECT_EQ(valuesOf(sample, "[PANEL]", "m_pPanelName").size(), kModelCount);
    EXPECT_EQ(valuesOf(sample, "[MISC_PQ_MAP_CFG]", "PQ").size(), kModelCount);
    EXPECT_EQ(valuesOf(sample, "[MODEL_REGION_NAME_CFG]", "REGION_NAME").size(), 6U);
    EXPECT_EQ(valuesOf(sample, "[LiveTV]", "TvConfig").size(), 6U);
    EXPECT_EQ(valuesOf(sample, "[LiveTV]", "tuner_type").size(), 6U);
    EXPECT_EQ(valuesOf(sample, "[HDMI_EDID_1]", "HDMI_EDID_File_2P1").size(), 2U);
    EXPECT_EQ(valuesOf(sample, "[HDMI_EDID_1]", "HDMI_EDID_File_1P4").size(), 3U);
    EXPECT_THAT(valuesOf(sample, "[PowerOnMode]", "ModeStatus"), ElementsAre("0", "1", "2"));
    EXPECT_THAT(valuesOf(sample, "[LiveTV]", "DPVR"), ElementsAre("false", "true"));
    EXPECT_THAT(valuesOf(sample, "[LiveTV]", "Hbbtv"), ElementsAre("false", "true"));
}

TEST(SampleSelection, IsModelTwoOnTheSecondBoard) {
    SampleSet sample;
    const ProjectID project(sample.set().impdata(), 1);
    const BoardID board(sample.set().impdata());
    EXPECT_EQ(project.Get(), 2U);
    sample.select(static_cast<int>(project.Get()), kNoBoard);
    EXPECT_EQ(sample.value("[PROJECT_NAME_CFG]", "PROJECT_NAME"), "TRQ43-M2");
    EXPECT_EQ(sample.value("[PANEL]", "m_pPanelName"), "OSMR-43U60-B2");
    const Items ofTheModel = sample.items();

    sample.select(static_cast<int>(project.Get()), board.Get());
    Items replaced;
    Items added;
    for (const auto& [key, value] : sample.items()) {
        const auto former = ofTheModel.find(key);
        if (former == ofTheModel.end()) {
            added.emplace(key, value);
        } else if (former->second != value) {
            replaced.emplace(key, value);
        }
    }
    EXPECT_EQ(replaced.size(), 8U);
    EXPECT_EQ(replaced.at({"[SSC]", "m_pSSCName"}), sample.path("/tvconfigs/ssc/ssc_b2.ini"));
    EXPECT_EQ(replaced.at({"[DIGITAL_AMPLIFIER_CFG]", "ST_AMP_ADDR0"}), "0x35");
    EXPECT_EQ(added.size(), 4U);
    EXPECT_EQ(added.at({"[BOARD]", "BOARD_NAME"}), "skerry-B2");
}

TEST(SampleSelection, TheFirstBoardSaysWhatTheModelsSay) {
    SampleSet sample;
    for (int model = 1; model <= kModelCount; ++model) {
        sample.select(model, kNoBoard);
        const Items ofTheModel = sample.items();
        sample.select(model, "/tvconfigs/board/skerry_b1.ini");
        EXPECT_EQ(sample.items().size(), ofTheModel.size() + 4);
        for (const auto& [key, value] : ofTheModel) {
            EXPECT_EQ(sample.value(key.category, key.key), value) << key.category << " " << key.key;
        }
    }
}

TEST(SampleSelection, TheBoardStaysWhenTheModelChanges) {
    SampleSet sample;
    sample.select(2, BoardID(sample.set().impdata()).Get());
    sample.select(6, "");
    EXPECT_EQ(sample.value("[PANEL]", "m_pPanelName"), "OSMR-65U120-D2");
    EXPECT_EQ(sample.value("[BOARD]", "BOARD_NAME"), "skerry-B2");
    EXPECT_EQ(sample.value("[DIGITAL_AMPLIFIER_CFG]", "ST_AMP_ADDR0"), "0x35");
}

TEST(SampleSelection, NoKeyStandsTwiceButWhereAModelSaysSo) {
    SampleSet sample;
    const LogCapture log;
    for (int model = 1; model <= kModelCount; ++model) {
        sample.select(model, kNoBoard);
    }
    std::vector<std::string> updates;
    for (const std::string& text : log.texts()) {
        const size_t begin = text.find("update value (");
        if (begin != std::string::npos) {
            updates.push_back(text.substr(begin));
        }
    }
    EXPECT_THAT(updates,
                ElementsAre("update value (5 -> 8) due to the same key (BL_DUTY_MIN)",
                            "update value (6000 -> 8000) due to the same key (ChannelMax)",
                            "update value (1 -> 0) due to the same key (FACTORY_UART)",
                            "update value (520 -> 500) due to the same key (BL_CURRENT_MA)"));
}

class SampleModel : public ::testing::TestWithParam<int> {
  protected:
    SampleSet mSample;
};

TEST_P(SampleModel, IsReadWithoutAComplaint) {
    const LogCapture log;
    mSample.select(GetParam(), BoardID(mSample.set().impdata()).Get());
    for (const LogLine& line : log.lines()) {
        EXPECT_LT(line.priority, ANDROID_LOG_WARN) << line.text;
        EXPECT_THAT(line.text, Not(HasSubstr("don't exist")));
    }
}

TEST_P(SampleModel, HasTwoHundredItemsAndMore) {
    mSample.select(GetParam(), kNoBoard);
    EXPECT_GE(mSample.items().size(), kLeastItems);
}

TEST_P(SampleModel, HasEveryItemThatTheServiceReads) {
    mSample.select(GetParam(), kNoBoard);
    const Items items = mSample.items();
    for (const KnownItem& row : kKnownItems) {
        const ItemName name{std::string(row.name.category), std::string(row.name.key)};
        EXPECT_EQ(items.count(name), 1U) << row.name.category << " " << row.name.key;
    }
}

TEST_P(SampleModel, NamesOnlyFilesThatAreThere) {
    mSample.select(GetParam(), BoardID(mSample.set().impdata()).Get());
    std::set<std::string> partitions;
    for (const auto& [key, value] : mSample.items()) {
        for (const std::string partition : {"/tvconfigs", "/tvdata", "/impdata"}) {
            if (value.rfind(mSample.path(partition), 0) == 0) {
                partitions.insert(partition);
                const KnownItem* const row = findKnownItem({key.category, key.key});
                const bool isFolder = row != nullptr && row->type == ValueType::FOLDER;
                EXPECT_TRUE(isFolder ? std::filesystem::is_directory(value)
                                     : std::filesystem::is_regular_file(value))
                        << key.category << " " << key.key << ": " << value;
            }
            EXPECT_THAT(value, Not(StartsWith(partition))) << key.category << " " << key.key;
        }
    }
    EXPECT_EQ(partitions.size(), 3U);
}

TEST_P(SampleModel, LeavesNoDebrisInNamesAndValues) {
    mSample.select(GetParam(), BoardID(mSample.set().impdata()).Get());
    for (const auto& [key, value] : mSample.items()) {
        EXPECT_THAT(key.category, StartsWith("["));
        EXPECT_THAT(key.category, EndsWith("]"));
        EXPECT_THAT(key.key, Not(IsEmpty()));
        EXPECT_EQ((key.category + key.key).find_first_of(" \t\r;#\""), std::string::npos)
                << key.category << " " << key.key;
        EXPECT_EQ(value.find_first_of("\t\r;#\""), std::string::npos)
                << key.category << " " << key.key << ": " << value;
    }
}

INSTANTIATE_TEST_SUITE_P(All, SampleModel, ::testing::Range(1, kModelCount + 1));

}  // namespace
}  // namespace mlk::samples
