#include "host/testing/SmallDisk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace mlk::testing {
namespace {

TEST(SmallDiskTest, IsFullAndEmptyAgainAndGoes) {
    std::string path;
    {
        const SmallDisk disk;
        if (!disk.isMounted()) {
            GTEST_SKIP() << disk.problem();
        }
        path = disk.dir().path();
        disk.fill();
        EXPECT_THROW(disk.dir().write("file", "text"), std::runtime_error);
        disk.drain();
        disk.dir().write("file", "text");
        EXPECT_EQ(disk.dir().read("file"), "text");
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(SmallDiskTest, KeepsOneFileWritable) {
    SmallDisk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << disk.problem();
    }
    disk.dir().write("file", "text");
    disk.dir().write("other", "text");
    ASSERT_TRUE(disk.keepWritableOnly("file")) << disk.problem();
    disk.dir().write("file", "new");
    EXPECT_EQ(disk.dir().read("file"), "new");
    EXPECT_THROW(disk.dir().write("other", "new"), std::runtime_error);
    EXPECT_FALSE(disk.keepWritableOnly("missing"));
    EXPECT_NE(disk.problem(), "");
}

}  // namespace
}  // namespace mlk::testing
