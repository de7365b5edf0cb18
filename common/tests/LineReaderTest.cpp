#include "common/LineReader.h"

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "host/testing/LogCapture.h"
#include "host/testing/ReadHook.h"
#include "host/testing/TempDir.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::LogCapture;
using mlk::testing::ReadHook;
using mlk::testing::TempDir;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

constexpr const char* kTag = "LineReaderTest";
constexpr size_t kBufferSize = 256;
constexpr size_t kLimit = kBufferSize - 1;

std::vector<std::string> linesOf(const std::string& path, size_t bufferSize = kBufferSize) {
    std::vector<std::string> lines;
    LineReader reader(path, bufferSize, kTag);
    std::string_view line;
    while (reader.next(line)) {
        lines.emplace_back(line);
        EXPECT_EQ(reader.lineNumber(), lines.size());
    }
    EXPECT_FALSE(reader.next(line)) << "the end is the end";
    return lines;
}

// The rules once more, written down plainly.
std::vector<std::string> expectedLines(std::string text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string line = text.substr(0, std::min(end, kLimit));
        lines.push_back(line.c_str());  // up to its first NUL
        text.erase(0, end + 1);
    }
    return lines;
}

// Lines of many lengths, most of them short.
std::string randomText(std::mt19937& random, size_t lines) {
    const size_t lengths[] = {0, 1, 2, 100, 254, 255, 256, 257, 600, 40000};
    std::string text;
    for (; lines > 0; --lines) {
        const size_t length = lengths[random() % (random() % 20 == 0 ? 10 : 9)];
        for (size_t i = 0; i < length; ++i) {
            text += random() % 500 == 0 ? '\0' : static_cast<char>('a' + random() % 26);
        }
        text += '\n';
    }
    if (!text.empty() && random() % 2 == 0) {
        text.pop_back();
    }
    return text;
}

class LineReaderTest : public ::testing::Test {
  protected:
    std::vector<std::string> linesOfText(const std::string& text) {
        return linesOf(mDir.write("file", text));
    }
    std::vector<std::string> errors() const { return mLog.texts(ANDROID_LOG_ERROR, kTag); }
    std::string path() const { return mDir.path() + "/file"; }
    std::string longLine(int number) const {
        return path() + ":" + std::to_string(number) +
               ": line longer than 255 bytes, its rest is skipped";
    }

    const TempDir mDir;
    LogCapture mLog;
};

TEST_F(LineReaderTest, HandsOutEachLine) {
    EXPECT_THAT(linesOfText("a\n\n b\n"), ElementsAre("a", "", " b"));
    EXPECT_THAT(linesOfText("a\nb"), ElementsAre("a", "b"));
    EXPECT_THAT(linesOfText("\n"), ElementsAre(""));
    EXPECT_THAT(linesOfText(""), IsEmpty());
    EXPECT_THAT(linesOfText("a\r\nb\r\n"), ElementsAre("a\r", "b\r"));
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(LineReaderTest, NulEndsTheTextOfItsLine) {
    EXPECT_THAT(linesOfText("a\0b\nc\n\0d\n\0"s), ElementsAre("a", "c", "", ""));
}

TEST_F(LineReaderTest, LineOfTheLimitIsWhole) {
    const std::string line(kLimit, 'x');
    EXPECT_THAT(linesOfText(line + "\nnext\n"), ElementsAre(line, "next"));
    EXPECT_THAT(linesOfText(line), ElementsAre(line));
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(LineReaderTest, LongerLineIsCutAndItsRestSkipped) {
    const std::string line(kLimit, 'x');
    EXPECT_THAT(linesOfText("first\n" + line + "y\nnext\n"), ElementsAre("first", line, "next"));
    EXPECT_THAT(errors(), ElementsAre(longLine(2)));
    mLog.clear();
    EXPECT_THAT(linesOfText(line + "y"), ElementsAre(line));
    EXPECT_THAT(errors(), ElementsAre(longLine(1)));
    mLog.clear();
    EXPECT_THAT(linesOfText(line + "\r\n"), ElementsAre(line));
    EXPECT_THAT(errors(), ElementsAre(longLine(1)));
}

TEST_F(LineReaderTest, EveryLongLineIsReportedOnce) {
    const std::string line(1000, 'x');
    linesOfText(line + "\nok\n" + line + "\n");
    EXPECT_THAT(errors(), ElementsAre(longLine(1), longLine(3)));
}

TEST_F(LineReaderTest, NulDoesNotHideALongLine) {
    EXPECT_THAT(linesOfText("ab\0"s + std::string(kBufferSize, 'x') + "\nnext"),
                ElementsAre("ab", "next"));
    EXPECT_THAT(errors(), ElementsAre(longLine(1)));
}

TEST_F(LineReaderTest, LimitFollowsTheBufferSize) {
    const std::string text = std::string(1023, 'x') + "\n" + std::string(1024, 'y') + "\n";
    EXPECT_THAT(linesOf(mDir.write("file", text), 1024),
                ElementsAre(std::string(1023, 'x'), std::string(1023, 'y')));
    EXPECT_THAT(errors(),
                ElementsAre(path() + ":2: line longer than 1023 bytes, its rest is skipped"));
    // A buffer beyond one chunk of the file.
    const std::string big(100000, 'z');
    EXPECT_THAT(linesOf(mDir.write("file", big + "\nend"), 100001), ElementsAre(big, "end"));
    EXPECT_THAT(linesOf(mDir.write("file", big + big + "\nend"), 100001), ElementsAre(big, "end"));
}

TEST_F(LineReaderTest, HugeLineCostsNoMemory) {
    const std::string huge = mDir.write("file", "x");
    ASSERT_EQ(truncate(huge.c_str(), off_t{1} << 25), 0);  // one line of NUL bytes
    { std::ofstream(huge, std::ios::app) << "\nlast\n"; }
    EXPECT_THAT(linesOf(huge), ElementsAre("x", "last"));
    EXPECT_THAT(errors(), ElementsAre(longLine(1)));
}

TEST_F(LineReaderTest, MissingFileReadsAsEmpty) {
    LineReader reader(path(), kBufferSize, kTag);
    std::string_view line = "untouched";
    EXPECT_FALSE(reader.isOpen());
    EXPECT_FALSE(reader.next(line));
    EXPECT_EQ(line, "untouched");
    EXPECT_EQ(reader.lineNumber(), 0U);
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(LineReaderTest, WhatIsNoFileReadsAsEmptyAndIsReported) {
    ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
    EXPECT_THAT(linesOf(path()), IsEmpty());
    EXPECT_THAT(linesOf(mDir.path()), IsEmpty());
    EXPECT_THAT(linesOf("/dev/zero"), IsEmpty());
    EXPECT_THAT(errors(), ElementsAre(path() + ": cannot be read: not a regular file",
                                      mDir.path() + ": cannot be read: not a regular file",
                                      "/dev/zero: cannot be read: not a regular file"));
}

TEST_F(LineReaderTest, FailureEndsTheLinesAndIsReportedOnce) {
    // A regular file that opens, but whose bytes cannot be read.
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

TEST_F(LineReaderTest, LineThatAFailureMeetsIsNotHandedOut) {
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

TEST_F(LineReaderTest, FailureInTheSkippedRestOfALineIsOne) {
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

TEST_F(LineReaderTest, EndOfTheFileIsNoFailure) {
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

TEST_F(LineReaderTest, ShortReadIsNotTheEnd) {
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

TEST_F(LineReaderTest, InterruptedReadIsRepeated) {
    const std::string file = mDir.write("file", "a\nb\n");
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::calls() % 2 == 1 ? ReadHook::fail(EINTR)
                                          : ReadHook::read(descriptor, bytes, size);
    });
    EXPECT_THAT(linesOf(file), ElementsAre("a", "b"));
}

TEST_F(LineReaderTest, NulOfAnEarlierReadEndsItsLine) {
    // The NUL is read together with the line before, and the end of its line without a further one.
    const std::string file = mDir.write("file", "a\nb\0c"s + "d\ne\n");
    ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::read(descriptor, bytes, ReadHook::calls() == 1 ? 5 : size);
    });
    EXPECT_THAT(linesOf(file), ElementsAre("a", "b", "e"));
}

TEST_F(LineReaderTest, FileThatGrowsMeanwhileIsReadOn) {
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
    // A regular file of no size, with eight bytes for each page that a process could have.
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

TEST_F(LineReaderLimitTest, SparseFileIsRefused) {
    const std::string sparse = mDir.write("file", "PROJECT_ID=1\n");
    ASSERT_EQ(truncate(sparse.c_str(), off_t{10} << 30), 0);
    LineReader reader(sparse, kBufferSize, kTag, kMostIdentityBytes);
    std::string_view line;
    EXPECT_FALSE(reader.next(line));
    EXPECT_TRUE(reader.failed());
    EXPECT_THAT(errors(), ElementsAre(sparse + ": cannot be read: larger than 65536 bytes"));
}

TEST_F(LineReaderTest, AComplaintNamesFileAndLine) {
    LineReader reader(mDir.write("file", "a\nb\n"), kBufferSize, kTag);
    std::string_view line;
    reader.next(line);
    reader.next(line);
    reader.complain("odd");
    EXPECT_EQ(reader.path(), path());
    EXPECT_THAT(errors(), ElementsAre(path() + ":2: odd"));
}

TEST_F(LineReaderTest, ValueIsWhatFollowsTheFirstEqualsSign) {
    LineReader reader(mDir.write("file", "a = b=c\nd=\nef\n"), kBufferSize, kTag);
    std::string_view line;
    std::string_view value;
    reader.next(line);
    EXPECT_TRUE(reader.valueOf(line, value));
    EXPECT_EQ(value, " b=c");
    reader.next(line);
    EXPECT_TRUE(reader.valueOf(line, value));
    EXPECT_EQ(value, "");
    EXPECT_THAT(errors(), IsEmpty());
    reader.next(line);
    value = "untouched";
    EXPECT_FALSE(reader.valueOf(line, value));
    EXPECT_EQ(value, "untouched");
    EXPECT_THAT(errors(), ElementsAre(path() + ":3: no \"=\", line skipped"));
}

TEST_F(LineReaderTest, AgreesWithThePlainRulesOnRandomFiles) {
    std::mt19937 random(2);
    for (int round = 0; round < 60; ++round) {
        const std::string text = randomText(random, random() % 300);
        ASSERT_EQ(linesOfText(text), expectedLines(text)) << "round " << round;
    }
}

TEST_F(LineReaderTest, FinderFindsWhatTheLineHas) {
    std::mt19937 random(3);
    size_t found = 0;
    for (int round = 0; round < 60; ++round) {
        std::string text = randomText(random, 300);
        for (size_t marks = random() % 1000; marks > 0; --marks) {
            text[random() % text.size()] = "#\";\n"[random() % 4];
        }
        LineReader reader(mDir.write("file", text), kBufferSize, kTag);
        LineReader::Finder comment(reader, '#');
        LineReader::Finder quote(reader, '"');
        LineReader::Finder sometimes(reader, ';');
        std::string_view line;
        while (reader.next(line)) {
            const size_t expected = line.find('#');
            found += expected != std::string_view::npos ? 1 : 0;
            ASSERT_EQ(comment.in(line), expected) << reader.lineNumber();
            ASSERT_EQ(quote.in(line), line.find('"')) << reader.lineNumber();
            if (random() % 4 == 0) {
                line.remove_prefix(line.size() / 2);
                ASSERT_EQ(sometimes.in(line), line.find(';')) << reader.lineNumber();
            }
        }
    }
    EXPECT_GT(found, 1000U);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
