#include "common/SaveFile.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "host/testing/FileCalls.h"
#include "host/testing/OtherUser.h"
#include "host/testing/SmallDisk.h"
#include "host/testing/TempDir.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::mlk::testing::asOtherUser;
using ::mlk::testing::failing;
using ::mlk::testing::FileCall;
using ::mlk::testing::FileCallFate;
using ::mlk::testing::FileCalls;
using ::mlk::testing::isKilledAt;
using ::mlk::testing::SmallDisk;
using ::mlk::testing::TempDir;
using ::testing::AnyOf;
using ::testing::ElementsAre;

class SaveFileTest : public ::testing::Test {
  protected:
    // The strictest umask: a created file would be accessible to the owner only.
    SaveFileTest() : mFormerMask(umask(077)) {}
    ~SaveFileTest() override { umask(mFormerMask); }

    std::string write(const std::string& content) const { return mDir.write("file", content); }
    std::string file() const { return mDir.read("file"); }
    static struct stat about(const std::string& path) {
        struct stat about {};
        EXPECT_EQ(lstat(path.c_str(), &about), 0) << path;
        return about;
    }
    static mode_t modeOf(const std::string& path) { return about(path).st_mode & ALLPERMS; }
    bool isNewLeft() const { return std::filesystem::exists(mDir.path("file.new")); }

    const TempDir mDir;
    const mode_t mFormerMask;
};

TEST_F(SaveFileTest, TextIsTheWholeContentAfterwards) {
    for (const std::string former : {"", "ab", "abcd", "abcdefgh"}) {
        for (const std::string text : {"", "x", "wxyz", "stuvwxyz"}) {
            EXPECT_EQ(saveFile(write(former), text), Saved::DONE);
            EXPECT_EQ(file(), text) << former;
        }
    }
}

TEST_F(SaveFileTest, MissingFileIsCreatedWithItsModeWhateverTheUmask) {
    for (const mode_t mask : {0U, 022U, 077U, 0777U}) {
        umask(mask);
        EXPECT_EQ(saveFile(mDir.path("file"), "text"), Saved::DONE);
        EXPECT_EQ(modeOf(mDir.path("file")), 0644U) << mask;
        EXPECT_EQ(file(), "text");
        EXPECT_FALSE(isNewLeft());
        std::filesystem::remove(mDir.path("file"));
    }
}

TEST_F(SaveFileTest, FileThatExistsIsNotCreated) {
    write("text");
    EXPECT_EQ(createFile(mDir.path("file"), "new"), Saved::NOT_OPENED);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(file(), "text");
    EXPECT_FALSE(isNewLeft());
}

TEST_F(SaveFileTest, RemainderOfAnEarlierAttemptIsNoObstacle) {
    mDir.write("file.new", "half of a text that was being writ");
    ASSERT_EQ(chmod(mDir.path("file.new").c_str(), 0), 0);
    EXPECT_EQ(saveFile(mDir.path("file"), "text"), Saved::DONE);
    EXPECT_EQ(file(), "text");
    EXPECT_EQ(modeOf(mDir.path("file")), 0644U);
    EXPECT_FALSE(isNewLeft());
}

// It may be a link that somebody else put there.
TEST_F(SaveFileTest, RemainderThatStaysIsNotWritten) {
    mDir.write("file.new", "somebody else's");
    const FileCalls calls(failing(FileCall::UNLINK, EPERM));
    EXPECT_EQ(saveFile(mDir.path("file"), "text"), Saved::NOT_OPENED);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(mDir.read("file.new"), "somebody else's");
}

TEST_F(SaveFileTest, WithoutAPlaceNothingIsCreated) {
    EXPECT_EQ(saveFile(mDir.path("none/file"), "text"), Saved::NOT_OPENED);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(saveFile(write("") + "/below", "text"), Saved::NOT_OPENED);
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_EQ(saveFile("", "text"), Saved::NOT_OPENED);
    std::filesystem::remove(mDir.path("file"));
    {
        const FileCalls calls(failing(FileCall::RENAME, EIO));
        EXPECT_EQ(saveFile(mDir.path("file"), "text"), Saved::NOT_OPENED);
        EXPECT_EQ(errno, EIO);
    }
    {
        const FileCalls calls(failing(FileCall::PWRITE, ENOSPC));
        EXPECT_EQ(saveFile(mDir.path("file"), "text"), Saved::NOT_WRITTEN);
        EXPECT_EQ(errno, ENOSPC);
    }
    EXPECT_TRUE(std::filesystem::is_empty(mDir.path()));
}

TEST_F(SaveFileTest, OnlyRegularFilesAreOpened) {
    const std::string fifo = mDir.path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& path : {fifo, mDir.path(), std::string("/dev/null")}) {
        EXPECT_EQ(saveFile(path, "text"), Saved::NOT_OPENED) << path;
    }
    EXPECT_TRUE(S_ISFIFO(about(fifo).st_mode));
}

TEST_F(SaveFileTest, FileKeepsWhatItIs) {
    const std::string path = write("a longer text");
    ASSERT_EQ(link(path.c_str(), mDir.path("other name").c_str()), 0);
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(path.c_str(), 1234, 5678), 0);
    }
    const struct stat former = about(path);
    for (const std::string text : {"text", "another text", "text"}) {
        ASSERT_EQ(saveFile(path, text), Saved::DONE);
        const struct stat now = about(path);
        EXPECT_EQ(now.st_mode, former.st_mode);
        EXPECT_EQ(now.st_uid, former.st_uid);
        EXPECT_EQ(now.st_gid, former.st_gid);
        EXPECT_EQ(now.st_ino, former.st_ino);
        EXPECT_EQ(mDir.read("other name"), text);
    }
}

TEST_F(SaveFileTest, LinkStaysAndItsTargetIsWritten) {
    mDir.write("target", "text");
    ASSERT_EQ(symlink("target", mDir.path("file").c_str()), 0);
    ASSERT_EQ(saveFile(mDir.path("file"), "other text"), Saved::DONE);
    EXPECT_EQ(mDir.read("target"), "other text");
    EXPECT_TRUE(S_ISLNK(about(mDir.path("file")).st_mode));
}

TEST_F(SaveFileTest, LinkToNothingStaysAndItsTargetIsCreated) {
    mDir.mkdir("folder");
    const std::string full = mDir.path("folder/target");
    for (const std::string& target : {std::string("folder/target"), full}) {
        ASSERT_EQ(symlink(target.c_str(), mDir.path("second").c_str()), 0);
        ASSERT_EQ(symlink("second", mDir.path("file").c_str()), 0);
        ASSERT_EQ(saveFile(mDir.path("file"), "text"), Saved::DONE);
        EXPECT_EQ(mDir.read("folder/target"), "text");
        EXPECT_EQ(modeOf(full), 0644U);
        for (const char* name : {"file", "second"}) {
            EXPECT_TRUE(S_ISLNK(about(mDir.path(name)).st_mode)) << name;
            std::filesystem::remove(mDir.path(name));
        }
        std::filesystem::remove(full);
    }
    ASSERT_EQ(symlink("file", mDir.path("file").c_str()), 0);
    EXPECT_EQ(saveFile(mDir.path("file"), "text"), Saved::NOT_OPENED);
    EXPECT_EQ(errno, ELOOP);
}

TEST_F(SaveFileTest, WriteProtectedFileIsNotReplaced) {
    const std::string path = write("text");
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(chmod(mDir.path().c_str(), 0777), 0);
    EXPECT_TRUE(asOtherUser(mDir.path(), [&] {
        return saveFile(path, "new") == Saved::NOT_OPENED && errno == EACCES;
    }));
    EXPECT_EQ(file(), "text");
    if (geteuid() == 0) {
        // The kernel lets root write, and so does the service.
        EXPECT_EQ(saveFile(path, "new"), Saved::DONE);
        EXPECT_EQ(file(), "new");
        EXPECT_EQ(modeOf(path), 0444U);
    }
}

TEST_F(SaveFileTest, FolderOfAFileMayBeWriteProtected) {
    const std::string path = write("text");
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    const auto save = [&] {
        return chmod(mDir.path().c_str(), 0555) == 0 || errno == EPERM
                       ? saveFile(path, "a new text") == Saved::DONE
                       : false;
    };
    EXPECT_TRUE(asOtherUser(mDir.path(), save));
    EXPECT_EQ(file(), "a new text");
    EXPECT_TRUE(asOtherUser(mDir.path(),
                            [&] {
                                return access(mDir.path().c_str(), W_OK) != 0 &&
                                       saveFile(mDir.path("missing"), "text") ==
                                               Saved::NOT_OPENED &&
                                       errno == EACCES;
                            }) ||
                geteuid() != 0);
    chmod(mDir.path().c_str(), 0755);
}

TEST_F(SaveFileTest, FolderOfAFileMayBeReadOnlyForRoot) {
    SmallDisk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << disk.problem();
    }
    const std::string path = disk.dir().write("file", "text");
    ASSERT_TRUE(disk.keepWritableOnly("file")) << disk.problem();
    EXPECT_EQ(saveFile(disk.dir().path("other"), "text"), Saved::NOT_OPENED);
    EXPECT_EQ(errno, EROFS);
    EXPECT_EQ(saveFile(path, "another text"), Saved::DONE);
    EXPECT_EQ(disk.dir().read("file"), "another text");
}

TEST_F(SaveFileTest, TextGoesOutInOneWriteThatIsSynced) {
    const std::string path = write("abcd");
    const FileCalls calls;
    ASSERT_EQ(saveFile(path, "wxyz"), Saved::DONE);
    EXPECT_THAT(calls.calls(), ElementsAre(FileCall::PWRITE, FileCall::FSYNC));
}

// Else the size could be on storage and the text not, or the text but not the size.
TEST_F(SaveFileTest, SizeAndTextReachStorageOneAfterTheOther) {
    const std::string path = write("abcd");
    {
        const FileCalls calls;
        ASSERT_EQ(saveFile(path, "xyz"), Saved::DONE);
        EXPECT_THAT(calls.calls(),
                    ElementsAre(FileCall::PWRITE, FileCall::FSYNC, FileCall::FTRUNCATE));
    }
    const FileCalls calls;
    ASSERT_EQ(saveFile(path, "stuvwxyz"), Saved::DONE);
    EXPECT_THAT(calls.calls(), ElementsAre(FileCall::FALLOCATE, FileCall::FSYNC, FileCall::PWRITE,
                                           FileCall::FSYNC));
}

TEST_F(SaveFileTest, NewFileIsOnStorageBeforeItHasItsName) {
    const FileCalls calls;
    ASSERT_EQ(saveFile(mDir.path("file"), "text"), Saved::DONE);
    EXPECT_THAT(calls.calls(), ElementsAre(FileCall::UNLINK, FileCall::FCHMOD, FileCall::PWRITE,
                                           FileCall::FSYNC, FileCall::RENAME, FileCall::FSYNC));
}

TEST_F(SaveFileTest, SpaceIsTakenBeforeTheTextIsWritten) {
    const std::string path = write("abcd");
    const FileCalls calls(failing(FileCall::FALLOCATE, ENOSPC));
    EXPECT_EQ(saveFile(path, "stuvwxyz"), Saved::NOT_WRITTEN);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(file(), "abcd");
    EXPECT_EQ(saveFile(path, "wxyz"), Saved::DONE) << "that needs none";
}

TEST_F(SaveFileTest, WithoutFallocateZerosTakeTheSpace) {
    for (const int error : {EOPNOTSUPP, ENOSYS, EINVAL}) {
        const std::string path = write("abcd");
        const FileCalls calls(failing(FileCall::FALLOCATE, error));
        EXPECT_EQ(saveFile(path, "stuvwxyz"), Saved::DONE);
        EXPECT_EQ(file(), "stuvwxyz");
        EXPECT_THAT(calls.calls(), ElementsAre(FileCall::FALLOCATE, FileCall::PWRITE,
                                               FileCall::FSYNC, FileCall::PWRITE, FileCall::FSYNC));
    }
}

TEST_F(SaveFileTest, WithoutSpaceForAllZerosTheFileIsAsItWas) {
    const std::string path = write("abcd");
    const FileCalls calls([](FileCall call, size_t number) {
        return call == FileCall::FALLOCATE ? FileCallFate{EOPNOTSUPP}
               : call != FileCall::PWRITE  ? FileCallFate{}
               : number == 1               ? FileCallFate{0, 3}
                                           : FileCallFate{ENOSPC};
    });
    EXPECT_EQ(saveFile(path, "stuvwxyz"), Saved::NOT_WRITTEN);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(file(), "abcd");
}

TEST_F(SaveFileTest, SyncThatIsNotOfferedIsNoFailure) {
    for (const int error : {EINVAL, ENOSYS, EOPNOTSUPP}) {
        const FileCalls calls(failing(FileCall::FSYNC, error));
        for (const std::string text : {"created", "longer text", "short"}) {
            EXPECT_EQ(saveFile(mDir.path("file"), text), Saved::DONE) << error;
            EXPECT_EQ(file(), text);
        }
        std::filesystem::remove(mDir.path("file"));
    }
}

TEST_F(SaveFileTest, SyncThatFailsIsAFailure) {
    const FileCalls calls(failing(FileCall::FSYNC, EIO));
    EXPECT_EQ(saveFile(mDir.path("file"), "text"), Saved::NOT_WRITTEN);
    EXPECT_TRUE(std::filesystem::is_empty(mDir.path()));
    write("text");
    EXPECT_EQ(saveFile(mDir.path("file"), "a longer text"), Saved::NOT_WRITTEN);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(file(), "text");
    EXPECT_EQ(saveFile(mDir.path("file"), "new"), Saved::NOT_WRITTEN);
    EXPECT_EQ(file(), std::string("new\0", 4)) << "the remainder goes when the text is stored";
}

TEST_F(SaveFileTest, FileSystemWithoutModesDoesNoHarm) {
    const FileCalls calls(failing(FileCall::FCHMOD, EPERM));
    EXPECT_EQ(saveFile(mDir.path("file"), "text"), Saved::DONE);
    EXPECT_EQ(file(), "text");
}

TEST_F(SaveFileTest, InterruptedCallsAreRepeated) {
    const FileCalls calls(
            [](FileCall, size_t number) { return FileCallFate{number % 2 == 0 ? EINTR : 0}; });
    for (const std::string text : {"longer text", "short"}) {
        const std::string path = write("a text");
        EXPECT_EQ(saveFile(path, text), Saved::DONE);
        EXPECT_EQ(file(), text);
    }
}

TEST_F(SaveFileTest, ShortWritesGoOn) {
    const FileCalls calls([](FileCall, size_t) { return FileCallFate{0, 3}; });
    for (const std::string text : {"created text", "a much longer text", "short text"}) {
        EXPECT_EQ(saveFile(mDir.path("file"), text), Saved::DONE);
        EXPECT_EQ(file(), text);
    }
}

TEST_F(SaveFileTest, FullDiskIsNoObstacleWithinTheBlocksOfTheFile) {
    const SmallDisk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << disk.problem();
    }
    const std::string path = disk.dir().write("file", "PROJECT_ID=9\n");
    disk.fill();
    for (const std::string text : {"PROJECT_ID=8\n", "PROJECT_ID=123\n", "PROJECT_ID=4\n"}) {
        EXPECT_EQ(saveFile(path, text), Saved::DONE) << text;
        EXPECT_EQ(disk.dir().read("file"), text);
    }
}

TEST_F(SaveFileTest, FullDiskLeavesTheFileAsItWas) {
    const SmallDisk disk;
    if (!disk.isMounted()) {
        GTEST_SKIP() << disk.problem();
    }
    const std::string former(4000, 'f');
    const std::string path = disk.dir().write("file", former);
    disk.fill();
    for (const bool hasFallocate : {true, false}) {
        const FileCalls calls(failing(FileCall::FALLOCATE, hasFallocate ? 0 : EOPNOTSUPP));
        EXPECT_EQ(saveFile(path, std::string(9000, 'n')), Saved::NOT_WRITTEN);
        EXPECT_EQ(errno, ENOSPC);
        EXPECT_EQ(disk.dir().read("file"), former);
    }
    EXPECT_NE(saveFile(disk.dir().path("missing"), "text"), Saved::DONE);
    EXPECT_FALSE(std::filesystem::exists(disk.dir().path("missing")));
    EXPECT_FALSE(std::filesystem::exists(disk.dir().path("missing.new")));
    disk.drain();
    EXPECT_EQ(saveFile(path, std::string(9000, 'n')), Saved::DONE);
    EXPECT_EQ(disk.dir().read("file"), std::string(9000, 'n'));
}

// As readers of these files see it: a NUL byte ends the text.
TEST_F(SaveFileTest, KillAtEachCallLeavesTheOldTextOrTheNew) {
    struct Row {
        std::string former;  // "none" for no file
        std::string text;
    };
    const Row rows[] = {
            {"abcd", "wxyz"}, {"abcdefgh", "xyz"}, {"abc", "stuvwxyz"}, {"none", "xyz"}};
    for (const Row& row : rows) {
        size_t number = 0;
        for (bool killed = true; killed; ++number) {
            const TempDir dir;
            const std::string path = dir.path("file");
            if (row.former != "none") {
                dir.write("file", row.former);
            }
            killed = isKilledAt(number, [&] { saveFile(path, row.text); });
            const std::string found =
                    std::filesystem::exists(path) ? dir.read("file").c_str() : "none";
            EXPECT_THAT(found, AnyOf(row.former, row.text)) << number;
            EXPECT_TRUE(killed || found == row.text);
            EXPECT_EQ(saveFile(path, "next"), Saved::DONE) << number;
            EXPECT_EQ(dir.read("file"), "next") << number;
        }
        EXPECT_GT(number, 2U) << "each change takes some calls";
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
