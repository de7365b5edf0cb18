#include "tvconfigs/RewriteInPlace.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "host/testing/LogCapture.h"
#include "host/testing/TempDir.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/tests/EditorTexts.h"
#include "tvconfigs/tests/FileCalls.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::LogCapture;
using ::mlk::testing::TempDir;
using ::testing::AnyOf;
using ::testing::ElementsAre;

class RewriteInPlaceTest : public ::testing::Test {
  protected:
    const TempDir mDir;

    std::string write(const std::string& content) const { return mDir.write("file", content); }
    std::string file() const { return mDir.read("file"); }
};

TEST_F(RewriteInPlaceTest, IsTheWholeContentAfterwards) {
    for (const std::string former : {"", "ab", "abcd", "abcdefgh"}) {
        for (const std::string text : {"", "x", "wxyz", "stuvwxyz"}) {
            EXPECT_EQ(rewriteInPlace(write(former), text), Rewritten::DONE);
            EXPECT_EQ(file(), text) << former;
        }
    }
}

TEST_F(RewriteInPlaceTest, CreatesAMissingFile) {
    const mode_t mask = umask(022);
    EXPECT_EQ(rewriteInPlace(mDir.path("new"), "text"), Rewritten::DONE);
    umask(mask);
    EXPECT_EQ(mDir.read("new"), "text");
    struct stat about {};
    ASSERT_EQ(stat(mDir.path("new").c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 07777U, 0644U);
}

TEST_F(RewriteInPlaceTest, OpensOnlyRegularFiles) {
    const std::string fifo = mDir.path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& path :
         {fifo, mDir.path(), std::string("/dev/null"), mDir.path("no/folder"), std::string()}) {
        EXPECT_EQ(rewriteInPlace(path, "text"), Rewritten::NOT_OPENED) << path;
    }
}

TEST_F(RewriteInPlaceTest, WritesOnce) {
    const std::string text(1 << 20, 'x');
    for (const std::string& former : {std::string(), std::string(10, 'a'), text}) {
        const std::string path = write(former);
        const FileCalls calls;
        rewriteInPlace(path, text);
        EXPECT_THAT(calls.calls(), ElementsAre(FileCall::WRITE));
    }
}

TEST_F(RewriteInPlaceTest, CutsOnlyWhatIsStored) {
    const std::string path = write("abcd");
    const FileCalls calls;
    rewriteInPlace(path, "xyz");
    EXPECT_THAT(calls.calls(),
                ElementsAre(FileCall::WRITE, FileCall::FDATASYNC, FileCall::FTRUNCATE));
}

TEST_F(RewriteInPlaceTest, GoesOnAfterAShortOrInterruptedWrite) {
    const std::string path = write("");
    const FileCalls calls([](FileCall, size_t number) {
        return number % 2 == 0 ? FileCallFate{EINTR} : FileCallFate{0, 3};
    });
    EXPECT_EQ(rewriteInPlace(path, "abcdefgh"), Rewritten::DONE);
    EXPECT_EQ(file(), "abcdefgh");
}

TEST_F(RewriteInPlaceTest, AnInterruptedCutIsRepeated) {
    const std::string path = write("abcd");
    const FileCalls calls(
            [](FileCall, size_t number) { return FileCallFate{number == 2 ? EINTR : 0}; });
    EXPECT_EQ(rewriteInPlace(path, "xy"), Rewritten::DONE);
    EXPECT_EQ(file(), "xy");
}

TEST_F(RewriteInPlaceTest, WhatCannotBeWrittenLeavesTheRestAsItWas) {
    const std::string path = write("abcdefgh");
    {
        const FileCalls calls([](FileCall, size_t number) {
            return number == 0 ? FileCallFate{0, 3} : FileCallFate{ENOSPC};
        });
        EXPECT_EQ(rewriteInPlace(path, "uvwxyz"), Rewritten::NOT_WRITTEN);
    }
    EXPECT_EQ(file(), "uvwdefgh");
}

TEST_F(RewriteInPlaceTest, AnEditorTellsWhatItCouldNotWrite) {
    const std::string path = write("a=1\n");
    FileConfigEditor editor(path.c_str());
    const FileCalls calls([](FileCall, size_t) { return FileCallFate{ENOSPC}; });
    const LogCapture log;
    EXPECT_TRUE(editor.Set("a", "2"));
    EXPECT_THAT(log.texts(), ElementsAre("ERROR: Write " + path + " fail!"));
    EXPECT_EQ(valueOf(editor, "a"), "2");
    EXPECT_EQ(file(), "a=1\n");
}

/// Where a size reaches the storage before the bytes do, zeros stand for these.
TEST_F(RewriteInPlaceTest, ASizeWithoutItsBytesReadsAsBefore) {
    FileConfigEditor editor(write(std::string("a=1\nb=2\n\0\0\0", 11)).c_str());
    EXPECT_EQ(entriesOf(editor), "a=1\nb=2\n");
}

/// Dies before a call of one rewriting, after it, and so on for all of them: what is found then are
/// the entries from before or those from after.
TEST(RewriteInPlaceDeathTest, EachMomentLeavesTheOldEntriesOrTheNew) {
    constexpr char kHead[] = "# a comment that the first writing drops, key=value\n";
    struct Row {
        std::string before;
        const char* value;
        std::string after;
    };
    const Row rows[] = {{"a=true\nb=true\n", "false", "a=false\nb=true\n"},
                        {"a=false\nb=true\n", "true", "a=true\nb=true\n"},
                        {kHead + std::string("a=false\nb=true\n"), "true", "a=true\nb=true\n"},
                        {"a=x\nb=true\n", "y", "a=y\nb=true\n"}};
    for (const Row& row : rows) {
        for (size_t number = 0; number < 4; ++number) {
            const TempDir dir;
            const std::string path = dir.write("file", row.before);
            FileConfigEditor former(path.c_str());
            const std::string entries = entriesOf(former);
            EXPECT_EXIT(
                    {
                        FileConfigEditor editor(path.c_str());
                        const FileCalls calls([&](FileCall, size_t each) {
                            if (each == number) {
                                raise(SIGKILL);
                            }
                            return FileCallFate{};
                        });
                        editor.Set("a", row.value);
                        raise(SIGKILL);
                    },
                    ::testing::KilledBySignal(SIGKILL), "");
            FileConfigEditor found(path.c_str());
            EXPECT_EQ(entriesOf(found), number == 0 ? entries : row.after)
                    << row.before << " killed at call " << number;
        }
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
