// Files of lines that cannot be read to their end, come in small pieces, change or have no end.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "common/tests/LineFiles.h"
#include "host/testing/ReadHook.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::ReadHook;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

class LineReaderFailureTest : public LineReaderTest {};

TEST_F(LineReaderFailureTest, FailureEndsTheLinesAndIsReportedOnce) {
    // A regular file that can be opened but not read.
    const std::string unreadable = "/proc/self/mem";
    LineReader reader(unreadable, kBufferSize, kTag);
    std::string_view line;
    EXPECT_FALSE(reader.failed());
    EXPECT_FALSE(reader.next(line));
    EXPECT_FALSE(reader.next(line));
    EXPECT_TRUE(reader.failed());
    EXPECT_THAT(errors(),
                ElementsAre(unreadable + ":0: cannot be read further: Input/output error"));
}

TEST_F(LineReaderFailureTest, LineThatAFailureMeetsIsNotHandedOut) {
    const std::string file = mDir.write("file", "first\nsecond=/a/long/path\nthird\n");
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::calls() == 1
                       ? ReadHook::read(descriptor, bytes, std::min<size_t>(size, 15))
                       : ReadHook::fail(EIO);
    });
    LineReader reader(file, kBufferSize, kTag);
    std::string_view line;
    ASSERT_TRUE(reader.next(line));
    EXPECT_EQ(line, "first");
    EXPECT_FALSE(reader.failed());
    EXPECT_FALSE(reader.next(line)) << line;
    EXPECT_TRUE(reader.failed());
    EXPECT_FALSE(reader.next(line));
    EXPECT_EQ(ReadHook::calls(), 2) << "a failed read is not tried again";
    EXPECT_THAT(errors(), ElementsAre(file + ":1: cannot be read further: Input/output error"));
}

TEST_F(LineReaderFailureTest, FailureInTheSkippedRestOfALineIsOne) {
    const std::string file = mDir.write("file", std::string(100'000, 'x') + "\nlast\n");
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::calls() == 1 ? ReadHook::read(descriptor, bytes, size)
                                      : ReadHook::fail(EIO);
    });
    LineReader reader(file, kBufferSize, kTag);
    std::string_view line;
    ASSERT_TRUE(reader.next(line));
    EXPECT_FALSE(reader.next(line));
    EXPECT_TRUE(reader.failed());
}

TEST_F(LineReaderFailureTest, EndOfTheFileIsNoFailure) {
    for (const char* text : {"", "a", "a\n"}) {
        LineReader reader(mDir.write("file", text), kBufferSize, kTag);
        for (std::string_view line; reader.next(line);) {
        }
        EXPECT_TRUE(reader.isOpen());
        EXPECT_FALSE(reader.failed()) << text;
    }
    EXPECT_FALSE(LineReader(mDir.path() + "/none", kBufferSize, kTag).failed());
    EXPECT_TRUE(LineReader(mDir.path(), kBufferSize, kTag).failed()) << "a folder is no file";
}

TEST_F(LineReaderFailureTest, ShortReadIsNotTheEnd) {
    std::mt19937 random(5);
    const std::string text = randomText(random, 300);
    const std::string file = mDir.write("file", text);
    for (const size_t most : {size_t{1}, size_t{7}, size_t{256}, size_t{5000}}) {
        ReadHook hook([most](int descriptor, void* bytes, size_t size) {
            return ReadHook::read(descriptor, bytes, std::min(size, most));
        });
        EXPECT_EQ(linesOf(file), expectedLines(text)) << most;
    }
}

TEST_F(LineReaderFailureTest, InterruptedReadIsRepeated) {
    const std::string file = mDir.write("file", "a\nb\n");
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::calls() % 2 == 1 ? ReadHook::fail(EINTR)
                                          : ReadHook::read(descriptor, bytes, size);
    });
    EXPECT_THAT(linesOf(file), ElementsAre("a", "b"));
}

TEST_F(LineReaderFailureTest, NulOfAnEarlierReadEndsItsLine) {
    // One read gives the NUL and the line before it; a later one gives the end of its line.
    const std::string file = mDir.write("file", "a\nb\0c"s + "d\ne\n");
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::read(descriptor, bytes, ReadHook::calls() == 1 ? 5 : size);
    });
    EXPECT_THAT(linesOf(file), ElementsAre("a", "b", "e"));
}

TEST_F(LineReaderFailureTest, FileThatGrowsMeanwhileIsReadOn) {
    const std::string file = mDir.write("file", "a\nb\n");
    LineReader reader(file, kBufferSize, kTag);
    { std::ofstream(file, std::ios::app) << std::string(300, 'c') << "\nd\n"; }
    std::vector<std::string> lines;
    for (std::string_view line; reader.next(line);) {
        lines.emplace_back(line);
    }
    EXPECT_THAT(lines, ElementsAre("a", "b", std::string(kLimit, 'c'), "d"));
}

class LineReaderLimitTest : public LineReaderTest {
  protected:
    static constexpr size_t kMost = 4000;
    std::string tooLarge(const std::string& path) const {
        return path + ": cannot be read: larger than 4000 bytes";
    }
};

TEST_F(LineReaderLimitTest, FileOfTheLimitIsRead) {
    LineReader reader(mDir.write("file", std::string(kMost - 2, 'x') + "\ny"), kMost, kTag, kMost);
    std::string_view line;
    EXPECT_TRUE(reader.isOpen());
    EXPECT_TRUE(reader.next(line));
    EXPECT_TRUE(reader.next(line));
    EXPECT_EQ(line, "y");
    EXPECT_FALSE(reader.next(line));
    EXPECT_FALSE(reader.failed());
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(LineReaderLimitTest, LargerFileIsNotReadAtAll) {
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::read(descriptor, bytes, size);
    });
    LineReader reader(mDir.write("file", std::string(kMost - 1, 'x') + "\ny"), kMost, kTag, kMost);
    std::string_view line;
    EXPECT_FALSE(reader.isOpen());
    EXPECT_TRUE(reader.failed());
    EXPECT_FALSE(reader.next(line));
    EXPECT_THAT(errors(), ElementsAre(tooLarge(path())));
    EXPECT_EQ(ReadHook::calls(), 0);
}

TEST_F(LineReaderLimitTest, FileThatGrowsBeyondItEndsTheLines) {
    const std::string file = mDir.write("file", "a\n");
    LineReader reader(file, kBufferSize, kTag, kMost);
    { std::ofstream(file, std::ios::app) << std::string(kMost - 1, '\n'); }
    size_t lines = 0;
    for (std::string_view line; reader.next(line);) {
        ++lines;
    }
    EXPECT_GE(lines, 1U);
    EXPECT_TRUE(reader.failed());
    EXPECT_THAT(errors(), ElementsAre(tooLarge(file)));
}

TEST_F(LineReaderLimitTest, SkippedBytesCount) {
    const std::string file = mDir.write("file", "a");
    LineReader reader(file, kBufferSize, kTag, kMost);
    { std::ofstream(file, std::ios::app) << std::string(kMost, 'a') << "\nb\n"; }
    std::string_view line;
    EXPECT_TRUE(reader.next(line));
    EXPECT_FALSE(reader.next(line));
    EXPECT_TRUE(reader.failed());
}

TEST_F(LineReaderLimitTest, FileWithoutAnEndIsRefused) {
    // A regular file of size 0 that has eight bytes for each page of the address space.
    const std::string endless = "/proc/self/pagemap";
    if (access(endless.c_str(), R_OK) != 0) {
        GTEST_SKIP() << "this kernel shows no such file";
    }
    for (const size_t most : {kMostIdentityBytes, kMostListBytes, kMostProjectBytes}) {
        mLog.clear();
        LineReader reader(endless, kBufferSize, kTag, most);
        for (std::string_view line; reader.next(line);) {
        }
        EXPECT_TRUE(reader.failed());
        EXPECT_EQ(errors().back(), endless + ": cannot be read: " + largerThan(most));
    }
}

TEST_F(LineReaderLimitTest, LimitsAreThoseThatDevicesAreToldOf) {
    EXPECT_EQ(largerThan(kMostIdentityBytes), "larger than 65536 bytes");
    EXPECT_EQ(largerThan(kMostListBytes), "larger than 16777216 bytes");
    EXPECT_EQ(largerThan(kMostProjectBytes), "larger than 67108864 bytes");
}

TEST_F(LineReaderLimitTest, SparseFileIsRefused) {
    const std::string sparse = mDir.write("file", "PROJECT_ID=1\n");
    ASSERT_EQ(truncate(sparse.c_str(), off_t{10} << 30), 0);
    LineReader reader(sparse, kBufferSize, kTag, kMostIdentityBytes);
    std::string_view line;
    EXPECT_FALSE(reader.next(line));
    EXPECT_TRUE(reader.failed());
    EXPECT_THAT(errors(), ElementsAre(sparse + ": cannot be read: larger than 65536 bytes"));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
