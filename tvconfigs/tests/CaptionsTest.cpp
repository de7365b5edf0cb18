#include <gmock/gmock.h>

#include "tvconfigs/tests/Asking.h"
#include "tvconfigs/tests/TvSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::sp;
using ::testing::ElementsAre;

constexpr char kMaster[] = "persist.vendor.mlk.tv.enable_cc";
constexpr char kAtsc[] = "persist.vendor.mlk.tv.enable_atsc_cc";
constexpr char kNtsc[] = "persist.vendor.mlk.tv.enable_ntsc_cc";
constexpr char kIsdb[] = "persist.vendor.mlk.tv.enable_isdb_cc";
constexpr const char* kCaptions[] = {kAtsc, kNtsc, kIsdb};

std::string written(const std::string& key, const std::string& value) {
    return "1 set " + key + '=' + value;
}

/** A service whose writes are recorded. */
class CaptionsTest : public ::testing::Test {
  protected:
    TvSet mSet;
    RecordingEditor::Calls mCalls;
    sp<IMlkTvConfigs> mService;

    /** Starts with these values of the master and of the three captions. */
    void start(const char* master, const char* captions) {
        TvFeatures::EditorList editors;
        editors.push_back(std::make_unique<RecordingEditor>(
                "1", mCalls,
                std::map<std::string, std::string>{{kMaster, master},
                                                   {kAtsc, captions},
                                                   {kNtsc, captions},
                                                   {kIsdb, captions}}));
        mService = serviceWith(nullptr, std::move(editors));
        mCalls.clear();
    }

    std::string set(const char* key, bool enabled) { return tvFlag(key).set(*mService, enabled); }
    std::string get(const char* key) { return tvFlag(key).get(*mService); }
};

TEST_F(CaptionsTest, AreOffAtTheStartWithoutTheirMaster) {
    start("false", "true");
    for (const char* caption : kCaptions) {
        EXPECT_EQ(get(caption), "false") << caption;
    }
}

TEST_F(CaptionsTest, ArePlainUnderTheirMaster) {
    start("true", "true");
    for (const char* caption : kCaptions) {
        EXPECT_EQ(set(caption, true), "true");
        EXPECT_THAT(mCalls, ElementsAre());
        EXPECT_EQ(set(caption, false), "false");
        EXPECT_EQ(get(caption), "false");
        EXPECT_EQ(set(caption, false), "false");
        EXPECT_THAT(mCalls, ElementsAre(written(caption, "false")));
        mCalls.clear();
    }
}

TEST_F(CaptionsTest, GoWithTheirMaster) {
    start("true", "true");
    EXPECT_EQ(set(kMaster, false), "false");
    EXPECT_THAT(mCalls, ElementsAre(written(kMaster, "false"), written(kAtsc, "false"),
                                    written(kIsdb, "false"), written(kNtsc, "false")));
    for (const char* caption : kCaptions) {
        EXPECT_EQ(get(caption), "false");
    }
}

TEST_F(CaptionsTest, AreWrittenEveryTimeTheirMasterIsTurnedOff) {
    start("false", "true");
    for (int i = 0; i < 2; ++i) {
        mCalls.clear();
        EXPECT_EQ(set(kMaster, false), "false");
        // The master itself has not changed.
        EXPECT_THAT(mCalls, ElementsAre(written(kAtsc, "false"), written(kIsdb, "false"),
                                        written(kNtsc, "false")));
    }
}

TEST_F(CaptionsTest, StayOffWhenTheirMasterComesBack) {
    start("true", "true");
    set(kMaster, false);
    mCalls.clear();
    EXPECT_EQ(set(kMaster, true), "true");
    EXPECT_EQ(set(kMaster, true), "true");
    EXPECT_THAT(mCalls, ElementsAre(written(kMaster, "true")));
    for (const char* caption : kCaptions) {
        EXPECT_EQ(get(caption), "false");
        EXPECT_EQ(set(caption, true), "true");
    }
}

TEST_F(CaptionsTest, CannotBeTurnedOnWithoutTheirMaster) {
    start("false", "true");
    for (const char* caption : kCaptions) {
        for (const bool enabled : {true, false, true}) {
            mCalls.clear();
            EXPECT_EQ(set(caption, enabled), "false") << caption;
            EXPECT_EQ(get(caption), "false") << caption;
            EXPECT_THAT(mCalls, ElementsAre(written(caption, "false")));
        }
    }
}

TEST_F(CaptionsTest, ReachTheFileAndTheProperties) {
    const auto lines = [](const char* master, const char* caption) {
        return std::string(kMaster) + '=' + master + '\n' + kAtsc + '=' + caption + '\n' + kNtsc +
               '=' + caption + '\n';
    };
    mService = mSet.start("# head\n" + lines("1", "true"));
    EXPECT_EQ(set(kMaster, false), "false");
    EXPECT_EQ(mSet.file(), lines("false", "false"));
    for (const char* key : {kMaster, kAtsc, kNtsc, kIsdb}) {
        EXPECT_EQ(mSet.property(key), "false") << key;
    }
    mSet.setProperty(kAtsc, "true");
    EXPECT_EQ(setFlag(*mService, ConfigType::ATSC_CLOSE_CAPTION, true), "false");
    EXPECT_EQ(mSet.property(kAtsc), "false");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
