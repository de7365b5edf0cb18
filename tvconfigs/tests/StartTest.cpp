#include <android/log.h>
#include <gmock/gmock.h>

#include <filesystem>

#include "tvconfigs/tests/Asking.h"
#include "tvconfigs/tests/TvSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::sp;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

constexpr char kAtv[] = "persist.vendor.mlk.tv.enable_atv";
constexpr char kPvr[] = "persist.vendor.mlk.tv.enable_pvr";
constexpr char kAtvSystem[] = "persist.vendor.mlk.tv.atv_system";
constexpr char kDtvSystem[] = "persist.vendor.mlk.tv.dtv_system";

std::string line(const std::string& key, const std::string& value) {
    return key + '=' + value + '\n';
}

class StartTest : public ::testing::Test {
  protected:
    TvSet mSet;
};

TEST_F(StartTest, WithoutFileAndPropertiesNothingIsOn) {
    const auto service = TvSet::start();
    ASSERT_EQ(tvFlags().size(), 24U);
    for (const TvFlag& flag : tvFlags()) {
        EXPECT_EQ(flag.get(*service), "false") << flag.name;
    }
    for (const TvSystem& system : tvSystems()) {
        EXPECT_EQ(system.get(*service), "0") << system.name;
    }
}

TEST_F(StartTest, EachFlagHasItsOwnKeyInTheFile) {
    for (const TvFlag& one : tvFlags()) {
        const std::string master = one.master == nullptr ? one.key : one.master;
        const auto service = mSet.start(line(master, "true") + line(one.key, "true"));
        for (const TvFlag& flag : tvFlags()) {
            const bool expected = flag.key == one.key || flag.key == master;
            EXPECT_EQ(flag.get(*service), expected ? "true" : "false")
                    << flag.name << " with " << one.name;
        }
    }
}

TEST_F(StartTest, EachFlagHasItsOwnProperty) {
    for (const TvFlag& one : tvFlags()) {
        const std::string master = one.master == nullptr ? one.key : one.master;
        TvSet set;
        set.setProperty(master, "true");
        set.setProperty(one.key, "true");
        const auto service = TvSet::start();
        for (const TvFlag& flag : tvFlags()) {
            const bool expected = flag.key == one.key || flag.key == master;
            EXPECT_EQ(flag.get(*service), expected ? "true" : "false")
                    << flag.name << " with " << one.name;
        }
    }
}

TEST_F(StartTest, TheFileIsAskedFirst) {
    mSet.setProperty(kAtv, "false");
    mSet.setProperty("persist.vendor.mlk.tv.atv_antenna", "true");
    mSet.setProperty(kPvr, "true");
    const auto service = mSet.start(line(kAtv, "1") + line(kPvr, ""));
    EXPECT_EQ(tvFlag(kAtv).get(*service), "true");
    EXPECT_EQ(tvFlag("persist.vendor.mlk.tv.atv_antenna").get(*service), "true");
    // An empty value in the file counts, and means false.
    EXPECT_EQ(tvFlag(kPvr).get(*service), "false");
}

TEST_F(StartTest, TextsOfFlags) {
    struct Row {
        const char* text;
        const char* value;
    };
    static constexpr Row kRows[] = {
            {"true", "true"},   {"false", "false"}, {"1", "true"},       {"2", "true"},
            {"0", "false"},     {"-1", "false"},    {"TRUE", "false"},   {"True", "false"},
            {"yes", "false"},   {"on", "false"},    {"", "false"},       {" true", "false"},
            {"true ", "false"}, {" 1", "true"},     {"+1", "true"},      {"1x", "true"},
            {"x1", "false"},    {"0x1", "false"},   {"false1", "false"}, {"01", "true"}};
    for (const Row& row : kRows) {
        EXPECT_EQ(tvFlag(kPvr).get(*mSet.start(line(kPvr, row.text))), row.value) << row.text;
    }
}

TEST_F(StartTest, TextsOfSystems) {
    struct Row {
        const char* text;
        const char* value;
    };
    static constexpr Row kRows[] = {{"1", "1"},
                                    {"7", "7"},
                                    {"-3", "-3"},
                                    {" +2x", "2"},
                                    {"true", "0"},
                                    {"", "0"},
                                    {"0x2", "0"},
                                    {"2147483647", "2147483647"},
                                    {"-2147483648", "-2147483648"}};
    for (const Row& row : kRows) {
        const auto service = mSet.start(line(kAtvSystem, row.text) + line(kDtvSystem, row.text));
        for (const TvSystem& system : tvSystems()) {
            EXPECT_EQ(system.get(*service), row.value) << row.text;
        }
    }
}

TEST_F(StartTest, ALongValueCountsWithItsFirst91Characters) {
    const auto service = mSet.start(line(kAtv, std::string(90, '0') + "10") +
                                    line(kPvr, std::string(91, '0') + '1'));
    EXPECT_EQ(tvFlag(kAtv).get(*service), "true");
    EXPECT_EQ(tvFlag(kPvr).get(*service), "false");
}

TEST_F(StartTest, WhatIsBelowAMasterNeedsIt) {
    std::string content;
    for (const TvFlag& flag : tvFlags()) {
        if (flag.master != nullptr) {
            content += line(flag.key, "true");
            mSet.setProperty(flag.key, "true");
            mSet.setProperty(flag.master, "false");
        }
    }
    const auto service = mSet.start(content);
    for (const TvFlag& flag : tvFlags()) {
        EXPECT_EQ(flag.get(*service), "false") << flag.name;
    }
    // The properties keep their values.
    EXPECT_EQ(mSet.file(), content);
}

TEST_F(StartTest, TheDigitalSystemIsWrittenBack) {
    mSet.setProperty(kAtvSystem, "1");
    mSet.setProperty(kDtvSystem, "3");
    TvSet::start();
    EXPECT_EQ(mSet.property(kDtvSystem), "3");

    const std::string content = "# kept\n" + line(kAtvSystem, " 1") + line(kPvr, "1");
    mSet.start(content);
    EXPECT_EQ(mSet.file(), content) << "no key of the digital system, no writing";

    mSet.start("# dropped\n" + line(kDtvSystem, " 2x") + line(kAtvSystem, " 1") + line(kPvr, "1"));
    EXPECT_EQ(mSet.file(), line(kDtvSystem, "2") + line(kAtvSystem, " 1") + line(kPvr, "1"));
    EXPECT_EQ(mSet.property(kDtvSystem), "2");
    EXPECT_EQ(mSet.property(kAtvSystem), "1");
    EXPECT_EQ(mSet.property(kPvr), std::nullopt);
}

TEST_F(StartTest, TheAbsentDigitalSystemBecomesTheProperty) {
    TvSet::start();
    EXPECT_EQ(mSet.property(kDtvSystem), "0");
    EXPECT_EQ(mSet.property(kAtvSystem), std::nullopt);
}

/** The calls of the editor at a start with only these flags true. */
std::vector<std::string> callsOfStart(const std::vector<std::string>& enabled) {
    std::map<std::string, std::string> values = {{kDtvSystem, "2"}};
    for (const std::string& key : enabled) {
        values[key] = "true";
    }
    RecordingEditor::Calls calls;
    TvFeatures::EditorList editors;
    editors.push_back(std::make_unique<RecordingEditor>("1", calls, values));
    const sp<IMlkTvConfigs> service = serviceWith(nullptr, std::move(editors));
    return calls;
}

std::vector<std::string> gets(const std::vector<const char*>& names) {
    std::vector<std::string> result;
    for (const char* name : names) {
        result.push_back(std::string("1 get persist.vendor.mlk.") + name);
        if (name == std::string("tv.dtv_system")) {
            result.push_back(std::string("1 set ") + kDtvSystem + "=2");
        }
    }
    return result;
}

TEST_F(StartTest, ReadsInAFixedOrder) {
    EXPECT_THAT(
            callsOfStart(
                    {kAtv, "persist.vendor.mlk.tv.enable_dtv", "persist.vendor.mlk.tv.enable_cc"}),
            ElementsAreArray(gets({"tv.atv_system",     "tv.enable_atv",       "tv.atv_antenna",
                                   "tv.atv_cable",      "tv.dtv_system",       "tv.enable_dtv",
                                   "tv.dtv_antenna",    "tv.dtv_cable",        "tv.dtv_satellite",
                                   "tv.enable_pvr",     "tv.enable_livepause", "tv.enable_vga",
                                   "tv.enable_av",      "tv.enable_ypp",       "tv.enable_hdmi",
                                   "tv.enable_ci",      "tv.enable_pip",       "tv.enable_mheg5",
                                   "tv.enable_ginga",   "tv.enable_hbbtv",     "tv.enable_tt",
                                   "tv.enable_cc",      "tv.enable_atsc_cc",   "tv.enable_ntsc_cc",
                                   "tv.enable_isdb_cc", "enable_wow"})));
}

TEST_F(StartTest, DoesNotReadWhatIsBelowAMasterThatIsOff) {
    EXPECT_THAT(callsOfStart({}),
                ElementsAreArray(
                        gets({"tv.atv_system", "tv.enable_atv", "tv.dtv_system", "tv.enable_dtv",
                              "tv.enable_pvr", "tv.enable_livepause", "tv.enable_vga",
                              "tv.enable_av", "tv.enable_ypp", "tv.enable_hdmi", "tv.enable_ci",
                              "tv.enable_pip", "tv.enable_mheg5", "tv.enable_ginga",
                              "tv.enable_hbbtv", "tv.enable_tt", "tv.enable_cc", "enable_wow"})));
}

TEST_F(StartTest, AsksTheEditorsInOrderUntilOneKnows) {
    RecordingEditor::Calls calls;
    TvFeatures::EditorList editors;
    editors.push_back(std::make_unique<RecordingEditor>("1", calls));
    editors.push_back(std::make_unique<RecordingEditor>(
            "2", calls, std::map<std::string, std::string>{{kAtvSystem, "1"}}));
    editors.push_back(std::make_unique<RecordingEditor>(
            "3", calls, std::map<std::string, std::string>{{kAtvSystem, "0"}, {kAtv, "1"}}));
    const sp<IMlkTvConfigs> service = serviceWith(nullptr, std::move(editors));
    ASSERT_GE(calls.size(), 5U);
    calls.resize(5);
    EXPECT_THAT(calls, ElementsAre(std::string("1 get ") + kAtvSystem,
                                   std::string("2 get ") + kAtvSystem, std::string("1 get ") + kAtv,
                                   std::string("2 get ") + kAtv, std::string("3 get ") + kAtv));
    EXPECT_EQ(tvSystems()[0].get(*service), "1");
    EXPECT_EQ(tvFlag(kAtv).get(*service), "true");
}

TEST_F(StartTest, UsesTheGivenFileWhereItCanBeRead) {
    mSet.dir().write("tvconfigs/tv.config", line(kAtv, "true"));
    const std::string given = mSet.dir().write("tvconfigs/given.config", line(kPvr, "true"));
    const sp<IMlkTvConfigs> service = new MlkTvConfigs(given.c_str());
    EXPECT_EQ(tvFlag(kAtv).get(*service), "false");
    EXPECT_EQ(tvFlag(kPvr).get(*service), "true");
    // No log line tells the choice, except the one about the file that was opened.
    const auto lines = mSet.log().brief();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "E/Open " + given + " success!");
    EXPECT_EQ(lines[1].substr(0, 15), "D/MlkTvConfigs:");
}

TEST_F(StartTest, UsesTheDefaultFileOtherwise) {
    mSet.dir().write("tvconfigs/tv.config", line(kAtv, "true"));
    const std::string missing = mSet.dir().path("tvconfigs/missing");
    for (const char* path : {static_cast<const char*>(nullptr), "", missing.c_str()}) {
        mSet.log().clear();
        const sp<IMlkTvConfigs> service = new MlkTvConfigs(path);
        EXPECT_EQ(tvFlag(kAtv).get(*service), "true");
        ASSERT_FALSE(mSet.log().brief().empty());
        EXPECT_EQ(mSet.log().brief()[0], "E/Open " + mSet.path() + " success!");
    }
}

TEST_F(StartTest, AFolderCanBeReadButNotOpened) {
    mSet.dir().write("tvconfigs/tv.config", line(kAtv, "true"));
    mSet.setProperty(kPvr, "true");
    const std::string folder = mSet.dir().path("tvconfigs");
    const sp<IMlkTvConfigs> service = new MlkTvConfigs(folder.c_str());
    EXPECT_EQ(mSet.log().brief()[0], "E/ERROR: Open " + folder + " fail!");
    EXPECT_EQ(tvFlag(kAtv).get(*service), "false");
    EXPECT_EQ(tvFlag(kPvr).get(*service), "true");
}

TEST_F(StartTest, WithoutEvenTheDefaultFileThereAreProperties) {
    mSet.setProperty(kPvr, "true");
    const auto service = TvSet::start();
    EXPECT_EQ(mSet.log().texts(ANDROID_LOG_ERROR, "MlkTvConfigs"),
              std::vector{"ERROR: Open " + mSet.path() + " fail!"});
    EXPECT_EQ(tvFlag(kPvr).get(*service), "true");
    EXPECT_EQ(tvFlag(kAtv).set(*service, true), "true");
    EXPECT_EQ(mSet.property(kAtv), "true");
    EXPECT_FALSE(std::filesystem::exists(mSet.path()));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
