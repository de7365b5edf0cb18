#include "tvconfigs/ReadOnlyEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "common/testing/FixedProperties.h"
#include "common/testing/RecordedLines.h"
#include "host/testing/LogCapture.h"
#include "host/testing/TempDir.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/PropConfigEditor.h"
#include "tvconfigs/TvFeatures.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::StrEq;

constexpr char kPvrKey[] = "persist.vendor.mlk.tv.enable_pvr";
constexpr char kDtvSystemKey[] = "persist.vendor.mlk.tv.dtv_system";
constexpr const TvFlagRow& kPvr = kTvFlags[tvFlagItem("pvrEnabled")];
constexpr const TvSystemRow& kDtvSystem = kTvSystems[tvSystemItem("getDtvSystem")];

class ReadOnlyEditorTest : public ::testing::Test {
  protected:
    std::unique_ptr<FileConfigEditor> fileEditor(const std::string& text) {
        return std::make_unique<FileConfigEditor>(mDir.write("tv.config", text).c_str(), &mHeard);
    }
    static TvFeatures::EditorList listOf(std::unique_ptr<const ConfigEditor> first,
                                         std::unique_ptr<const ConfigEditor> second) {
        TvFeatures::EditorList editors;
        editors.push_back(std::make_unique<ReadOnlyEditor>(std::move(first)));
        editors.push_back(std::make_unique<ReadOnlyEditor>(std::move(second)));
        return editors;
    }

    const mlk::testing::TempDir mDir;
    mlk::testing::LogCapture mLog;
    RecordedLines mHeard;
    FixedProperties mProperties;
};

TEST_F(ReadOnlyEditorTest, GivesTheOtherEditorsValuesAndStoresNone) {
    ReadOnlyEditor editor(fileEditor("a=1\n"));
    char value[ConfigEditor::kValueSize] = {};
    EXPECT_TRUE(editor.Set("a", "2"));
    EXPECT_TRUE(editor.Set("none", "2")) << "an editor that stores it would have an entry for it";
    EXPECT_FALSE(editor.Set(nullptr, "2"));
    EXPECT_FALSE(editor.Set("a", nullptr));
    EXPECT_TRUE(editor.Get("a", value));
    EXPECT_THAT(value, StrEq("1"));
    EXPECT_FALSE(editor.Get("none", value));
    EXPECT_FALSE(editor.Get(nullptr, value));
    EXPECT_EQ(mDir.read("tv.config"), "a=1\n");
}

TEST_F(ReadOnlyEditorTest, FeaturesAreTheSameAndTheSetStaysAsItIs) {
    // The digital system would be written back as a plain number, and the remark would go.
    const std::string text =
            "# ours\n" + std::string(kDtvSystemKey) + "=02\n" + kPvrKey + "=true\n";
    TvFeatures readOnly(nullptr,
                        listOf(fileEditor(text), std::make_unique<PropConfigEditor>(mProperties)));
    EXPECT_EQ(readOnly.get(kDtvSystem), 2);
    EXPECT_TRUE(readOnly.get(kPvr));
    EXPECT_EQ(mDir.read("tv.config"), text);
    EXPECT_EQ(mProperties.get(kDtvSystemKey), "");
    EXPECT_EQ(mHeard.all().size(), 3U);

    EXPECT_FALSE(readOnly.set(kPvr, false)) << "it serves the value";
    EXPECT_EQ(mDir.read("tv.config"), text);
    EXPECT_EQ(mProperties.get(kPvrKey), "");
    EXPECT_FALSE(readOnly.reload(mDir.path("tv.config").c_str())) << "it has no file of its own";

    TvFeatures::EditorList others;
    others.push_back(std::make_unique<PropConfigEditor>(mProperties));
    const TvFeatures writing(fileEditor(text), std::move(others));
    EXPECT_EQ(writing.get(kDtvSystem), 2);
    EXPECT_TRUE(writing.get(kPvr));
    EXPECT_NE(mDir.read("tv.config"), text) << "what a service does";
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
