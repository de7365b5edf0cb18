// rev:REVISION: trees of a Git repository that the test makes, sound and hostile.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include "host/testing/Eventually.h"
#include "host/testing/Process.h"
#include "host/testing/QuietLog.h"
#include "host/testing/TempDir.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/ToldAnswers.h"

namespace mlk::tree {

namespace {

namespace fs = std::filesystem;

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::Process;
using testing::TempDir;

bool hasGit() {
    return Process({"sh", "-c", "command -v git > /dev/null"}).wait() == 0;
}

/** A repository with a sound tree in the folder "line", and $TMPDIR in a folder of its own. */
class DiffRevisionTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!hasGit()) {
            GTEST_SKIP() << "git is not installed";
        }
        const TempDir sound;
        copySoundTree(sound);
        fs::copy(sound.path(), line(), fs::copy_options::recursive);
        git({"init", "--quiet", "."});
        commit("first");
    }

    std::string line() const { return mDir.path("line"); }
    std::string temporary() const { return mTemporary.path(); }

    std::string git(std::vector<std::string> words) const {
        words.insert(words.begin(),
                     {"git", "-C", mDir.path(), "-c", "user.name=test", "-c",
                      "user.email=test@example.invalid", "-c", "commit.gpgsign=false", "-c",
                      "init.defaultBranch=main", "-c", "core.fsync=none"});
        Process run(words);
        EXPECT_EQ(run.wait(), 0) << run.err();
        return run.out();
    }
    void commit(const std::string& message) const {
        git({"add", "--all"});
        git({"commit", "--quiet", "--allow-empty", "-m", message});
    }

    /** Runs the program, since it is a process of its own that starts git. */
    Outcome diff(std::vector<std::string> words,
                 std::map<std::string, std::string> environment = {}) const {
        words.insert(words.begin(), {testing::binDir() + "/mlktree", "diff"});
        environment["TMPDIR"] = temporary();
        environment["MLK_ROOT"] = line();
        Process run(words, {environment});
        const int status = run.wait();
        EXPECT_TRUE(fs::is_empty(temporary())) << "the temporary folder stays";
        return {status, run.out(), run.err()};
    }

    void replace(const std::string& from, const std::string& to) const {
        std::string text = mDir.read(kModel);
        const size_t at = text.rfind(from);
        ASSERT_NE(at, std::string::npos);
        mDir.write(kModel, text.replace(at, from.size(), to));
    }

    static constexpr const char* kModel = "line/tvconfigs/model/first.ini";

    const TempDir mDir;
    const TempDir mTemporary;
};

TEST_F(DiffRevisionTest, ComparesRevisionsWithTheWorkingTree) {
    EXPECT_EQ(diff({"rev:HEAD", line()}).out, "no difference\n");
    replace("LC430-A", "LC999");
    const Outcome changed = diff({"rev:HEAD", line()});
    EXPECT_EQ(changed.status, 1) << changed.err;
    EXPECT_THAT(changed.out, HasSubstr("- LC430-A  tvconfigs/model/first.ini:12"));
    EXPECT_THAT(changed.out, HasSubstr("+ LC999    tvconfigs/model/first.ini:12"));
    commit("second");
    EXPECT_EQ(diff({"rev:HEAD", line()}).status, 0);
    EXPECT_EQ(diff({"rev:HEAD~1", "rev:HEAD"}).out, changed.out);
    EXPECT_EQ(diff({"rev:HEAD~1", "rev:HEAD~1"}).status, 0);
    EXPECT_THAT(diff({"model=1,tree=rev:HEAD~1", line()}).out, HasSubstr("1 difference\n"));
    EXPECT_EQ(diff({"model=2,tree=rev:HEAD~1", line()}).status, 0);
    git({"tag", "a-tag", "HEAD~1"});
    EXPECT_EQ(diff({"rev:a-tag", "rev:HEAD~1"}).status, 0);
    // A folder of the tree is the same repository.
    EXPECT_EQ(diff({"rev:a-tag", "rev:HEAD", "--tree", line() + "/../line"}).status, 1);
}

TEST_F(DiffRevisionTest, SaysWhatIsMissing) {
    const Outcome unknown = diff({"rev:nothing", line()});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err,
              "mlktree: rev:nothing: the repository of " + line() + " has no such revision\n");
    const TempDir outside;
    fs::copy(samplePath(), outside.path(), fs::copy_options::recursive);
    const Outcome noRepository = diff({"rev:HEAD", line(), "--tree", outside.path()});
    EXPECT_EQ(noRepository.status, 2);
    EXPECT_THAT(noRepository.err, HasSubstr(" lies in no repository that git reads"));
    const Outcome noGit = diff({"rev:HEAD", line()}, {{"PATH", temporary()}});
    EXPECT_EQ(noGit.status, 2);
    EXPECT_THAT(noGit.err, HasSubstr("rev: needs the program git, which cannot be run"));
    fs::rename(line(), mDir.path("other"));
    fs::create_directory(line());
    fs::create_directory(line() + "/tvconfigs");
    commit("moved");
    const Outcome empty = diff({"rev:HEAD", line()});
    EXPECT_EQ(empty.status, 2);
    EXPECT_THAT(empty.err, HasSubstr("rev:HEAD has no files in "));
    mDir.write("line/readme", "no tree\n");
    commit("no tree");
    const Outcome noTree = diff({"rev:HEAD", line()});
    EXPECT_EQ(noTree.status, 2);
    EXPECT_EQ(noTree.err, "mlktree: rev:HEAD of " + line() +
                                  ": there is no folder tvconfigs in it; --tree names the tree\n");
}

// No word of a revision is an option, a path or a command.
TEST_F(DiffRevisionTest, TakesHostileNamesForNames) {
    const TempDir aim;
    for (const std::string& name :
         {std::string("--help"), std::string("--output=") + aim.path("made"), std::string("-h"),
          std::string("$(touch ") + aim.path("made") + ")",
          std::string("HEAD; touch ") + aim.path("made"), std::string("HEAD:line"),
          std::string("HEAD\nHEAD"), std::string("../../etc/passwd"), std::string(100000, 'x'),
          std::string()}) {
        const Outcome outcome = diff({"rev:" + name, line()});
        EXPECT_EQ(outcome.status, 2) << name.substr(0, 50);
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
    EXPECT_TRUE(fs::is_empty(aim.path()));
}

// What a repository may name to be run when files are checked out.
TEST_F(DiffRevisionTest, RunsNothingThatTheRepositoryNames) {
    const TempDir aim;
    const std::string touch = "touch " + aim.path("made") + "; cat";
    mDir.write("line/.gitattributes", "*.ini filter=evil diff=evil\n");
    commit("filters");
    for (const char* const key :
         {"filter.evil.smudge", "filter.evil.process", "diff.evil.textconv", "diff.evil.command",
          "core.fsmonitor", "core.pager", "core.editor", "core.sshCommand", "alias.ls-tree",
          "alias.cat-file", "alias.rev-parse"}) {
        git({"config", key, "!" + touch});
    }
    git({"config", "filter.evil.required", "true"});
    const std::string hook = "#!/bin/sh\n" + touch + "\n";
    for (const char* const name : {"post-checkout", "post-index-change", "reference-transaction"}) {
        mDir.write(std::string(".git/hooks/") + name, hook);
        fs::permissions(mDir.path(std::string(".git/hooks/") + name), fs::perms::owner_all);
    }
    EXPECT_EQ(diff({"rev:HEAD", line()}).out, "no difference\n");
    EXPECT_TRUE(fs::is_empty(aim.path()));
}

TEST_F(DiffRevisionTest, FollowsNoLinkWhenItWrites) {
    const TempDir aim;
    // A link and a folder of the same name: nobody's git makes it, but a tree object may have it.
    fs::create_symlink("second.ini", line() + "/tvconfigs/model/link.ini");
    fs::create_directory_symlink(aim.path(), line() + "/evil");
    commit("links");
    EXPECT_EQ(diff({"rev:HEAD", line()}).out, "no difference\n");
    const std::string blob =
            git({"hash-object", "-w", "line/tvconfigs/customer.ini"}).substr(0, 40);
    std::string list = git({"ls-tree", "HEAD:line"});
    const std::string folder = mDir.write("evil/passwd", "x");
    git({"add", "evil"});
    const std::string tree = git({"write-tree", "--prefix=evil/"}).substr(0, 40);
    fs::remove_all(mDir.path("evil"));
    list += "040000 tree " + tree + "\tevil\n";
    Process make({"git", "-C", mDir.path(), "mktree"}, {{}, list});
    if (make.wait() == 0) {
        const std::string inner = make.out().substr(0, 40);
        Process outer({"git", "-C", mDir.path(), "mktree"},
                      {{}, "040000 tree " + inner + "\tline\n"});
        ASSERT_EQ(outer.wait(), 0) << outer.err();
        const std::string commit =
                git({"commit-tree", "-m", "evil", outer.out().substr(0, 40)}).substr(0, 40);
        const Outcome outcome = diff({"rev:" + commit, line()});
        EXPECT_EQ(outcome.status, 2) << outcome.out;
    }
    EXPECT_TRUE(fs::is_empty(aim.path()));
}

// A git that ends its parent, while the parent reads files, with the signal that the test names.
TEST_F(DiffRevisionTest, LeavesNoFolderWhenASignalEndsIt) {
    const TempDir programs;
    programs.write("git",
                   "#!/bin/sh\n"
                   "case \"$*\" in\n"
                   "*cat-file*) ls -d \"$TMPDIR\"/*/tree >&3; kill -\"$SIGNAL\" $PPID; exit 1 ;;\n"
                   "esac\n"
                   "PATH=$REAL_PATH exec git \"$@\"\n");
    fs::permissions(programs.path("git"), fs::perms::owner_all);
    const std::string path = std::getenv("PATH");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGKILL}) {
        const std::string seen = programs.path("seen");
        Process run({"sh", "-c", "exec \"$@\" 3> \"$0\"", seen, testing::binDir() + "/mlktree",
                     "diff", "rev:HEAD", line()},
                    {{{"PATH", programs.path() + ":" + path},
                      {"REAL_PATH", path},
                      {"SIGNAL", std::to_string(signal)},
                      {"TMPDIR", temporary()},
                      {"MLK_ROOT", line()}}});
        EXPECT_EQ(run.wait(), 128 + signal) << run.err();
        EXPECT_THAT(programs.read("seen"), HasSubstr(temporary() + "/mlktree-"));
        EXPECT_TRUE(testing::eventually([this] { return fs::is_empty(temporary()); })) << signal;
    }
}

TEST_F(DiffRevisionTest, LeavesTheRepositoryAsItIs) {
    const auto list = [this] {
        std::map<std::string, fs::file_time_type> all;
        for (const auto& entry : fs::recursive_directory_iterator(mDir.path())) {
            all[entry.path().string()] = entry.last_write_time();
        }
        return all;
    };
    replace("LC430-A", "LC999");
    const auto before = list();
    EXPECT_EQ(diff({"rev:HEAD", "rev:HEAD"}).status, 0);
    EXPECT_EQ(list(), before);
}

}  // namespace

}  // namespace mlk::tree
