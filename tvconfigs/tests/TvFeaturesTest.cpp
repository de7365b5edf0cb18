#include "tvconfigs/TvFeatures.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>
#include <utility>

#include "common/testing/FixedProperties.h"
#include "host/testing/LogCapture.h"
#include "host/testing/TempDir.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

constexpr char kPvrKey[] = "persist.vendor.mlk.tv.enable_pvr";
constexpr char kHdmiKey[] = "persist.vendor.mlk.tv.enable_hdmi";
constexpr char kCaptionKey[] = "persist.vendor.mlk.tv.enable_cc";
constexpr char kAtscKey[] = "persist.vendor.mlk.tv.enable_atsc_cc";
constexpr char kDtvSystemKey[] = "persist.vendor.mlk.tv.dtv_system";

constexpr const TvSystemRow& kDtvSystem = kTvSystems[tvSystemItem("getDtvSystem")];
constexpr const TvFlagRow& kPvr = kTvFlags[tvFlagItem("pvrEnabled")];
constexpr const TvFlagRow& kHdmi = kTvFlags[tvFlagItem("hdmiEnabled")];
constexpr const TvFlagRow& kCaption = kTvFlags[tvFlagItem("closeCaptionEnabled")];
constexpr const TvFlagRow& kAtsc = kTvFlags[tvFlagItem("atscCloseCaptionEnabled")];

/** A set's files and properties. No environment variable names them. */
struct Set {
    mlk::testing::TempDir dir;
    FixedProperties properties;

    Partitions partitions() const {
        return {dir.path("tvconfigs"), dir.path("tvdata"), dir.path("impdata")};
    }
    void write(const std::string& text) const { dir.write("tvconfigs/tv.config", text); }
    std::string file() const { return dir.read("tvconfigs/tv.config"); }
};

std::string line(const std::string& key, const std::string& value) {
    return key + '=' + value + '\n';
}

/** Two sets in a process that belongs to neither of them. */
class TvFeaturesTest : public ::testing::Test {
  protected:
    TvFeaturesTest() { unsetenv("MLK_ROOT"); }

    mlk::testing::LogCapture mLog;
    Set mA;
    Set mB;
};

TEST_F(TvFeaturesTest, TwoSetsSideBySideHaveFilesAndPropertiesOfTheirOwn) {
    mA.write(line(kPvrKey, "true") + line(kDtvSystemKey, "2"));
    mB.write(line(kHdmiKey, "1"));
    mA.properties.set(kHdmiKey, "false");
    mB.properties.set(kDtvSystemKey, "4");
    const TvFeatures a(nullptr, mA.partitions(), mA.properties);
    const TvFeatures b(nullptr, mB.partitions(), mB.properties);

    EXPECT_TRUE(a.get(kPvr));
    EXPECT_FALSE(b.get(kPvr));
    EXPECT_FALSE(a.get(kHdmi));
    EXPECT_TRUE(b.get(kHdmi));
    EXPECT_EQ(a.get(kDtvSystem), 2);
    EXPECT_EQ(b.get(kDtvSystem), 4);
    // Each start has written the property of its own set.
    EXPECT_EQ(mA.properties.get(kDtvSystemKey), "2");
    EXPECT_EQ(mB.properties.get(kDtvSystemKey), "4");
}

// Properties for whose next value there is no memory.
class FailingProperties : public FixedProperties {
  public:
    bool set(const char* key, const char* value) override {
        if (std::exchange(mFails, false)) {
            throw std::bad_alloc();
        }
        return FixedProperties::set(key, value);
    }
    void fail() { mFails = true; }

  private:
    bool mFails = false;
};

TEST_F(TvFeaturesTest, AChangeThatCannotBeWrittenIsWrittenAtTheNextAttempt) {
    mA.write(line(kPvrKey, "true") + line(kDtvSystemKey, "2"));
    FailingProperties properties;
    properties.set(kPvrKey, "true");
    TvFeatures features(nullptr, mA.partitions(), properties);

    properties.fail();
    EXPECT_THROW(features.set(kDtvSystem, 3), std::bad_alloc);
    EXPECT_EQ(features.get(kDtvSystem), 2);
    EXPECT_TRUE(features.set(kDtvSystem, 3));
    EXPECT_EQ(properties.get(kDtvSystemKey), "3");

    properties.fail();
    EXPECT_THROW(features.set(kPvr, false), std::bad_alloc);
    EXPECT_TRUE(features.get(kPvr));
    EXPECT_FALSE(features.set(kPvr, false));
    EXPECT_EQ(properties.get(kPvrKey), "false");
}

TEST_F(TvFeaturesTest, AChangeOfOneSetLeavesTheOtherAlone) {
    const std::string content =
            line(kPvrKey, "true") + line(kCaptionKey, "true") + line(kAtscKey, "true");
    mA.write(content);
    mB.write(content);
    TvFeatures a(nullptr, mA.partitions(), mA.properties);
    TvFeatures b(nullptr, mB.partitions(), mB.properties);

    EXPECT_FALSE(a.set(kPvr, false));
    EXPECT_FALSE(a.set(kCaption, false));
    EXPECT_FALSE(a.set(kAtsc, true));
    EXPECT_FALSE(a.get(kAtsc));
    EXPECT_TRUE(b.get(kPvr));
    EXPECT_TRUE(b.get(kAtsc));
    EXPECT_TRUE(b.set(kDtvSystem, 3));
    EXPECT_FALSE(b.set(kDtvSystem, 5));
    EXPECT_EQ(b.get(kDtvSystem), 3);
    EXPECT_EQ(a.get(kDtvSystem), 0);

    EXPECT_EQ(mA.file(),
              line(kPvrKey, "false") + line(kCaptionKey, "false") + line(kAtscKey, "false"));
    EXPECT_EQ(mB.file(), content);
    EXPECT_EQ(mA.properties.get(kAtscKey), "false");
    EXPECT_EQ(mB.properties.get(kAtscKey), "");
    EXPECT_EQ(mB.properties.get(kDtvSystemKey), "3");
}

TEST_F(TvFeaturesTest, AReloadOfOneSetLeavesTheOtherAlone) {
    mA.write(line(kPvrKey, "false"));
    mB.write(line(kPvrKey, "true"));
    TvFeatures a(nullptr, mA.partitions(), mA.properties);
    const TvFeatures b(nullptr, mB.partitions(), mB.properties);
    EXPECT_FALSE(a.reload(mB.dir.path("missing").c_str()));
    EXPECT_TRUE(a.reload(mB.dir.path("tvconfigs/tv.config").c_str()));
    EXPECT_TRUE(a.get(kPvr));
    EXPECT_FALSE(a.set(kPvr, false));
    EXPECT_EQ(mA.file(), line(kPvrKey, "false"));
    EXPECT_TRUE(b.get(kPvr));
    EXPECT_EQ(mB.file(), line(kPvrKey, "true"));
}

TEST_F(TvFeaturesTest, APropertyOfASetMayBeLongerThanABuffer) {
    // Only 91 characters are read. The "1" after them would change the number.
    mA.properties.set(kDtvSystemKey, (std::string(90, '0') + "41").c_str());
    const TvFeatures a(nullptr, mA.partitions(), mA.properties);
    EXPECT_EQ(a.get(kDtvSystem), 4);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
