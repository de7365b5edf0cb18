#include "common/File.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/testing/ReadHook.h"
#include "host/testing/TempDir.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::ReadHook;
using mlk::testing::TempDir;

TEST(FileTest, ReadsWhatIsThere) {
    const TempDir dir;
    File file(dir.write("f", "text"));
    ASSERT_TRUE(file.isOpen());
    EXPECT_FALSE(file.isMissing());
    EXPECT_EQ(file.size(), 4U);
    char buffer[8] = {};
    EXPECT_EQ(file.read(buffer, sizeof buffer), 4);
    EXPECT_STREQ(buffer, "text");
    EXPECT_EQ(file.read(buffer, sizeof buffer), 0);
}

TEST(FileTest, ReadsUpToTheSizeOrTheEnd) {
    const TempDir dir;
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::read(descriptor, bytes, std::min<size_t>(size, 3));
    });
    File file(dir.write("f", "0123456789"));
    char buffer[9] = {};
    EXPECT_EQ(file.readUpTo(buffer, 8), 8);
    EXPECT_STREQ(buffer, "01234567");
    EXPECT_EQ(file.readUpTo(buffer, 8), 2);
    EXPECT_EQ(file.readUpTo(buffer, 8), 0);
}

TEST(FileTest, FailureAfterSomeBytesIsAFailure) {
    const TempDir dir;
    File file(dir.write("f", "0123456789"));
    ReadHook hook([](int descriptor, void* bytes, size_t /* size */) {
        return ReadHook::calls() < 3 ? ReadHook::read(descriptor, bytes, 3) : ReadHook::fail(EIO);
    });
    char buffer[9] = {};
    EXPECT_EQ(file.readUpTo(buffer, 8), -1);
}

TEST(FileTest, DescriptorGoesWithTheObject) {
    const TempDir dir;
    const std::string path = dir.write("f", "text");
    // The lowest number that is free.
    const int descriptor = File(path).descriptor();
    EXPECT_GE(descriptor, 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(File(path).descriptor(), descriptor);
    }
}

TEST(FileTest, MissingFileIsTold) {
    const TempDir dir;
    const File file(dir.path() + "/nothing");
    EXPECT_FALSE(file.isOpen());
    EXPECT_TRUE(file.isMissing());
    EXPECT_EQ(file.reason(), "No such file or directory");
    EXPECT_TRUE(File(dir.write("f", "") + "/below").isMissing());
}

TEST(FileTest, RefusesWhatIsNoRegularFile) {
    const TempDir dir;
    const std::string fifo = dir.path() + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& path : {dir.path(), fifo, std::string("/dev/null")}) {
        for (const int flags : {O_RDONLY, O_RDWR | O_CREAT}) {
            const File file(path, flags, 0644);
            EXPECT_FALSE(file.isOpen()) << path;
            EXPECT_FALSE(file.isMissing()) << path;
            EXPECT_EQ(file.reason(), "not a regular file") << path;
        }
    }
}

TEST(FileTest, SaysWhyAFileCannotBeOpened) {
    const TempDir dir;
    const std::string loop = dir.path() + "/loop";
    ASSERT_EQ(symlink(loop.c_str(), loop.c_str()), 0);
    const File file(loop);
    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(file.isMissing());
    EXPECT_EQ(file.reason(), "Too many levels of symbolic links");
}

TEST(FileTest, CreatesWithTheMode) {
    const TempDir dir;
    const std::string path = dir.path() + "/new";
    const File file(path, O_RDWR | O_CREAT | O_TRUNC, 0640);
    ASSERT_TRUE(file.isOpen());
    EXPECT_EQ(write(file.descriptor(), "text", 4), 4);
    EXPECT_EQ(dir.read("new"), "text");
    struct stat about {};
    ASSERT_EQ(stat(path.c_str(), &about), 0);
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(about.st_mode & 0777U, 0640U & ~mask);
}

TEST(FileTest, FailedReadIsTold) {
    const TempDir dir;
    File file(dir.write("f", "text"), O_WRONLY);
    char buffer[8];
    EXPECT_EQ(file.read(buffer, sizeof buffer), -1);
}

TEST(FileTest, LeavesNoDescriptorToAChild) {
    const TempDir dir;
    const int next = dup(0);
    ASSERT_GE(next, 0);
    close(next);
    const File file(dir.write("f", ""));
    EXPECT_EQ(fcntl(next, F_GETFD), FD_CLOEXEC);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
