#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "common/tests/LineFiles.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

TEST_F(LineReaderTest, HandsOutEachLine) {
    EXPECT_THAT(linesOfText("a\n\n b\n"), ElementsAre("a", "", " b"));
    EXPECT_THAT(linesOfText("a\nb"), ElementsAre("a", "b"));
    EXPECT_THAT(linesOfText("\n"), ElementsAre(""));
    EXPECT_THAT(linesOfText(""), IsEmpty());
    EXPECT_THAT(linesOfText("a\r\nb\r\n"), ElementsAre("a\r", "b\r"));
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(LineReaderTest, LinesOfAnyLengthAreWhole) {
    std::string text;
    std::vector<std::string> expected;
    for (size_t length = 0; length < 140; ++length) {
        expected.emplace_back(length, static_cast<char>('a' + length % 26));
        text += expected.back() + "\n";
        EXPECT_EQ(linesOfText(text), expected);
        EXPECT_EQ(linesOfText(text + "end").back(), "end");
    }
}

// Its buffer still has line feeds of the lines before, after its end.
TEST_F(LineReaderTest, TheLastLineOfALaterChunkEndsAtTheEnd) {
    for (size_t count = 20'000; count < 20'004; ++count) {
        std::string text;
        for (size_t i = 0; i < count; ++i) {
            text += "a\n";
        }
        const std::vector<std::string> lines = linesOfText(text + "end");
        ASSERT_EQ(lines.size(), count + 1);
        EXPECT_EQ(lines.back(), "end");
    }
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
    // A buffer larger than one chunk.
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

TEST_F(LineReaderTest, AComplaintNamesFileAndLine) {
    LineReader reader(mDir.write("file", "a\nb\n"), kBufferSize, kTag);
    std::string_view line;
    reader.next(line);
    reader.next(line);
    reader.complain(ProblemKind::NO_VALUE);
    EXPECT_EQ(reader.path(), path());
    EXPECT_THAT(errors(), ElementsAre(path() + ":2: no value, line skipped"));
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

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
