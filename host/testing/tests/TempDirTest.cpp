#include "host/testing/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace mlk::testing {
namespace {

namespace fs = std::filesystem;

TEST(TempDir, EachIsAFolderOfItsOwnThatGoesWithIt) {
    std::string path;
    {
        const TempDir first;
        const TempDir second;
        path = first.path();
        EXPECT_NE(path, second.path());
        EXPECT_TRUE(fs::is_directory(path));
        first.write("a/b/c", "text");
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(TempDir, WritesAndReadsBytes) {
    const TempDir dir;
    const std::string bytes("a\0b\r\n\xff", 6);
    EXPECT_EQ(dir.write("deep/er/file", bytes), dir.path() + "/deep/er/file");
    EXPECT_EQ(dir.read("deep/er/file"), bytes);
    dir.write("deep/er/file", "short");
    EXPECT_EQ(dir.read("deep/er/file"), "short");
}

TEST(TempDir, ReadingWhatIsNotThereFails) {
    const TempDir dir;
    EXPECT_THROW(dir.read("nothing"), std::runtime_error);
    dir.mkdir("folder");
    EXPECT_THROW(dir.write("folder", "text"), std::runtime_error);
}

}  // namespace
}  // namespace mlk::testing
