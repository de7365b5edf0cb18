#include "platform/Platform.h"

#include <gtest/gtest.h>

#include "host/testing/HostSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

class PlatformTest : public ::testing::Test {
  protected:
    mlk::testing::HostSet mSet;
};

TEST_F(PlatformTest, PartitionsAreThoseOfTheProcess) {
    const Partitions partitions = systemPartitions();
    EXPECT_EQ(partitions.tvconfigs, mSet.tvconfigs());
    EXPECT_EQ(partitions.tvdata, mSet.tvdata());
    EXPECT_EQ(partitions.impdata, mSet.impdata());
}

TEST_F(PlatformTest, PropertiesAreThoseOfTheProcess) {
    mSet.setProperty("a.text", "some text");
    mSet.setProperty("a.flag", "on");
    mSet.setProperty("a.number", "0x10");
    const Properties& properties = systemProperties();
    EXPECT_EQ(properties.get("a.text"), "some text");
    EXPECT_TRUE(properties.getBool("a.flag", false));
    EXPECT_EQ(properties.getInt32("a.number", 0), 16);
}

TEST_F(PlatformTest, AMissingPropertyGivesTheDefault) {
    const Properties& properties = systemProperties();
    EXPECT_EQ(properties.get("missing"), "");
    EXPECT_TRUE(properties.getBool("missing", true));
    EXPECT_FALSE(properties.getBool("missing", false));
    EXPECT_EQ(properties.getInt32("missing", 7), 7);
}

TEST_F(PlatformTest, ALongestValueIsWhole) {
    const std::string longest(91, 'x');
    EXPECT_TRUE(systemProperties().set("a.long", longest.c_str()));
    EXPECT_EQ(systemProperties().get("a.long"), longest);
}

TEST_F(PlatformTest, SetTellsWhetherTheValueIsTaken) {
    EXPECT_TRUE(systemProperties().set("a.key", "value"));
    EXPECT_EQ(systemProperties().get("a.key"), "value");
    EXPECT_FALSE(systemProperties().set("a.key", std::string(92, 'x').c_str()));
    EXPECT_EQ(systemProperties().get("a.key"), "value");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
