// What an observer hears of a TV feature file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "common/testing/RecordedLines.h"
#include "host/testing/LogCapture.h"
#include "host/testing/ReadHook.h"
#include "host/testing/TempDir.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/tests/EditorTexts.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::LogCapture;
using ::mlk::testing::ReadHook;
using ::mlk::testing::TempDir;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

class ConfigLinesTest : public ::testing::Test {
  protected:
    std::vector<std::string> heard(const std::string& text) {
        return heardAt(mDir.write("tv.config", text));
    }
    std::vector<std::string> heardAt(const std::string& path) {
        mHeard.clear();
        FileConfigEditor editor(path.c_str(), &mHeard);
        EXPECT_EQ(mHeard.of(path), mHeard.all());
        mEntries = entriesOf(editor);
        return mHeard.all();
    }

    const TempDir mDir;
    LogCapture mLog;
    RecordedLines mHeard;
    std::string mEntries;
};

TEST_F(ConfigLinesTest, TellsEveryLine) {
    EXPECT_THAT(heard("# remark\n"
                      "\n"
                      "a=1\r\n"
                      " b = c=2 \n"
                      "alone\n"
                      "a=3\n"
                      "=\n"
                      " # d=4\n"),
                ElementsAre("1 nothing \"# remark\"", "2 nothing \"\"", "3 item \"a=1\" |a|1",
                            "4 item \" b = c=2 \" | b = c|2 ", "5 ignored \"alone\"",
                            "6 item \"a=3\" |a|3", "7 item \"=\"", "8 item \" # d=4\" | # d|4"));
}

TEST_F(ConfigLinesTest, LastLineWithoutLineFeedIsLost) {
    EXPECT_THAT(heard("a=1\nb=2"), ElementsAre("1 item \"a=1\" |a|1", "2 lost \"b=2\""));
    EXPECT_THAT(heard("b"), ElementsAre("1 lost \"b\""));
    EXPECT_THAT(heard(""), IsEmpty());
    EXPECT_THAT(heard("\r"), IsEmpty()) << "a carriage return is no text";
}

TEST_F(ConfigLinesTest, NulEndsTheFile) {
    EXPECT_THAT(heard("a=1\nb=\0002\nc=3\n"s),
                ElementsAre("1 item \"a=1\" |a|1", "2 lost \"b=\" nul"));
    EXPECT_THAT(heard("a=1\n\0\n"s), ElementsAre("1 item \"a=1\" |a|1", "2 lost \"\" nul"));
    EXPECT_THAT(heard(std::string(1024, 'x') + "\0"s),
                ElementsAre("1 lost \"xxxxxxxx...(1024)\" nul"));
}

TEST_F(ConfigLinesTest, LineThatIsTooLongEndsTheFile) {
    const std::string most = "a=" + std::string(1021, 'x');
    const std::string problem = "2 problem: line longer than 1023 bytes, the file is read up to it";
    const std::string first = "1 item \"a=xxxxxx...(1023)\" |a|xxxxxxxx...(1021)";
    const std::string lost = "2 lost \"a=xxxxxx...(1024)\" cut";
    EXPECT_THAT(heard(most + "\n" + most + "x\nb=2\n"), ElementsAre(first, problem, lost));
    EXPECT_THAT(heard(most + "\n" + most + "xyz\nb=2\n"), ElementsAre(first, problem, lost));
    EXPECT_THAT(heard(most + "\n" + most + "x\r\n"), ElementsAre(first, problem, lost));
    EXPECT_THAT(heard(most + "\n" + most + "x"), ElementsAre(first, problem, lost));
    EXPECT_THAT(heard(most + "\n" + most), ElementsAre(first, "2 lost \"a=xxxxxx...(1023)\""))
            << "it fits, but has no line feed";
}

TEST_F(ConfigLinesTest, WhatCannotBeReadIsAProblemUnlessItIsMissing) {
    EXPECT_THAT(heardAt(mDir.path("missing")), IsEmpty());
    EXPECT_THAT(heardAt(mDir.path()), ElementsAre("0 problem: cannot be read: not a regular file"));
    const std::string line = "#" + std::string(1000, 'x') + "\n";
    std::string text;
    while (text.size() <= size_t{4} << 20U) {
        text += line;
    }
    EXPECT_EQ(heard(text).back(), "0 problem: cannot be read: more than 4194304 bytes");
    text.clear();
    for (int i = 0; i <= 65536; ++i) {
        text += "a=\n";
    }
    EXPECT_EQ(heard(text).back(), "0 problem: cannot be read: more than 65536 entries");
    EXPECT_EQ(mEntries, "");
}

TEST_F(ConfigLinesTest, ReadErrorComesAfterTheLinesBeforeIt) {
    const std::string path = mDir.write("tv.config", "a=1\nb=2\n");
    const ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::calls() == 1 ? ReadHook::read(descriptor, bytes, std::min<size_t>(size, 5))
                                      : ReadHook::fail(EIO);
    });
    const FileConfigEditor editor(path.c_str(), &mHeard);
    EXPECT_THAT(mHeard.of(path), ElementsAre("1 item \"a=1\" |a|1",
                                             "0 problem: cannot be read: Input/output error"));
    char value[ConfigEditor::kValueSize] = {};
    EXPECT_FALSE(editor.Get("a", value)) << "no entry of the file counts";
}

TEST_F(ConfigLinesTest, UpdateTellsOfItsFile) {
    FileConfigEditor editor(mDir.write("tv.config", "a=1\n").c_str(), &mHeard);
    const std::string other = mDir.write("other.config", "b=2\n");
    EXPECT_TRUE(editor.Update(other.c_str()));
    EXPECT_THAT(mHeard.of(other), ElementsAre("1 item \"b=2\" |b|2"));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
