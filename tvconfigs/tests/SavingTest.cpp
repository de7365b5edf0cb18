// What a change leaves of the TV feature file: on a full disk, and at any moment.

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "host/testing/FileCalls.h"
#include "host/testing/LogCapture.h"
#include "host/testing/OtherUser.h"
#include "host/testing/SmallDisk.h"
#include "host/testing/TempDir.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/tests/EditorTexts.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::asOtherUser;
using ::mlk::testing::failing;
using ::mlk::testing::FileCall;
using ::mlk::testing::FileCalls;
using ::mlk::testing::isKilledAt;
using ::mlk::testing::LogCapture;
using ::mlk::testing::SmallDisk;
using ::mlk::testing::TempDir;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(SavingTest, WhatCannotBeWrittenIsToldWithItsReason) {
    const TempDir dir;
    const std::string path = dir.write("file", "a=1\n");
    FileConfigEditor editor(path.c_str());
    const FileCalls calls(failing(FileCall::PWRITE, ENOSPC));
    const LogCapture log;
    EXPECT_TRUE(editor.Set("a", "2"));
    EXPECT_THAT(log.texts(),
                ElementsAre("ERROR: Write " + path + " fail! No space left on device"));
    EXPECT_EQ(valueOf(editor, "a"), "2");
    EXPECT_EQ(dir.read("file"), "a=1\n");
}

TEST(SavingTest, WhatTheFileHoldsIsNotWrittenAgain) {
    const TempDir dir;
    const std::string path = dir.write("file", "a=1\nb=2\n");
    const LogCapture quiet;
    FileConfigEditor editor(path.c_str());
    {
        const FileCalls calls;
        EXPECT_TRUE(editor.Set("b", "2"));
        EXPECT_THAT(calls.calls(), IsEmpty());
    }
    for (const char* const other : {"a=1\nb=3\n", "a=1\nb=2\n#\n", "a=1\n"}) {
        dir.write("file", other);
        EXPECT_TRUE(editor.Set("b", "2"));
        EXPECT_EQ(dir.read("file"), "a=1\nb=2\n") << "whoever changed it meanwhile";
    }
    {
        const FileCalls calls(failing(FileCall::FSYNC, EIO));
        EXPECT_TRUE(editor.Set("b", "3"));
    }
    EXPECT_EQ(dir.read("file"), "a=1\nb=3\n");
    const FileCalls calls;
    EXPECT_TRUE(editor.Set("b", "3"));
    EXPECT_THAT(calls.calls(), ElementsAre(FileCall::PWRITE, FileCall::FSYNC))
            << "it is there, but perhaps not on storage";
}

TEST(SavingTest, AFileThatMayNotBeWrittenIsToldAllTheSame) {
    const TempDir dir;
    const std::string path = dir.write("file", "a=1\n");
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_TRUE(asOtherUser(dir.path(), [&] {
        const LogCapture quiet;
        FileConfigEditor editor(path.c_str());
        return valueOf(editor, "a") == "1" && !editor.Set("a", "1") && !editor.Set("a", "2");
    }));
    EXPECT_EQ(dir.read("file"), "a=1\n");
}

TEST(SavingTest, AFileKeepsWhatItIs) {
    const TempDir dir;
    const LogCapture quiet;
    dir.write("target", "a=1\n");
    ASSERT_EQ(symlink("target", dir.path("file").c_str()), 0);
    ASSERT_EQ(chmod(dir.path("target").c_str(), 0666), 0);
    const mode_t former = umask(077);
    FileConfigEditor editor(dir.path("file").c_str());
    EXPECT_TRUE(editor.Set("a", "22"));
    umask(former);
    struct stat about {};
    ASSERT_EQ(lstat(dir.path("file").c_str(), &about), 0);
    EXPECT_TRUE(S_ISLNK(about.st_mode));
    ASSERT_EQ(lstat(dir.path("target").c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & ALLPERMS, 0666U);
    EXPECT_EQ(dir.read("target"), "a=22\n");
}

TEST(SavingTest, GrowthOnAFullDiskLosesNoEntry) {
    const SmallDisk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << disk.problem();
    }
    // The last entry ends at the end of a block of the disk.
    std::string content = "a=1\n";
    while (content.size() < 4096) {
        content +=
                "key=" + std::string(std::min<size_t>(1000, 4096 - content.size() - 5), 'v') + '\n';
    }
    ASSERT_EQ(content.size(), 4096U);
    const std::string path = disk.dir().write("file", content);
    FileConfigEditor editor(path.c_str());
    disk.fill();
    {
        const LogCapture log;
        EXPECT_TRUE(editor.Set("a", "22"));
        EXPECT_THAT(log.texts(),
                    ElementsAre("ERROR: Write " + path + " fail! No space left on device"));
    }
    EXPECT_EQ(disk.dir().read("file"), content);
    EXPECT_TRUE(editor.Set("a", "3"));
    EXPECT_EQ(disk.dir().read("file"), "a=3" + content.substr(3));
    disk.drain();
    EXPECT_TRUE(editor.Set("a", "44"));
    EXPECT_EQ(disk.dir().read("file"), "a=44" + content.substr(3));
}

// A crash may leave a file that has grown but has not been written.
TEST(SavingTest, SizeWithoutItsBytesReadsAsBefore) {
    const TempDir dir;
    FileConfigEditor editor(dir.write("file", std::string("a=1\nb=2\n\0\0\0", 11)).c_str());
    EXPECT_EQ(entriesOf(editor), "a=1\nb=2\n");
}

TEST(SavingTest, KillAtEachCallLeavesTheOldEntriesOrTheNew) {
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
    const LogCapture quiet;
    for (const Row& row : rows) {
        size_t number = 0;
        for (bool killed = true; killed; ++number) {
            const TempDir dir;
            const std::string path = dir.write("file", row.before);
            FileConfigEditor former(path.c_str());
            const std::string entries = entriesOf(former);
            killed = isKilledAt(number, [&] {
                FileConfigEditor editor(path.c_str());
                editor.Set("a", row.value);
            });
            FileConfigEditor found(path.c_str());
            EXPECT_THAT(entriesOf(found), AnyOf(entries, row.after)) << number;
            EXPECT_TRUE(killed || dir.read("file") == row.after);
        }
        EXPECT_GT(number, 2U);
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
