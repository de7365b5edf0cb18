#include "tools/mlktree/FileText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "host/testing/TempDir.h"
#include "tools/mlktree/Tree.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr size_t kMost = 10;

class FileTextTest : public ::testing::Test {
  protected:
    // What textOf() refuses a path with; empty if it does not.
    static std::string refusal(const std::string& path) {
        try {
            (void)textOf(path, kMost);
        } catch (const UsageError& error) {
            EXPECT_EQ(textOrNothing(path, kMost), "");
            return error.what();
        }
        return "";
    }
    // A sparse file: the disk holds none of its bytes.
    std::string hugeFile(const std::string& name, size_t bytes) const {
        const std::string path = mDir.write(name, "");
        EXPECT_EQ(truncate(path.c_str(), static_cast<off_t>(bytes)), 0);
        return path;
    }

    const testing::TempDir mDir;
};

TEST_F(FileTextTest, ReadsAWholeFile) {
    const std::string text("a\0b\r\n\xff", 6);
    const std::string path = mDir.write("a", text);
    EXPECT_EQ(textOf(path, kMost), text);
    EXPECT_EQ(textIfThere(path, kMost), text);
    EXPECT_EQ(textOrNothing(path, kMost), text);
    std::filesystem::create_symlink(path, mDir.path("link"));
    EXPECT_EQ(textOf(mDir.path("link"), kMost), text);
    EXPECT_EQ(textOf(mDir.write("empty", ""), kMost), "");
}

TEST_F(FileTextTest, TheLimitCounts) {
    const std::string path = mDir.write("a", "0123456789");
    EXPECT_EQ(textOf(path, kMost), "0123456789");
    mDir.write("a", "0123456789a");
    EXPECT_EQ(refusal(path), path + " cannot be read: it has more than 10 bytes");
    EXPECT_EQ(textOf(path, kMost + 1), "0123456789a");
}

// The kernel says that such a file has no bytes.
TEST_F(FileTextTest, AFileWithoutASizeIsReadWhole) {
    EXPECT_THAT(textOf("/proc/self/status", kMostSettingsBytes), HasSubstr("\nPid:"));
    EXPECT_EQ(refusal("/proc/self/status"),
              "/proc/self/status cannot be read: it has more than 10 bytes");
}

TEST_F(FileTextTest, AMissingFileIsNothingOrAnError) {
    for (const std::string& path : {mDir.path("none"), mDir.write("file", "") + "/none"}) {
        EXPECT_EQ(textIfThere(path, kMost), std::nullopt);
        EXPECT_EQ(refusal(path), path + " cannot be read: No such file or directory");
    }
}

TEST_F(FileTextTest, WhatIsNoFileIsRefusedAtOnce) {
    const std::string pipe = mDir.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0644), 0);
    for (const std::string& path : {mDir.path(), pipe, std::string("/dev/zero")}) {
        EXPECT_EQ(refusal(path), path + " cannot be read: not a regular file");
        EXPECT_THROW((void)textIfThere(path, kMost), UsageError);
    }
}

TEST_F(FileTextTest, APathCannotMoveTheCursor) {
    EXPECT_THAT(refusal(mDir.mkdir("a\x1b[2J")), EndsWith("/a\\u001b[2J cannot be read: not a "
                                                          "regular file"));
}

// A command line that reads a file which is too large, or none, and the limit.
TEST_F(FileTextTest, CommandsSayWhichFileIsTooLarge) {
    copySoundTree(mDir);
    const std::string pipe = mDir.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0644), 0);
    struct Reading {
        std::vector<std::string> words;
        size_t most;
        const char* limit;
    };
    for (const Reading& reading :
         {Reading{{"diff", "FILE", mDir.path()}, kMostSnapshotBytes, "256 MiB"},
          Reading{{"diff", "model=1,tree=FILE", mDir.path()}, kMostSnapshotBytes, "256 MiB"},
          Reading{{"check", "--baseline", "FILE", mDir.path()}, kMostBaselineBytes, "64 MiB"}}) {
        const auto errors = [&](const std::string& file) {
            std::vector<std::string> words = reading.words;
            for (std::string& word : words) {
                const size_t at = word.find("FILE");
                if (at != std::string::npos) {
                    word.replace(at, 4, file);
                }
            }
            const Outcome outcome = runMlktree(words);
            EXPECT_EQ(outcome.status, 2);
            EXPECT_EQ(outcome.out, "");
            return outcome.err;
        };
        const std::string huge = hugeFile("huge.json", reading.most + 1);
        EXPECT_EQ(errors(huge),
                  "mlktree: " + huge + " cannot be read: it has more than " + reading.limit + "\n");
        EXPECT_EQ(errors(pipe), "mlktree: " + pipe + " cannot be read: not a regular file\n");
    }
    const std::string settings = hugeFile("mlktree.toml", kMostSettingsBytes + 1);
    EXPECT_EQ(runMlktree({"check", mDir.path()}).err,
              "mlktree: " + settings + " cannot be read: it has more than 1 MiB\n");
}

}  // namespace

}  // namespace mlk::tree
