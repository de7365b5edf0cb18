#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "host/testing/FileCalls.h"
#include "host/testing/LogCapture.h"
#include "host/testing/OtherUser.h"
#include "host/testing/ReadHook.h"
#include "host/testing/SmallDisk.h"
#include "host/testing/TempDir.h"
#include "projectconfigs/BoardID.h"
#include "projectconfigs/ProjectID.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using mlk::testing::asOtherUser;
using mlk::testing::failing;
using mlk::testing::FileCall;
using mlk::testing::FileCalls;
using mlk::testing::isKilledAt;
using mlk::testing::LogCapture;
using mlk::testing::ReadHook;
using mlk::testing::SmallDisk;
using mlk::testing::TempDir;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

class IdentityTest : public ::testing::Test {
  protected:
    unsigned int projectOf(const std::string& text) const {
        mDir.write("project_id.bin", text);
        return ProjectID(mDir.path(), 1).Get();
    }
    std::string boardOf(const std::string& text) const {
        mDir.write("board_id.bin", text);
        return BoardID(mDir.path()).Get();
    }
    std::vector<std::string> debugLines() const {
        return mLog.texts(ANDROID_LOG_DEBUG, "MlkProjectConfigs");
    }
    std::vector<std::string> errors() const {
        return mLog.texts(ANDROID_LOG_ERROR, "MlkProjectConfigs");
    }
    std::string projectFile() const { return mDir.path() + "/project_id.bin"; }
    std::string boardFile() const { return mDir.path() + "/board_id.bin"; }
    std::string projectText() const { return mDir.read("project_id.bin"); }

    const TempDir mDir;
    LogCapture mLog;
};

TEST_F(IdentityTest, ProjectIdIsReadLeniently) {
    EXPECT_EQ(projectOf("PROJECT_ID=3\n"), 3U);
    EXPECT_EQ(projectOf("PROJECT_ID = 12"), 12U);
    EXPECT_EQ(projectOf("# a = b\nMY_PROJECT_ID x=\t 7rest\nPROJECT_ID=8\n"), 7U);
    EXPECT_EQ(projectOf("PROJECT_ID=-1\n"), 0xffffffffU);
    EXPECT_EQ(projectOf("PROJECT_ID=none\n"), 0U);
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(IdentityTest, FileWithoutProjectIdGivesZero) {
    EXPECT_EQ(projectOf(""), 0U);
    EXPECT_EQ(projectOf("project_id=3\n"), 0U);
    EXPECT_EQ(projectOf("=3 PROJECT_ID"), 0U);
    EXPECT_EQ(projectOf("x\0PROJECT_ID=3\n"s), 0U);
}

TEST_F(IdentityTest, ProjectIdIsLookedForChunkByChunk) {
    EXPECT_EQ(projectOf(std::string(256, ' ') + "PROJECT_ID=5\n"), 5U);
    EXPECT_EQ(projectOf(std::string(244, ' ') + "PROJECT_ID=5\n"), 5U) << "the chunk ends with it";
    EXPECT_EQ(projectOf(std::string(250, ' ') + "PROJECT_ID=5\n"), 0U) << "the word is split";
    EXPECT_EQ(projectOf(std::string(246, ' ') + "PROJECT_ID=5\n"), 0U) << "the sign is split off";
    const std::string first = "PROJECT_ID=3\n";
    EXPECT_EQ(projectOf(first + std::string(256 - first.size(), ' ') + "PROJECT_ID=4\n"), 3U)
            << "the first one counts";
    const std::string withoutSign = "PROJECT_ID 3\n";
    EXPECT_EQ(
            projectOf(withoutSign + std::string(256 - withoutSign.size(), ' ') + "PROJECT_ID=4\n"),
            0U)
            << "the first one counts without its sign, too";
    // The number continues with bytes that the longer chunk before left in the buffer.
    EXPECT_EQ(projectOf(std::string(256, '9') + "PROJECT_ID=5"), static_cast<unsigned int>(-1));
    EXPECT_EQ(projectOf(std::string(12, 'x') + "67" + std::string(242, 'x') + "PROJECT_ID=5"),
              567U);
}

TEST_F(IdentityTest, FirstEqualsSignAfterTheWordCounts) {
    EXPECT_EQ(projectOf("a=5 PROJECT_ID b=6 c=7\n"), 6U);
    EXPECT_EQ(projectOf("# PROJECT_ID is the model\nPROJECT_ID=4\n"), 4U);
    EXPECT_EQ(projectOf("PROJECT_ID\nOTHER=9\n"), 9U) << "be it that of another line";
}

TEST_F(IdentityTest, ProjectFileIsReadUpTo64KiB) {
    EXPECT_EQ(projectOf(std::string(65536 - 256, ' ') + "PROJECT_ID=5\n"), 5U);
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(projectOf(std::string(65536, ' ') + "PROJECT_ID=5\n"), 0U);
    EXPECT_THAT(errors(), ElementsAre(projectFile() + ": no index in the first 65536 bytes"));
}

TEST_F(IdentityTest, ShortReadEndsNoChunk) {
    const ReadHook hook([](int descriptor, void* bytes, size_t size) {
        return ReadHook::read(descriptor, bytes, std::min<size_t>(size, 5));
    });
    EXPECT_EQ(projectOf("PROJECT_ID=5\n"), 5U);
}

TEST_F(IdentityTest, MissingProjectFileIsCreatedEmpty) {
    const mode_t mask = umask(077);
    EXPECT_EQ(ProjectID(mDir.path(), 1).Get(), 0U);
    umask(mask);
    EXPECT_EQ(projectText(), "");
    struct stat about {};
    ASSERT_EQ(stat(projectFile().c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777U, 0644U);
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(IdentityTest, ProjectFileThatMayOnlyBeReadIsRead) {
    mDir.write("project_id.bin", "PROJECT_ID=3\n");
    ASSERT_EQ(chmod(projectFile().c_str(), 0444), 0);
    EXPECT_TRUE(asOtherUser(mDir.path(), [&] {
        ProjectID id(mDir.path(), 1);
        return id.Get() == 3 && debugLines() == std::vector{"Open " + projectFile() + " fail!"} &&
               !id.Set(2) && id.Get() == 2;
    }));
    EXPECT_EQ(projectText(), "PROJECT_ID=3\n");
}

TEST_F(IdentityTest, ProjectFileOfAReadOnlyPartitionIsRead) {
    SmallDisk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << disk.problem();
    }
    disk.dir().write("project_id.bin", "PROJECT_ID=3\n");
    disk.dir().write("other", "");
    ASSERT_TRUE(disk.keepWritableOnly("other")) << disk.problem();
    ProjectID id(disk.dir().path(), 1);
    EXPECT_EQ(id.Get(), 3U);
    const std::string path = disk.dir().path("project_id.bin");
    EXPECT_THAT(debugLines(), ElementsAre("Open " + path + " fail!"));
    EXPECT_FALSE(id.Set(4));
    EXPECT_THAT(errors(), ElementsAre(path + ": cannot be written: Read-only file system"));
}

TEST_F(IdentityTest, ProjectFileThatCannotBeReadGivesTheDefault) {
    mDir.write("project_id.bin", "PROJECT_ID=3\n");
    ASSERT_EQ(chmod(projectFile().c_str(), 0), 0);
    EXPECT_TRUE(asOtherUser(mDir.path(), [&] { return ProjectID(mDir.path(), 7).Get() == 7; }));
    // It can be opened, but reading from its start fails.
    ASSERT_EQ(unlink(projectFile().c_str()), 0);
    ASSERT_EQ(symlink("/proc/self/mem", projectFile().c_str()), 0);
    EXPECT_EQ(ProjectID(mDir.path(), 7).Get(), 7U);
    EXPECT_THAT(errors(), ElementsAre(projectFile() + ": cannot be read: Input/output error"));
}

TEST_F(IdentityTest, ProjectFileThatCannotBeOpenedGivesTheDefault) {
    EXPECT_EQ(ProjectID(mDir.path() + "/none", 1).Get(), 1U);
    EXPECT_THAT(debugLines(), ElementsAre("Open " + mDir.path() + "/none/project_id.bin fail!"));
    ASSERT_EQ(mkfifo(projectFile().c_str(), 0600), 0);
    EXPECT_EQ(ProjectID(mDir.path(), 4).Get(), 4U);
}

TEST_F(IdentityTest, SetWritesExactlyOneLine) {
    mDir.write("project_id.bin", "PROJECT_ID=1\nmore of it than there will be\n");
    ProjectID id(mDir.path(), 1);
    EXPECT_TRUE(id.Set(3));
    EXPECT_EQ(id.Get(), 3U);
    EXPECT_EQ(projectText(), "PROJECT_ID=3\n");
    EXPECT_EQ(projectText().size(), 13U);
    EXPECT_TRUE(id.SetId(12, "factory", 99));
    EXPECT_EQ(id.Get(), 12U);
    EXPECT_EQ(projectText(), "PROJECT_ID=12\n");
    EXPECT_TRUE(id.Set(0xfffffffeU));
    EXPECT_EQ(projectText(), "PROJECT_ID=-2\n");
    EXPECT_EQ(ProjectID(mDir.path(), 1).Get(), 0xfffffffeU);
}

TEST_F(IdentityTest, SetOfTheCurrentIndexWritesNothing) {
    ProjectID id(mDir.path(), 1);
    ASSERT_TRUE(id.Set(3));
    mDir.write("project_id.bin", "as it was");
    EXPECT_TRUE(id.Set(3));
    EXPECT_TRUE(id.SetId(3, "factory", 99));
    EXPECT_EQ(projectText(), "as it was");
}

TEST_F(IdentityTest, FailedSetKeepsTheIndexInMemory) {
    ProjectID id(mDir.path(), 1);
    ASSERT_EQ(unlink(projectFile().c_str()), 0);
    ASSERT_EQ(mkdir(projectFile().c_str(), 0700), 0);
    EXPECT_FALSE(id.Set(3));
    EXPECT_EQ(id.Get(), 3U);
    EXPECT_FALSE(id.SetId(4, "factory", 99));
    EXPECT_EQ(id.Get(), 4U);
    EXPECT_THAT(debugLines(), ElementsAre("Open " + projectFile() + " fail!",
                                          "Open " + projectFile() + " fail!"));
    EXPECT_FALSE(id.Set(4)) << "the index is the current one, but not written yet";
    ASSERT_EQ(rmdir(projectFile().c_str()), 0);
    EXPECT_TRUE(id.Set(4));
    EXPECT_EQ(projectText(), "PROJECT_ID=4\n");
    mDir.write("project_id.bin", "as it was");
    EXPECT_TRUE(id.SetId(4, "factory", 99)) << "now it is written";
    EXPECT_EQ(projectText(), "as it was");
}

TEST_F(IdentityTest, FullDiskIsNoObstacle) {
    const SmallDisk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << disk.problem();
    }
    disk.dir().write("project_id.bin", "PROJECT_ID=9\n");
    ProjectID id(disk.dir().path(), 1);
    disk.fill();
    for (const unsigned int index : {12U, 3U, 4U}) {
        EXPECT_TRUE(id.Set(index));
        EXPECT_EQ(ProjectID(disk.dir().path(), 1).Get(), index);
    }
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(IdentityTest, FailedWriteIsMadeUpForByTheNextSet) {
    mDir.write("project_id.bin", "PROJECT_ID=1\n");
    ProjectID id(mDir.path(), 1);
    {
        const FileCalls calls(failing(FileCall::PWRITE, EIO));
        EXPECT_FALSE(id.Set(2));
    }
    EXPECT_THAT(errors(), ElementsAre(projectFile() + ": cannot be written: Input/output error"));
    EXPECT_EQ(projectText(), "PROJECT_ID=1\n");
    EXPECT_TRUE(id.Set(2));
    EXPECT_EQ(projectText(), "PROJECT_ID=2\n");
}

// The next start finds the old index or the new one.
TEST_F(IdentityTest, KillAtEachCallLeavesTheOldIndexOrTheNew) {
    struct Row {
        std::string before;
        unsigned int former;
        unsigned int index;
    };
    const Row rows[] = {{"PROJECT_ID=3\n", 3, 4},
                        {"PROJECT_ID=9\n", 9, 123},
                        {"PROJECT_ID=123\n", 123, 4},
                        {"# written by the factory\nPROJECT_ID = 5\n", 5, 4},
                        {"", 0, 4},
                        {"none", 0, 4}};
    for (const Row& row : rows) {
        size_t number = 0;
        for (bool killed = true; killed; ++number) {
            unlink(projectFile().c_str());
            if (row.before != "none") {
                mDir.write("project_id.bin", row.before);
            }
            killed = isKilledAt(number, [&] { ProjectID(mDir.path(), 1).Set(row.index); });
            const unsigned int found = ProjectID(mDir.path(), 1).Get();
            EXPECT_THAT(found, AnyOf(row.former, row.index)) << number;
            EXPECT_TRUE(killed || found == row.index);
        }
        EXPECT_GT(number, 2U);
    }
}

TEST_F(IdentityTest, TargetOfALinkIsWrittenAndTheLinkStays) {
    mDir.write("elsewhere", "PROJECT_ID=2 and much after it\n");
    ASSERT_EQ(symlink("elsewhere", projectFile().c_str()), 0);
    ProjectID id(mDir.path(), 1);
    EXPECT_TRUE(id.Set(3));
    EXPECT_EQ(mDir.read("elsewhere"), "PROJECT_ID=3\n");
    EXPECT_EQ(std::filesystem::read_symlink(projectFile()), "elsewhere");
}

TEST_F(IdentityTest, FullStorageIsAFailedSet) {
    // A file that opens but takes no byte.
    ASSERT_EQ(symlink("/proc/self/oom_score", projectFile().c_str()), 0);
    ProjectID id(mDir.path(), 1);
    EXPECT_FALSE(id.Set(3));
    EXPECT_EQ(id.Get(), 3U);
}

TEST_F(IdentityTest, TraceHookTakesEverything) {
    EXPECT_TRUE(ProjectID::WriteTestLog("text"));
    EXPECT_TRUE(ProjectID::WriteTestLog(nullptr));
    ProjectID id(mDir.path(), 1);
    EXPECT_TRUE(id.SetId(2, std::string(5000, 'p'), 1));
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(IdentityTest, BoardIdIsWhatFollowsTheEqualsSignUnchanged) {
    EXPECT_EQ(boardOf("BOARD_ID=/tvconfigs/board/b.ini\n"), "/tvconfigs/board/b.ini");
    EXPECT_EQ(boardOf("BOARD_ID=/tvconfigs/board/b.ini\r\n"), "/tvconfigs/board/b.ini\r");
    EXPECT_EQ(boardOf("BOARD_ID = \"a=b\" # c \n"), " \"a=b\" # c ");
    EXPECT_EQ(boardOf("BOARD_ID=DEFAULT_BOARD_ID"), "DEFAULT_BOARD_ID");
    EXPECT_EQ(boardOf("BOARD_ID=\n"), "");
    EXPECT_THAT(mLog.lines(), IsEmpty());
}

TEST_F(IdentityTest, FirstLineWithABoardIdCounts) {
    EXPECT_EQ(boardOf("# board\nx=y\n#MY_BOARD_ID=one\nBOARD_ID=two\n"), "one");
    EXPECT_EQ(boardOf("board_id=one\n"), "");
}

TEST_F(IdentityTest, BoardLineWithoutEqualsIsSkippedAndReported) {
    EXPECT_EQ(boardOf("# the BOARD_ID\nBOARD_ID=two\n"), "two");
    EXPECT_THAT(errors(), ElementsAre(boardFile() + ":1: no \"=\", line skipped"));
}

TEST_F(IdentityTest, BoardLinesAreBoundedAt255Bytes) {
    const std::string id(255 - 9, 'b');
    EXPECT_EQ(boardOf("BOARD_ID=" + id + "\n"), id);
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(boardOf(std::string(5000, 'x') + "\nBOARD_ID=" + id + "b\n"), id);
    EXPECT_THAT(errors(),
                ElementsAre(boardFile() + ":1: line longer than 255 bytes, its rest is skipped",
                            boardFile() + ":2: line longer than 255 bytes, its rest is skipped"));
}

TEST_F(IdentityTest, BoardFileHas64KiBAtMost) {
    const std::string line = "BOARD_ID=b.ini\n";
    const std::string fits = std::string(65536 - 1 - line.size(), '#') + "\n" + line;
    ASSERT_EQ(fits.size(), 65536U);
    EXPECT_EQ(boardOf(fits), "b.ini");
    // Its comment is one long line.
    const std::string cut = boardFile() + ":1: line longer than 255 bytes, its rest is skipped";
    EXPECT_THAT(errors(), ElementsAre(cut));
    EXPECT_EQ(boardOf('#' + fits), "");
    EXPECT_THAT(errors(),
                ElementsAre(cut, boardFile() + ": cannot be read: larger than 65536 bytes"));
}

TEST_F(IdentityTest, MissingBoardFileGivesTheEmptyId) {
    EXPECT_EQ(BoardID(mDir.path()).Get(), "");
    EXPECT_THAT(debugLines(), ElementsAre("Open " + boardFile() + " fail!"));
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_FALSE(access(boardFile().c_str(), F_OK) == 0) << "nobody but a tool writes it";
}

TEST_F(IdentityTest, BoardFileThatIsNoFileGivesTheEmptyId) {
    ASSERT_EQ(mkfifo(boardFile().c_str(), 0600), 0);
    EXPECT_EQ(BoardID(mDir.path()).Get(), "");
    EXPECT_THAT(debugLines(), ElementsAre("Open " + boardFile() + " fail!"));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
