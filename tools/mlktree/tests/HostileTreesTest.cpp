// Trees with what no product line should have: the check ends, and says what it found.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "host/testing/TempDir.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/tests/Harness.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

class HostileTrees : public ::testing::Test {
  protected:
    HostileTrees() { copySoundTree(mDir); }

    // The finding of that rule, as "file:line: message"; empty if there is none.
    std::string found(const std::string& rule) const {
        const Tree tree(mDir.path(), {});
        const TreeProperties properties(mDir.path("data/property"), {});
        const Settings settings;
        const ProductLine line(tree, settings, properties, {});
        for (const Finding& finding : examine(line, true).findings) {
            if (finding.rule == rule) {
                return finding.place.file + ":" + std::to_string(finding.place.line) + ": " +
                       finding.message;
            }
        }
        return "";
    }

    const mlk::testing::TempDir mDir;
};

TEST_F(HostileTrees, PipeInPlaceOfAFile) {
    const std::string pipe = mDir.path("tvconfigs/karaoke/karaoke.ini");
    fs::remove(pipe);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(found("unusable-file"),
              "tvconfigs/model/first.ini:34: /tvconfigs/karaoke/karaoke.ini is no regular file");
}

TEST_F(HostileTrees, PipeInPlaceOfTheIdentity) {
    const std::string pipe = mDir.path("impdata/project_id.bin");
    fs::remove(pipe);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(found("unusable-file"),
              "impdata/project_id.bin:0: /impdata/project_id.bin is no regular file");
}

TEST_F(HostileTrees, FileOfOneGibibyte) {
    fs::resize_file(mDir.path("tvconfigs/audio/panel.ini"), uintmax_t{1} << 30);
    EXPECT_EQ(found("unusable-file"),
              "tvconfigs/model/first.ini:29: /tvconfigs/audio/panel.ini cannot be read: larger "
              "than 16777216 bytes");
}

TEST_F(HostileTrees, LinksInACircle) {
    fs::create_directory_symlink("..", mDir.path("tvconfigs/audio/loop"));
    fs::create_symlink("first.ini", mDir.path("tvconfigs/model/second"));
    EXPECT_EQ(found("unused-file"), "");
    EXPECT_EQ(found("unsearched-folder"), "");
}

TEST_F(HostileTrees, VeryManyFiles) {
    const std::string folder = mDir.mkdir("tvconfigs/many");
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    constexpr int kFiles = 100'001;
    for (int i = 0; i < kFiles; ++i) {
        const std::string name = std::to_string(i);
        ASSERT_EQ(mknodat(descriptor, name.c_str(), S_IFREG | 0600, 0), 0);
    }
    close(descriptor);
    EXPECT_EQ(found("unsearched-folder"),
              "tvconfigs:0: not searched for unused files: it has more than 100000 files and "
              "folders");
    EXPECT_EQ(found("unused-file"), "");
}

TEST_F(HostileTrees, FolderWithoutPermission) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root may read every folder";
    }
    const std::string folder = mDir.mkdir("tvconfigs/closed");
    fs::permissions(folder, fs::perms::none);
    EXPECT_EQ(found("unsearched-folder"),
              "tvconfigs/closed:0: not searched for unused files: the folder cannot be read");
    fs::permissions(folder, fs::perms::owner_all);
}

}  // namespace

}  // namespace mlk::tree
