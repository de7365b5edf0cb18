#include "tvconfigs/PropConfigEditor.h"

#include <android/log.h>
#include <cutils/properties.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "host/testing/HostSet.h"
#include "host/testing/LogCapture.h"
#include "platform/Platform.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::HostSet;
using ::mlk::testing::LogCapture;

static_assert(ConfigEditor::kValueSize == PROPERTY_VALUE_MAX);

constexpr char kKey[] = "persist.vendor.mlk.tv.enable_atv";

class PropConfigEditorTest : public ::testing::Test {
  protected:
    HostSet mSet;
    PropConfigEditor mEditor{systemProperties()};
    char mValue[ConfigEditor::kValueSize] = "untouched";

    std::string stored() const { return mSet.dir().read(std::string("data/property/") + kKey); }
};

TEST_F(PropConfigEditorTest, SetsTheProperty) {
    EXPECT_TRUE(mEditor.Set(kKey, "true"));
    EXPECT_EQ(stored(), "true");
    EXPECT_TRUE(mEditor.Set(kKey, ""));
    EXPECT_EQ(stored(), "");
}

TEST_F(PropConfigEditorTest, GetsTheProperty) {
    mSet.setProperty(kKey, std::string(91, 'x'));
    EXPECT_TRUE(mEditor.Get(kKey, mValue));
    EXPECT_EQ(mValue, std::string(91, 'x'));
}

TEST_F(PropConfigEditorTest, AbsentAndEmptyAreTheSame) {
    EXPECT_FALSE(mEditor.Get(kKey, mValue));
    EXPECT_STREQ(mValue, "");
    mSet.setProperty(kKey, "");
    EXPECT_FALSE(mEditor.Get(kKey, mValue));
}

TEST_F(PropConfigEditorTest, TellsWhatThePropertyServiceRefuses) {
    const LogCapture log;
    EXPECT_TRUE(mEditor.Set(kKey, "true"));
    EXPECT_FALSE(mEditor.Set(kKey, std::string(92, 'x').c_str()));
    EXPECT_FALSE(mEditor.Set("", "true"));
    EXPECT_EQ(stored(), "true");
    EXPECT_THAT(log.texts(ANDROID_LOG_ERROR, "MlkTvConfigs"),
                ::testing::ElementsAre("ERROR: Set property " + std::string(kKey) + " fail!",
                                       "ERROR: Set property  fail!"));
}

TEST_F(PropConfigEditorTest, RefusesNull) {
    EXPECT_FALSE(mEditor.Set(nullptr, "true"));
    EXPECT_FALSE(mEditor.Set(kKey, nullptr));
    EXPECT_FALSE(mEditor.Get(nullptr, mValue));
    EXPECT_FALSE(mEditor.Get(kKey, nullptr));
    EXPECT_STREQ(mValue, "untouched");
    EXPECT_TRUE(std::filesystem::is_empty(mSet.dir().path("data/property")));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
