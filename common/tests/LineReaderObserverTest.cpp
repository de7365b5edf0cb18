// What an observer hears of a file of lines.

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <string>

#include "common/testing/RecordedLines.h"
#include "common/tests/LineFiles.h"
#include "host/testing/ReadHook.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::ReadHook;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

class LineReaderObserverTest : public LineReaderTest {
  protected:
    // Tells of every line that it has the item "key".
    void read(const std::string& path, size_t mostBytes = kMostProjectBytes) {
        LineReader reader(path, kBufferSize, kTag, mostBytes, &mHeard);
        EXPECT_TRUE(reader.isObserved());
        for (std::string_view line; reader.next(line);) {
            reader.tellItem(line, "key", "");
        }
    }

    RecordedLines mHeard;
};

TEST_F(LineReaderObserverTest, HearsWhatItsUserTells) {
    LineReader reader(mDir.write("file", "a\n[B]\nc=d\n\ne\n"), kBufferSize, kTag,
                      kMostProjectBytes, &mHeard);
    std::string_view line;
    reader.next(line);
    reader.tell(line, LineUse::NOTHING);
    reader.next(line);
    ReadLine section;
    section.use = LineUse::SECTION;
    section.section = "B";
    reader.tell(line, section);
    reader.next(line);
    reader.tellItem(line, "c", "d");
    reader.next(line);  // its user does not tell
    reader.next(line);
    ReadLine item;
    item.use = LineUse::IGNORED;
    item.isNew = false;
    reader.tell(line, item);
    EXPECT_THAT(mHeard.of(path()), ElementsAre("1 nothing \"a\"", "2 section \"[B]\" B||",
                                               "3 item \"c=d\" |c|d", "5 ignored \"e\" old"));
    EXPECT_THAT(mHeard.files(), ElementsAre(path()));
}

TEST_F(LineReaderObserverTest, WithoutAnObserverTellingDoesNothing) {
    LineReader reader(mDir.write("file", "a\n"), kBufferSize, kTag);
    std::string_view line;
    ASSERT_TRUE(reader.next(line));
    EXPECT_FALSE(reader.isObserved());
    reader.tell(line, LineUse::NOTHING);
    reader.tell(line, ReadLine());
    reader.tellItem(line, "a", "b");
    reader.complain(ProblemKind::NO_VALUE);
    EXPECT_THAT(errors(), ElementsAre(path() + ":1: no value, line skipped"));
}

TEST_F(LineReaderObserverTest, LongLinesAreCutAndCountAsOne) {
    const auto line = [](size_t size) { return std::string(size, 'x') + "\n"; };
    // Lines of more than the reader's buffer come in several reads.
    read(mDir.write("file", line(255) + line(256) + "a\n" + line(100'000) + "b\n" + line(300)));
    EXPECT_THAT(mHeard.all(),
                ElementsAre("1 item \"xxxxxxxx...(255)\" |key|",
                            "2 problem: line longer than 255 bytes, its rest is skipped",
                            "2 item \"xxxxxxxx...(255)\" |key| cut", "3 item \"a\" |key|",
                            "4 problem: line longer than 255 bytes, its rest is skipped",
                            "4 item \"xxxxxxxx...(255)\" |key| cut", "5 item \"b\" |key|",
                            "6 problem: line longer than 255 bytes, its rest is skipped",
                            "6 item \"xxxxxxxx...(255)\" |key| cut"));
}

TEST_F(LineReaderObserverTest, NulEndsTheTextOfItsLineOnly) {
    // The NUL of the third line is beyond its limit.
    read(mDir.write("file", "a\0b\n\0\n"s + std::string(300, 'x') + "\0\nc\n"s));
    EXPECT_THAT(mHeard.all(),
                ElementsAre("1 item \"a\" |key| nul", "2 item \"\" |key| nul",
                            "3 problem: line longer than 255 bytes, its rest is skipped",
                            "3 item \"xxxxxxxx...(255)\" |key| cut", "4 item \"c\" |key|"));
}

TEST_F(LineReaderObserverTest, LineWithoutEqualsIsAProblem) {
    LineReader reader(mDir.write("file", "a\nb\n"), kBufferSize, kTag, kMostProjectBytes, &mHeard);
    std::string_view line;
    std::string_view value;
    while (reader.next(line)) {
        EXPECT_FALSE(reader.valueOf(line, value));
    }
    EXPECT_THAT(mHeard.all(), ElementsAre("1 problem: no \"=\", line skipped",
                                          "2 problem: no \"=\", line skipped"));
    EXPECT_THAT(errors(), ElementsAre(path() + ":1: no \"=\", line skipped",
                                      path() + ":2: no \"=\", line skipped"));
}

TEST_F(LineReaderObserverTest, MissingFileIsNoProblem) {
    read(path());
    EXPECT_THAT(mHeard.all(), IsEmpty());
}

TEST_F(LineReaderObserverTest, UnreadableFilesAreProblemsOfTheWholeFile) {
    read(mDir.path());
    read(mDir.write("file", "12345"), 4);
    const std::string growing = mDir.write("growing", "a\n");
    // The first read gets lines, a later one too much.
    LineReader reader(growing, kBufferSize, kTag, kBufferSize, &mHeard);
    { std::ofstream(growing, std::ios::app) << std::string(kBufferSize, '\n'); }
    for (std::string_view line; reader.next(line);) {
    }
    EXPECT_GT(reader.lineNumber(), 1U);
    EXPECT_THAT(mHeard.of(mDir.path()),
                ElementsAre("0 problem: cannot be read: not a regular file"));
    EXPECT_THAT(mHeard.of(path()), ElementsAre("0 problem: cannot be read: larger than 4 bytes"));
    EXPECT_THAT(mHeard.of(growing),
                ElementsAre("0 problem: cannot be read: larger than 256 bytes"));
}

TEST_F(LineReaderObserverTest, ReadErrorHalfwayIsAProblemOfTheLineBefore) {
    const std::string file = mDir.write("file", "first\nsecond\nthird\n");
    const ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::calls() == 1
                       ? ReadHook::read(descriptor, bytes, std::min<size_t>(size, 15))
                       : ReadHook::fail(EIO);
    });
    read(file);
    EXPECT_THAT(mHeard.all(), ElementsAre("1 item \"first\" |key|", "2 item \"second\" |key|",
                                          "2 problem: cannot be read further: Input/output error"));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
