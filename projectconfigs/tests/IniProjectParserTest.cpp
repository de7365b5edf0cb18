#include "projectconfigs/IniProjectParser.h"

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>
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

class IniProjectParserTest : public ::testing::Test {
  protected:
    void load(const std::string& name, const std::string& text) {
        mParser.update(mDir.write(name, text).c_str());
    }
    std::string dump() const {
        std::ostringstream out;
        mParser.dump(out);
        return out.str();
    }
    // The items of a file of that text: "[S]:key=value;" and so on.
    std::string itemsOf(const std::string& text) {
        IniProjectParser parser;
        parser.update(mDir.write("f.ini", text).c_str());
        std::ostringstream out;
        parser.dump(out);
        std::istringstream in(out.str());
        std::string items;
        for (std::string line; std::getline(in, line);) {
            if (line.substr(0, 8) == "        ") {
                items += line.substr(8) + ";";
            }
        }
        return items;
    }
    // The value that the value text of a line gives.
    std::string valueOf(const std::string& text) {
        IniProjectParser parser;
        parser.update(mDir.write("v.ini", "K=" + text + "\n").c_str());
        return parser.getInfo("v.ini", ConfigKey("", "K"));
    }
    std::vector<std::string> debugLines() const {
        return mLog.texts(ANDROID_LOG_DEBUG, "IniProjectParser");
    }
    std::vector<std::string> errors() const {
        return mLog.texts(ANDROID_LOG_ERROR, "IniProjectParser");
    }

    const TempDir mDir;
    LogCapture mLog;
    IniProjectParser mParser;
};

TEST_F(IniProjectParserTest, HoldsEachFileUnderItsName) {
    load("audio/panel.ini", "[S]\nk=panel\n");
    load("audio/ic.ini", "[S]\nk=ic\n");
    EXPECT_EQ(mParser.getInfo("panel.ini", ConfigKey("[S]", "k")), "panel");
    EXPECT_EQ(mParser.getInfo("ic.ini", ConfigKey("[S]", "k")), "ic");
    EXPECT_EQ(mParser.getInfo("ic.ini", ConfigKey("[S]", "absent")), "");
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(IniProjectParserTest, UnknownFileIsLogged) {
    load("panel.ini", "[S]\nk=panel\n");
    EXPECT_EQ(mParser.getInfo("Panel.ini", ConfigKey("[S]", "k")), "");
    EXPECT_EQ(mParser.getInfo("", ConfigKey("[S]", "k")), "");
    EXPECT_THAT(debugLines(), ElementsAre("can't find the Panel.ini audio config",
                                          "can't find the  audio config"));
}

TEST_F(IniProjectParserTest, FindItemTellsAndLogsWhatIsHeld) {
    load("panel.ini", "[S]\nk=panel\n");
    EXPECT_FALSE(mParser.findItem("other.ini"));
    EXPECT_THAT(mLog.lines(), IsEmpty());
    EXPECT_TRUE(mParser.findItem("panel.ini"));
    EXPECT_THAT(debugLines(), ElementsAre("the panel.ini audio config have exist"));
}

TEST_F(IniProjectParserTest, FileOnceHeldStaysAsItIs) {
    load("a/x.ini", "[S]\nk=first\n");
    load("a/x.ini", "[S]\nk=second\nl=new\n");
    load("b/x.ini", "[S]\nk=third\n");
    EXPECT_EQ(mParser.getInfo("x.ini", ConfigKey("[S]", "k")), "first");
    EXPECT_EQ(mParser.getInfo("x.ini", ConfigKey("[S]", "l")), "");
    EXPECT_EQ(dump(), "  IniProjectParser deatil:\n    File:x.ini\n        [S]:k=first\n");
}

TEST_F(IniProjectParserTest, MissingFileIsLoggedAndNotHeld) {
    const std::string path = mDir.path() + "/none.ini";
    mParser.update(path.c_str());
    EXPECT_THAT(debugLines(), ElementsAre(path + " don't exist."));
    EXPECT_FALSE(mParser.findItem("none.ini"));
    load("none.ini", "k=v\n");
    EXPECT_TRUE(mParser.findItem("none.ini"));
}

TEST_F(IniProjectParserTest, FileWithoutItemsIsNotHeld) {
    load("empty.ini", "");
    load("comments.ini", "# a\n; b\n[S]\n\n");
    EXPECT_FALSE(mParser.findItem("empty.ini"));
    EXPECT_FALSE(mParser.findItem("comments.ini"));
    EXPECT_EQ(dump(), "  IniProjectParser deatil:\n");
}

TEST_F(IniProjectParserTest, PathWithoutSlashIsItsOwnName) {
    mDir.write("plain.ini", "k=v\n");
    ASSERT_EQ(chdir(mDir.path().c_str()), 0);
    mParser.update("plain.ini");
    EXPECT_TRUE(mParser.findItem("plain.ini"));
}

TEST_F(IniProjectParserTest, WhatIsNoFileReadsAsEmpty) {
    const std::string fifo = mDir.path() + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    mParser.update(fifo.c_str());
    mParser.update(mDir.path().c_str());
    mParser.update("/dev/zero");
    mParser.update("");
    mParser.update(nullptr);
    EXPECT_EQ(dump(), "  IniProjectParser deatil:\n");
    EXPECT_THAT(debugLines(), ElementsAre(" don't exist."));
    EXPECT_THAT(errors(), ElementsAre(fifo + ": cannot be read: not a regular file",
                                      mDir.path() + ": cannot be read: not a regular file",
                                      "/dev/zero: cannot be read: not a regular file"));
}

TEST_F(IniProjectParserTest, FirstValueOfAKeyCounts) {
    EXPECT_EQ(itemsOf("[S]\nKEY=1\nKEY=2\n[T]\nKEY=3\n[S]\nKEY=4\nL=5\n"),
              "[S]:L=5;[S]:KEY=1;[T]:KEY=3;");
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(IniProjectParserTest, BothCommentCharactersStartACommentLine) {
    EXPECT_EQ(itemsOf("[S]\n;a=1\n#b=2\nc=3\n ;d=4\n"), "[S]:c=3;[S]: ;d=4;");
}

TEST_F(IniProjectParserTest, ItemsBeforeTheFirstSectionHaveTheEmptyCategory) {
    EXPECT_EQ(itemsOf("a=1\n[S]\nb=2\n"), ":a=1;[S]:b=2;");
}

TEST_F(IniProjectParserTest, ValueEndsAtItsNextEquals) {
    EXPECT_EQ(valueOf("1=2"), "1");
    EXPECT_EQ(valueOf("=1"), "1");
    EXPECT_EQ(valueOf("==1==2"), "1");
    EXPECT_EQ(itemsOf("[S]\n==K==1=2\n"), "[S]:K=1;");
}

TEST_F(IniProjectParserTest, KeyLosesTrailingSpacesOnly) {
    EXPECT_EQ(itemsOf("[S]\n a b  =1\n\tc\t=2\n\"d;\"=3\n"),
              "[S]:\tc\t=2;[S]: a b=1;[S]:\"d;\"=3;");
}

TEST_F(IniProjectParserTest, ValueLosesLeadingSpacesAndItsComment) {
    EXPECT_EQ(valueOf("   1"), "1");
    EXPECT_EQ(valueOf("1 "), "1 ");
    EXPECT_EQ(valueOf("1 # comment"), "1 ");
    EXPECT_EQ(valueOf("# comment"), "");
    EXPECT_EQ(valueOf(" "), "");
    EXPECT_EQ(valueOf("\t1"), "\t1");
}

TEST_F(IniProjectParserTest, CharacterTakenOutTakesItsFollowersAlong) {
    EXPECT_EQ(valueOf("ab\"cdef"), "abef");
    EXPECT_EQ(valueOf("\"abc\""), "abc");
    EXPECT_EQ(valueOf("abc\""), "abc");
    EXPECT_EQ(valueOf("\"\"a"), "a");
    EXPECT_EQ(valueOf("a;bc"), "ac");
    EXPECT_EQ(valueOf(";;a;"), "a");
    EXPECT_EQ(valueOf("abcd;ef"), "abcd");
    EXPECT_EQ(valueOf("a\rbc"), "ac");
    EXPECT_EQ(valueOf("ab\r"), "ab");
    EXPECT_EQ(valueOf("\r"), "");
    // Quotes are removed before semicolons: the first quote takes the semicolon along.
    EXPECT_EQ(valueOf("a\";b"), "ab");
    EXPECT_EQ(valueOf("\"abc\" "), "abc");
}

TEST_F(IniProjectParserTest, QuotedValueComesBackWithoutQuotes) {
    EXPECT_EQ(valueOf("\"/tvconfigs/a.bin\""), "/tvconfigs/a.bin");
    EXPECT_EQ(valueOf("\"/tvconfigs/a.bin\"\r"), "/tvconfigs/a.bin");
}

TEST_F(IniProjectParserTest, SectionKeepsSemicolonsAndTheSpaceBeforeItsComment) {
    EXPECT_EQ(itemsOf("[AUDIO] # c\nk=1\n"), "[AUDIO] :k=1;");
    EXPECT_EQ(itemsOf("[AUDIO]# c\nk=1\n"), "[AUDIO]:k=1;");
    EXPECT_EQ(itemsOf("[AUDIO]  \nk=1\n"), "[AUDIO]:k=1;");
    EXPECT_EQ(itemsOf("[AUDIO]\r\nk=1\r\n"), "[AUDIO]:k=1;");
    EXPECT_EQ(itemsOf("[AUDIO] \r\nk=1\n"), "[AUDIO]:k=1;");
    EXPECT_EQ(itemsOf("[A];x\nk=1\n"), "[A];x:k=1;");
    EXPECT_EQ(itemsOf("[\"A\"]\nk=1\n"), "[\"A\"]:k=1;");
}

TEST_F(IniProjectParserTest, NoPartitionPrefixIsReplaced) {
    EXPECT_EQ(valueOf("/tvconfigs/a"), "/tvconfigs/a");
}

TEST_F(IniProjectParserTest, LinesWithoutAValueAreSkippedAndReported) {
    EXPECT_EQ(itemsOf("[S]\nkey\nkey=\n===\n   \nb=1\n"), "[S]:b=1;");
    const std::string path = mDir.path() + "/f.ini";
    EXPECT_THAT(
            errors(),
            ElementsAre(path + ":2: no value, line skipped", path + ":3: no value, line skipped",
                        path + ":4: no value, line skipped", path + ":5: no value, line skipped"));
}

TEST_F(IniProjectParserTest, SkipsEmptyLinesWhateverEndsThem) {
    EXPECT_EQ(itemsOf("\n\r\n\0a=1\n\rb=2\n[S]\nc=3"s), "[S]:c=3;");
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(IniProjectParserTest, LinesAreBoundedAt255Bytes) {
    const std::string value(255 - 2, 'v');
    EXPECT_EQ(itemsOf("[S]\nk=" + value + "\nl=" + value + "w\n[T" + std::string(300, ']') +
                      "\nm=1\n"),
              "[S]:k=" + value + ";[S]:l=" + value + ";[T" + std::string(253, ']') + ":m=1;");
    const std::string path = mDir.path() + "/f.ini";
    EXPECT_THAT(errors(),
                ElementsAre(path + ":3: line longer than 255 bytes, its rest is skipped",
                            path + ":4: line longer than 255 bytes, its rest is skipped"));
}

TEST_F(IniProjectParserTest, DumpsFilesByNameAndItemsInTheirOrder) {
    load("b.ini", "[LONG]\nB=1\nAA=2\nA=3\n[S]\nk=v\n");
    load("a/a.ini", "x=y\n");
    load("a/c.ini", "");
    EXPECT_EQ(dump(),
              "  IniProjectParser deatil:\n    File:a.ini\n        :x=y\n    File:b.ini\n"
              "        [S]:k=v\n        [LONG]:A=3\n        [LONG]:B=1\n        [LONG]:AA=2\n");
    mParser.dumpDetail();
    EXPECT_THAT(debugLines(),
                ElementsAre("IniProjectParser deatil:", "\tIniPath ID=" + mDir.path() + "/a/c.ini",
                            "\tFile:a.ini", "\t:x=y", "\tFile:b.ini", "\t[S]:k=v", "\t[LONG]:A=3",
                            "\t[LONG]:B=1", "\t[LONG]:AA=2"));
}

TEST_F(IniProjectParserTest, FileReadInPartIsNotHeld) {
    const std::string path = mDir.write("f.ini", "[S]\na=1\nb=2\n");
    {
        ReadHook hook([](int descriptor, void* bytes, size_t size) {
            return ReadHook::calls() == 1
                           ? ReadHook::read(descriptor, bytes, std::min<size_t>(size, 9))
                           : ReadHook::fail(EIO);
        });
        mParser.update(path.c_str());
    }
    EXPECT_FALSE(mParser.findItem("f.ini"));
    EXPECT_THAT(errors(), ElementsAre(path + ":2: cannot be read further: Input/output error"));
    mParser.update(path.c_str());
    EXPECT_EQ(mParser.getInfo("f.ini", ConfigKey("[S]", "b")), "2") << "the next reading counts";
}

TEST_F(IniProjectParserTest, FileThatIsTooLargeIsNotHeld) {
    const std::string path = mDir.write("f.ini", "[S]\na=1\n");
    ASSERT_EQ(truncate(path.c_str(), (off_t{16} << 20) + 1), 0);
    mParser.update(path.c_str());
    EXPECT_FALSE(mParser.findItem("f.ini"));
    EXPECT_THAT(errors(), ElementsAre(path + ": cannot be read: larger than 16777216 bytes"));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
