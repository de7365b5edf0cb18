// A change for which there is no memory leaves values and entries as they were.

#include "host/testing/NoMemory.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "common/testing/FixedProperties.h"
#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tvconfigs/TvFeatures.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::failAtEachAllocation;
using mlk::testing::NoMemory;

constexpr const TvSystemRow& kDtvSystem = kTvSystems[tvSystemItem("getDtvSystem")];
constexpr const TvFlagRow& kPvr = kTvFlags[tvFlagItem("pvrEnabled")];
constexpr const TvFlagRow& kHdmi = kTvFlags[tvFlagItem("hdmiEnabled")];

std::string line(const std::string& key, const std::string& value) {
    return key + '=' + value + '\n';
}

/** A TV feature file and properties; the log is quiet, because a line needs memory, too. */
class NoMemoryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!NoMemory::isPossible()) {
            GTEST_SKIP() << "the sanitizer has operators of its own";
        }
    }
    std::string file() const { return mDir.read("tv.config"); }

    const mlk::testing::QuietLog mQuiet;
    mlk::testing::TempDir mDir;
    FixedProperties mProperties;
};

TEST_F(NoMemoryTest, AnEntryStays) {
    const std::string path = mDir.write("tv.config", "a=1\nb=1\n");
    FileConfigEditor editor(path.c_str());
    const std::string value(300, 'v');
    const long failures = failAtEachAllocation([&] { return editor.Set("a", value.c_str()); },
                                               [&] {
                                                   EXPECT_EQ(file(), "a=1\nb=1\n");
                                                   // Writes all entries.
                                                   EXPECT_TRUE(editor.Set("b", "2"));
                                                   EXPECT_EQ(file(), "a=1\nb=2\n");
                                                   EXPECT_TRUE(editor.Set("b", "1"));
                                               });
    EXPECT_GT(failures, 2);
    EXPECT_EQ(file(), "a=" + value + "\nb=1\n");
}

TEST_F(NoMemoryTest, AFeatureStays) {
    const std::string path =
            mDir.write("tv.config", line(kPvr.key, "true") + line(kHdmi.key, "true"));
    // Without properties: whether file or property is written first is not the question here.
    TvFeatures features(std::make_unique<FileConfigEditor>(path.c_str()), {});
    const long failures = failAtEachAllocation(
            [&] {
                features.set(kPvr, false);
                return true;
            },
            [&] {
                EXPECT_TRUE(features.get(kPvr));
                // Writes all entries.
                features.set(kHdmi, !features.get(kHdmi));
                EXPECT_EQ(file().find(line(kPvr.key, "true")), 0U);
            });
    EXPECT_GT(failures, 2);
    EXPECT_EQ(file().find(line(kPvr.key, "false")), 0U);
}

TEST_F(NoMemoryTest, EntriesOfAReloadAreTakenBack) {
    const std::string path = mDir.write("tv.config", line(kPvr.key, "true"));
    const std::string other = mDir.write(
            "other.config", line(kPvr.key, "false") + line(kDtvSystem.key, "3") + "own=1\n");
    TvFeatures features(path.c_str(), Partitions(), mProperties);
    const long failures = failAtEachAllocation([&] { return features.reload(other.c_str()); },
                                               [&] {
                                                   EXPECT_TRUE(features.get(kPvr));
                                                   EXPECT_EQ(features.get(kDtvSystem), 0);
                                                   // Writes all entries.
                                                   features.set(kPvr, false);
                                                   EXPECT_EQ(file(), line(kPvr.key, "false"));
                                                   features.set(kPvr, true);
                                                   EXPECT_EQ(file(), line(kPvr.key, "true"));
                                               });
    EXPECT_GT(failures, 10);
    EXPECT_FALSE(features.get(kPvr));
    EXPECT_EQ(features.get(kDtvSystem), 3);
    EXPECT_EQ(file(), line(kPvr.key, "false") + line(kDtvSystem.key, "3") + "own=1\n");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
