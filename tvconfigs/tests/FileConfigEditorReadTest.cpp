#include <android/log.h>
#include <gmock/gmock.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "host/testing/AddressLimit.h"
#include "host/testing/LogCapture.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/TempDir.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/tests/EditorTexts.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::LogCapture;
using ::mlk::testing::TempDir;
using ::testing::ElementsAre;

constexpr char kTooLong[] = "ERROR: line out of buf size=1024";

std::string repeat(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

class FileConfigEditorReadTest : public ::testing::Test {
  protected:
    const LogCapture mLog;
    const TempDir mDir;

    /** The entries that are read from a file of that content. */
    std::string read(const std::string& content) const {
        FileConfigEditor editor(mDir.write("tv.config", content).c_str());
        return entriesOf(editor);
    }

    /** The error lines except the one that says that the file was opened. */
    std::vector<std::string> complaints() const {
        std::vector<std::string> result;
        for (std::string& text : mLog.texts(ANDROID_LOG_ERROR, "MlkTvConfigs")) {
            if (text != "Open " + mDir.path("tv.config") + " success!") {
                result.push_back(std::move(text));
            }
        }
        EXPECT_EQ(mLog.lines().size(), mLog.texts(ANDROID_LOG_ERROR, "MlkTvConfigs").size());
        return result;
    }
};

TEST_F(FileConfigEditorReadTest, TakesLinesApartAtTheLastEquals) {
    struct Row {
        const char* line;
        const char* key;
        const char* value;
    };
    static constexpr Row kRows[] = {{"a=b", "a", "b"},         {"a=b=c", "a=b", "c"},
                                    {" a = b ", " a ", " b "}, {"=b", "", "b"},
                                    {"a=", "a", ""},           {"=", "", ""},
                                    {"==", "=", ""},           {" #a=b", " #a", "b"},
                                    {"a#=b#c", "a#", "b#c"},   {"\ta=\xff\x80", "\ta", "\xff\x80"}};
    for (const Row& row : kRows) {
        const FileConfigEditor editor(
                mDir.write("tv.config", std::string(row.line) + '\n').c_str());
        EXPECT_EQ(valueOf(editor, row.key), row.value) << row.line;
    }
}

TEST_F(FileConfigEditorReadTest, KeepsTheOrderAndDuplicates) {
    EXPECT_EQ(read("b=1\na=2\nb=3\n"), "b=1\na=2\nb=3\n");
    const FileConfigEditor editor(mDir.path("tv.config").c_str());
    EXPECT_EQ(valueOf(editor, "b"), "1");
}

TEST_F(FileConfigEditorReadTest, SkipsCommentsAndLinesWithoutEquals) {
    EXPECT_EQ(read("#a=1\n\nb\n \n##\nc=3\n#\n"), "c=3\n");
}

TEST_F(FileConfigEditorReadTest, DropsCarriageReturnsEverywhere) {
    EXPECT_EQ(read("a=1\r\n\rb\r=\r\r2\r\n\r#c=3\n\r\n"), "a=1\nb=2\n");
}

TEST_F(FileConfigEditorReadTest, NeedsALineFeedAtTheEnd) {
    EXPECT_EQ(read("a=1\nb=2"), "a=1\n");
    EXPECT_EQ(read("a=1"), "");
    EXPECT_EQ(read(""), "");
    EXPECT_THAT(complaints(), ElementsAre());
}

TEST_F(FileConfigEditorReadTest, EndsAtANulByte) {
    EXPECT_EQ(read(std::string("a=1\nb=2\0\nc=3\n", 13)), "a=1\n");
    EXPECT_EQ(read(std::string("\0a=1\n", 5)), "");
    EXPECT_EQ(read(std::string("#x\0\na=1\n", 8)), "");
    EXPECT_THAT(complaints(), ElementsAre());
}

TEST_F(FileConfigEditorReadTest, TakesALineOf1023Characters) {
    const FileConfigEditor editor(
            mDir.write("tv.config", "k=" + std::string(1021, 'x') + "\nb=2\n").c_str());
    EXPECT_EQ(valueOf(editor, "k"), std::string(91, 'x'));
    EXPECT_EQ(valueOf(editor, "b"), "2");
    EXPECT_EQ(read("#" + std::string(1022, 'x') + "\nb=2\n"), "b=2\n");
    EXPECT_EQ(read(std::string(1023, 'x') + "\nb=2\n"), "b=2\n");
    EXPECT_THAT(complaints(), ElementsAre());
}

TEST_F(FileConfigEditorReadTest, StopsAtALineOf1024Characters) {
    const std::string end = "\nb=2\n";
    for (const std::string& line :
         {"k=" + std::string(1022, 'x'), "#" + std::string(1023, 'x'), std::string(1024, 'x'),
          std::string(5000, 'x'), std::string(1024, 'x') + "\r"}) {
        const size_t before = complaints().size();
        EXPECT_EQ(read("a=1\n" + line + end), "a=1\n") << line.size();
        EXPECT_EQ(complaints().size(), before + 1) << line.size();
    }
    EXPECT_THAT(complaints(), ::testing::Each(kTooLong));
}

TEST_F(FileConfigEditorReadTest, ALineTooLongIsNoFailedUpdate) {
    FileConfigEditor editor(mDir.write("tv.config", "a=1\n").c_str());
    EXPECT_TRUE(editor.Update(mDir.write("other", "b=2\n" + std::string(1024, 'x')).c_str()));
    EXPECT_EQ(entriesOf(editor), "b=2\n");
}

TEST_F(FileConfigEditorReadTest, AFullBufferIsJudgedBeforeWhatFollows) {
    const std::string full(1024, 'x');
    EXPECT_EQ(read(full), "");
    EXPECT_THAT(complaints(), ElementsAre(kTooLong));
    // The NUL byte ends the file before the line is found to be too long.
    EXPECT_EQ(read(full + std::string(1, '\0')), "");
    EXPECT_THAT(complaints(), ElementsAre(kTooLong));
    EXPECT_EQ(read(std::string(1023, 'x')), "");
    EXPECT_THAT(complaints(), ElementsAre(kTooLong));
}

TEST_F(FileConfigEditorReadTest, CarriageReturnsDoNotCount) {
    const FileConfigEditor editor(
            mDir.write("tv.config", "k=" + repeat("\rx\r", 1021) + "\r\nb=2\n").c_str());
    EXPECT_EQ(valueOf(editor, "b"), "2");
    EXPECT_EQ(read(repeat("\rx", 1024) + "\nb=2\n"), "");
    EXPECT_THAT(complaints(), ElementsAre(kTooLong));
}

TEST_F(FileConfigEditorReadTest, LinesMayLieAnywhereInALargeFile) {
    std::string content;
    for (int i = 0; i < 20000; ++i) {
        content += std::string(static_cast<size_t>(i % 41), 'k') + '=' + std::to_string(i) + '\n';
    }
    EXPECT_EQ(read(content), content);
}

TEST_F(FileConfigEditorReadTest, AFileThatIsTooLargeIsRefusedWhole) {
    const std::string line = "a=" + std::string(509, 'x') + '\n';
    const std::string most = repeat(line, (4 << 20) / 512);
    EXPECT_EQ(read(most), most);
    EXPECT_THAT(complaints(), ElementsAre());
    FileConfigEditor editor(mDir.write("tv.config", "a=1\n").c_str());
    const std::string path = mDir.write("tv.config", most + "b=2\n");
    EXPECT_FALSE(editor.Update(path.c_str()));
    EXPECT_THAT(complaints(),
                ElementsAre("ERROR: Read " + path + " fail! more than 4194304 bytes"));
    EXPECT_EQ(entriesOf(editor), "a=1\n") << "a part of it is never written back";
    FileConfigEditor fresh(path.c_str());
    EXPECT_FALSE(fresh.Set("a", "1"));
    EXPECT_EQ(mDir.read("tv.config"), most + "b=2\n");
}

TEST_F(FileConfigEditorReadTest, AFileOfTooManyEntriesIsRefusedWhole) {
    const std::string most = repeat("=\n", 65536);
    EXPECT_EQ(read(most), most);
    EXPECT_EQ(read(most + "#a=b\n\nno entry\n"), most) << "only entries take memory";
    EXPECT_THAT(complaints(), ElementsAre());
    FileConfigEditor editor(mDir.write("tv.config", "a=1\n").c_str());
    const std::string path = mDir.write("tv.config", most + "=\n");
    EXPECT_FALSE(editor.Update(path.c_str()));
    EXPECT_THAT(complaints(),
                ElementsAre("ERROR: Read " + path + " fail! more than 65536 entries"));
    EXPECT_EQ(entriesOf(editor), "a=1\n");
}

TEST_F(FileConfigEditorReadTest, WhatFollowsTheEndDoesNotCount) {
    const std::string large(5 << 20, '\n');
    EXPECT_EQ(read(std::string("a=1\n\0", 5) + large), "a=1\n");
    EXPECT_EQ(read("a=1\n" + std::string(1024, 'x') + large), "a=1\n");
}

TEST_F(FileConfigEditorReadTest, AnErrorInTheMiddleLeavesTheEntries) {
    FileConfigEditor editor(mDir.write("tv.config", "a=1\n").c_str());
    // The file can be opened, but its start cannot be read.
    const std::string path = "/proc/self/mem";
    EXPECT_FALSE(editor.Update(path.c_str()));
    EXPECT_EQ(entriesOf(editor), "a=1\n");
    EXPECT_THAT(mLog.texts(ANDROID_LOG_ERROR, "MlkTvConfigs"),
                ::testing::Contains("ERROR: Read " + path + " fail! Input/output error"));
}

TEST_F(FileConfigEditorReadTest, MemoryOfALargeFileComesBack) {
    FileConfigEditor editor(mDir.write("tv.config", repeat("=\n", 65536)).c_str());
    const size_t most = mallinfo2().uordblks + mallinfo2().hblkhd;
    EXPECT_TRUE(editor.Update(mDir.write("other", "a=1\n").c_str()));
    EXPECT_LT(mallinfo2().uordblks + mallinfo2().hblkhd, most - (size_t{4} << 20U));
}

TEST_F(FileConfigEditorReadTest, TellsWhatItOpened) {
    const std::string path = mDir.write("tv.config", "a=1\n");
    const FileConfigEditor editor(path.c_str());
    EXPECT_THAT(mLog.texts(ANDROID_LOG_ERROR, "MlkTvConfigs"),
                ElementsAre("Open " + path + " success!"));
    EXPECT_EQ(mLog.lines().size(), 1U);
}

TEST_F(FileConfigEditorReadTest, AFileThatCannotBeOpenedLeavesTheEntries) {
    FileConfigEditor editor(mDir.write("tv.config", "a=1\n").c_str());
    const std::string missing = mDir.path("missing");
    EXPECT_FALSE(editor.Update(missing.c_str()));
    EXPECT_FALSE(editor.Update(nullptr));
    EXPECT_EQ(entriesOf(editor), "a=1\n");
    EXPECT_THAT(complaints(),
                ElementsAre("ERROR: Open " + missing + " fail!", "ERROR: Open  fail!"));
}

TEST_F(FileConfigEditorReadTest, TellsWhyAFileCannotBeOpened) {
    FileConfigEditor editor(mDir.write("tv.config", "a=1\n").c_str());
    const std::string folder = mDir.path();
    const std::string loop = mDir.path("loop");
    ASSERT_EQ(symlink(loop.c_str(), loop.c_str()), 0);
    EXPECT_FALSE(editor.Update(folder.c_str()));
    EXPECT_FALSE(editor.Update(loop.c_str()));
    EXPECT_EQ(entriesOf(editor), "a=1\n");
    EXPECT_THAT(complaints(),
                ElementsAre("ERROR: Open " + folder + " fail!",
                            folder + ": cannot be read: not a regular file",
                            "ERROR: Open " + loop + " fail!",
                            loop + ": cannot be read: Too many levels of symbolic links"));
}

TEST_F(FileConfigEditorReadTest, MemoryThatRunsOutCostsTheFileOnly) {
    if (mlk::testing::kSanitized) {
        GTEST_SKIP() << "a sanitizer ends the process";
    }
    std::string large;
    for (int i = 0; i < 60'000; ++i) {
        large += "an.entry.whose.key.has.memory.of.its.own." + std::to_string(i) + "=\n";
    }
    const std::string path = mDir.write("large", large);
    FileConfigEditor editor(mDir.write("tv.config", "a=1\n").c_str());
    {
        const mlk::testing::AddressLimit limit(1 << 20);
        EXPECT_FALSE(editor.Update(path.c_str()));
    }
    EXPECT_EQ(entriesOf(editor), "a=1\n");
    EXPECT_THAT(complaints(), ElementsAre("Open " + path + " success!",
                                          "ERROR: Read " + path + " fail! out of memory"));
    EXPECT_TRUE(editor.Update(path.c_str()));
}

TEST_F(FileConfigEditorReadTest, OnlyRegularFilesAreOpened) {
    const std::string fifo = mDir.path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    FileConfigEditor editor(mDir.write("tv.config", "a=1\n").c_str());
    for (const std::string& path : {fifo, mDir.path(), std::string("/dev/zero")}) {
        EXPECT_FALSE(editor.Update(path.c_str())) << path;
    }
    EXPECT_EQ(entriesOf(editor), "a=1\n");
}

TEST_F(FileConfigEditorReadTest, ConstructionNeverFails) {
    FileConfigEditor missing(mDir.path("missing").c_str());
    EXPECT_EQ(entriesOf(missing), "");
    FileConfigEditor null(nullptr);
    EXPECT_EQ(entriesOf(null), "");
    EXPECT_FALSE(null.Set("a", "1"));
}

TEST_F(FileConfigEditorReadTest, AnotherReadReplacesAllEntries) {
    FileConfigEditor editor(mDir.write("tv.config", "a=1\nb=2\n").c_str());
    EXPECT_TRUE(editor.Update(mDir.write("other", "b=3\n").c_str()));
    EXPECT_EQ(entriesOf(editor), "b=3\n");
    EXPECT_EQ(valueOf(editor, "a"), std::nullopt);
}

TEST_F(FileConfigEditorReadTest, SingleLinesAreAppended) {
    FileConfigEditor editor(mDir.write("tv.config", "a=1\n").c_str());
    EXPECT_TRUE(editor.UpdateList("b=2=3"));
    EXPECT_FALSE(editor.UpdateList("c"));
    EXPECT_FALSE(editor.UpdateList(""));
    EXPECT_FALSE(editor.UpdateList(nullptr));
    // Only the reading of a file skips comments.
    EXPECT_TRUE(editor.UpdateList("#d=4"));
    EXPECT_EQ(entriesOf(editor), "a=1\nb=2=3\n#d=4\n");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
