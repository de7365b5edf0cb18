#include "frameworkconfigs/FrameworkSwitches.h"

#include <gmock/gmock.h>

#include <cstdlib>

#include "common/testing/FixedProperties.h"
#include "frameworkconfigs/tests/PropertyReads.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

constexpr char kForceStrKey[] = "persist.vendor.mlk.forcestr";
constexpr char kWowKey[] = "persist.vendor.mlk.enable_wow";

constexpr size_t kForceStr = frameworkItem("getForceStrEnabled");
constexpr size_t kWow = frameworkItem("getWowEnabled");
constexpr size_t kDumpLevel = frameworkItem("getTvserviceDumpLevel");
constexpr size_t kCommand = frameworkItem("getMediaDebugCmd");

/** Two sets in a process that belongs to neither of them. */
class FrameworkSwitchesTest : public ::testing::Test {
  protected:
    FrameworkSwitchesTest() { unsetenv("MLK_ROOT"); }

    FixedProperties mPropertiesA{{{kForceStrKey, "1"}, {"vendor.mlk.nt.dumplevel", "7"}}};
    FixedProperties mPropertiesB{{{kWowKey, "true"}}};
};

TEST_F(FrameworkSwitchesTest, TwoSetsSideBySide) {
    takePropertyReads();
    const FrameworkSwitches a(mPropertiesA);
    const FrameworkSwitches b(mPropertiesB);
    EXPECT_EQ(a.get(kForceStr), 0);
    EXPECT_EQ(b.get(kForceStr), 1);
    EXPECT_EQ(a.get(kWow), 0);
    EXPECT_EQ(b.get(kWow), 1);
    EXPECT_EQ(a.get(kDumpLevel), 7);
    EXPECT_EQ(b.get(kDumpLevel), 0);
    EXPECT_EQ(a.get(kCommand), 0);
    EXPECT_THAT(takePropertyReads(), ::testing::IsEmpty()) << "no property of the process is read";
}

TEST_F(FrameworkSwitchesTest, AChangeOfOneSetLeavesTheOtherAlone) {
    FrameworkSwitches a(mPropertiesA);
    FrameworkSwitches b(mPropertiesB);
    EXPECT_TRUE(a.setForceStr(true));
    EXPECT_FALSE(b.setForceStr(false));
    EXPECT_TRUE(a.setWow(true));
    EXPECT_FALSE(b.setWow(false));
    EXPECT_EQ(a.get(kForceStr), 1);
    EXPECT_EQ(b.get(kForceStr), 0);
    EXPECT_EQ(a.get(kWow), 1);
    EXPECT_EQ(b.get(kWow), 0);
    EXPECT_EQ(mPropertiesA.get(kForceStrKey), "0");
    EXPECT_EQ(mPropertiesB.get(kForceStrKey), "1");
    EXPECT_EQ(mPropertiesA.get(kWowKey), "true");
    EXPECT_EQ(mPropertiesB.get(kWowKey), "false");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
