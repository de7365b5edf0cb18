#include "host/testing/FileCalls.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>

#include "host/testing/TempDir.h"

namespace mlk::testing {
namespace {

using ::testing::ElementsAre;

class FileCallsTest : public ::testing::Test {
  protected:
    FileCallsTest() : mFd(open(mDir.write("file", "").c_str(), O_RDWR | O_CLOEXEC)) {}
    ~FileCallsTest() override { close(mFd); }

    const TempDir mDir;
    const int mFd;
};

TEST_F(FileCallsTest, AreRecordedAndMade) {
    {
        const FileCalls calls;
        EXPECT_EQ(pwrite(mFd, "text", 4, 0), 4);
        EXPECT_EQ(ftruncate(mFd, 3), 0);
        EXPECT_EQ(fchmod(mFd, 0600), 0);
        EXPECT_EQ(fsync(mFd), 0);
        EXPECT_EQ(fallocate(mFd, 0, 0, 5), 0);
        EXPECT_EQ(rename(mDir.path("file").c_str(), mDir.path("other").c_str()), 0);
        EXPECT_THAT(calls.calls(),
                    ElementsAre(FileCall::PWRITE, FileCall::FTRUNCATE, FileCall::FCHMOD,
                                FileCall::FSYNC, FileCall::FALLOCATE, FileCall::RENAME));
    }
    EXPECT_EQ(mDir.read("other"), std::string("tex\0\0", 5));
    EXPECT_EQ(unlink(mDir.path("other").c_str()), 0) << "nobody is asked any more";
}

TEST_F(FileCallsTest, FailAsTheyAreJudged) {
    const FileCalls calls(failing(FileCall::FSYNC, EIO));
    EXPECT_EQ(fsync(mFd), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(unlink(mDir.path("file").c_str()), 0);
}

TEST_F(FileCallsTest, KillBeforeTheCall) {
    const auto twice = [this] {
        pwrite(mFd, "1", 1, 0);
        pwrite(mFd, "2", 1, 1);
    };
    EXPECT_TRUE(isKilledAt(0, twice));
    EXPECT_EQ(mDir.read("file"), "");
    EXPECT_TRUE(isKilledAt(1, twice));
    EXPECT_EQ(mDir.read("file"), "1");
    EXPECT_FALSE(isKilledAt(2, twice));
    EXPECT_EQ(mDir.read("file"), "12");
}

}  // namespace
}  // namespace mlk::testing
