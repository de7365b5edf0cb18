// What mlkctl show takes from mlktree.

#include "tools/mlkctl/TreeView.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

#include "host/testing/EnvironmentVariable.h"
#include "host/testing/TempDir.h"

namespace mlk::ctl {

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kAnswer =
        "{\"project\":{},\"replaced\":[{\"group\":\"Sound\",\"key\":\"address\",\"line\":0,"
        "\"layer\":\"board\"},{\"group\":\"HDMI\",\"key\":\"edid\",\"line\":2,\"layer\":"
        "\"country\"}],\"findings\":{\"errors\":2,\"warnings\":1}}";

class TreeViewTest : public ::testing::Test {
  protected:
    TreeViewTest() {
        for (const char* const name : {"tvconfigs", "tvdata", "impdata"}) {
            mMounts.push_back({"/" + std::string(name), mDir.mkdir("set/" + std::string(name))});
        }
    }

    // Puts a program mlktree in front of all others.
    std::string install(const std::string& script) const {
        const std::string path = mDir.write("bin/mlktree", "#!/bin/sh\n" + script + "\n");
        EXPECT_EQ(chmod(path.c_str(), 0755), 0);
        return path;
    }

    std::optional<TreeView> ask(double seconds = 60) {
        return askMlktree(Mounts(mMounts), std::chrono::duration<double>(seconds), mErrors);
    }

    const mlk::testing::TempDir mDir;
    const mlk::testing::EnvironmentVariable mPath{"PATH",
                                                  mDir.mkdir("bin") + ":" + std::getenv("PATH")};
    std::vector<Mounts::Mount> mMounts;
    std::ostringstream mErrors;
};

TEST_F(TreeViewTest, AsksAboutTheTree) {
    const std::string program =
            install("echo \"$@\" > " + mDir.path("words") + "\ncat <<'END'\n" + kAnswer + "\nEND");
    EXPECT_EQ(findMlktree(), program);
    const std::optional<TreeView> view = ask();
    ASSERT_TRUE(view) << mErrors.str();
    EXPECT_EQ(mErrors.str(), "");
    EXPECT_EQ(mDir.read("words"), "show --format json --tree " + mDir.path("set") + "\n");
    EXPECT_EQ(findingsLine(*view), "2 errors, 1 warning: `mlktree check`");

    std::vector<Fact> facts = {{{"Sound", "Address", "address"}, std::string("0x35")},
                               {{"HDMI", "EDID", "edid"}, Files{{"1.4", "/a"}}, {"", "board"}},
                               {{"HDMI", "HDCP", "hdcp"}, std::string("/b")}};
    addNotes(*view, facts);
    EXPECT_THAT(facts[0].notes, ::testing::ElementsAre("board"));
    EXPECT_THAT(facts[1].notes, ::testing::ElementsAre("", "board", "country"));
    EXPECT_THAT(facts[2].notes, ::testing::IsEmpty());
}

TEST_F(TreeViewTest, NamesPartitionsThatLieApart) {
    install("echo \"$@\" > " + mDir.path("words") + "\necho '" + kAnswer + "'");
    mMounts[1].mountPoint = mDir.mkdir("elsewhere/tvdata");
    ASSERT_TRUE(ask());
    EXPECT_EQ(mDir.read("words"), "show --format json --tvconfigs " + mDir.path("set/tvconfigs") +
                                          " --tvdata " + mDir.path("elsewhere/tvdata") +
                                          " --impdata " + mDir.path("set/impdata") + "\n");
}

TEST_F(TreeViewTest, AsksNobodyWithoutMlktreeOrPartitions) {
    mPath.set(":bin::" + mDir.path("bin"));
    EXPECT_FALSE(ask());
    install("echo '" + std::string(kAnswer) + "'");
    EXPECT_TRUE(ask());
    mPath.set("bin");
    EXPECT_FALSE(ask());
    mPath.set(mDir.path("bin"));
    mMounts[0].mountPoint = mDir.path("nothing");
    EXPECT_FALSE(ask());
    mMounts.clear();
    EXPECT_FALSE(ask());
    EXPECT_EQ(mErrors.str(), "");
}

TEST_F(TreeViewTest, SaysWhyThereIsNoAnswer) {
    const std::string program = install("exec sleep 1000");
    EXPECT_FALSE(ask(0.1));
    EXPECT_EQ(mErrors.str(), "mlkctl: " + program +
                                     " takes longer than --timeout; what it finds "
                                     "in this set is not shown\n");
    for (const std::string text :
         {"", "nonsense", "{}", "[]", "{\"findings\":{\"errors\":\"x\",\"warnings\":1}}",
          "{\"findings\":{\"errors\":1,\"warnings\":1},\"replaced\":[{}]}"}) {
        mErrors.str("");
        install("echo '" + text + "'");
        EXPECT_FALSE(ask()) << text;
        EXPECT_THAT(mErrors.str(), HasSubstr("answers no set; is it of another version?\n"));
    }
    // It says itself what is wrong with the tree.
    mErrors.str("");
    install("echo '" + std::string(kAnswer) + "'; exit 2");
    EXPECT_FALSE(ask());
    EXPECT_EQ(mErrors.str(), "");
    mDir.write("bin/mlktree", "#!/nowhere\n");
    EXPECT_FALSE(ask());
    EXPECT_THAT(mErrors.str(), StartsWith("mlkctl: " + program + " cannot be run: "));
}

TEST(FindingsLineTest, CountsWhatMatters) {
    EXPECT_EQ(findingsLine({}), "");
    EXPECT_EQ(findingsLine({{}, 1, 0}), "1 error: `mlktree check`");
    EXPECT_EQ(findingsLine({{}, 0, 2}), "2 warnings: `mlktree check`");
}

TEST(AddNotesTest, IgnoresLinesThatNoFactHas) {
    std::vector<Fact> facts = {{{"Sound", "Address", "address"}, std::string("0x35")}};
    addNotes({{{"Sound", "address", SIZE_MAX, "board"}}, 0, 0}, facts);
    EXPECT_THAT(facts[0].notes, ::testing::IsEmpty());
}

}  // namespace

}  // namespace mlk::ctl
