#include "common/ReplaceFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "host/testing/TempDir.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::TempDir;

TEST(ReplaceFileTest, FileIsMadeOrReplaced) {
    const TempDir dir;
    EXPECT_EQ(replaceFile(dir.path("file"), "a longer text", 0644), Replaced::DONE);
    EXPECT_EQ(dir.read("file"), "a longer text");
    EXPECT_EQ(replaceFile(dir.path("file"), "text", 0644), Replaced::DONE);
    EXPECT_EQ(dir.read("file"), "text");
    EXPECT_FALSE(std::filesystem::exists(dir.path("file.new")));
}

TEST(ReplaceFileTest, FileHasTheMode) {
    const TempDir dir;
    const mode_t former = umask(022);
    replaceFile(dir.path("file"), "", 0644);
    umask(former);
    struct stat about {};
    ASSERT_EQ(stat(dir.path("file").c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777U, 0644U);
}

TEST(ReplaceFileTest, RemainderOfAnEarlierAttemptIsOverwritten) {
    const TempDir dir;
    dir.write("file.new", "half of a text that was being writ");
    EXPECT_EQ(replaceFile(dir.path("file"), "text", 0644), Replaced::DONE);
    EXPECT_EQ(dir.read("file"), "text");
}

TEST(ReplaceFileTest, WithoutAPlaceNothingChanges) {
    const TempDir dir;
    EXPECT_EQ(replaceFile(dir.path("none/file"), "text", 0644), Replaced::NOT_CREATED);
    dir.mkdir("file");
    EXPECT_EQ(replaceFile(dir.path("file"), "text", 0644), Replaced::NOT_CREATED);
    EXPECT_TRUE(std::filesystem::is_directory(dir.path("file")));
    EXPECT_FALSE(std::filesystem::exists(dir.path("file.new")));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
