// Which sets a file belongs to, and what a line of televisions reads without being told.
#include "tools/mlktree/ProductLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/testing/TempDir.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/tests/Harness.h"
#include "tools/mlktree/tests/RuleEdges.h"

namespace mlk::tree {

namespace {

using Sets = std::vector<std::string>;

struct SoundTree : mlk::testing::TempDir {
    SoundTree() { copySoundTree(*this); }
};

class ProductLineTest : public ::testing::Test {
  protected:
    // The line as the files are now.
    ProductLine line() const { return ProductLine(mTree, mSettings, mProperties, {}); }

    const SoundTree mDir;
    const Tree mTree{mDir.path(), {}};
    const Settings mSettings = {};
    const TreeProperties mProperties{mDir.path("data/property"), {}};
};

TEST_F(ProductLineTest, AModelsFileBelongsToItsSets) {
    EXPECT_EQ(line().setsOf("tvconfigs/model/first.ini"), Sets{"model=1"});
    EXPECT_EQ(line().setsOf("tvconfigs/system/line.ini"), Sets{"all"});
    EXPECT_EQ(line().setsOf("tvconfigs/eq/nobody.bin"), Sets{});
}

TEST_F(ProductLineTest, AModelThatAnotherLineReplacesHasNoSets) {
    mDir.write("tvconfigs/model/third.ini", mDir.read("tvconfigs/model/first.ini"));
    appended("tvconfigs/system/line.ini", "Model_1 = /tvconfigs/model/third.ini\n")(mDir);
    EXPECT_EQ(line().setsOf("tvconfigs/model/first.ini"), Sets{});
    EXPECT_EQ(line().setsOf("tvconfigs/model/third.ini"), Sets{"model=1"});
}

TEST_F(ProductLineTest, ModelsThatNameNoPlansUseTheDefaultFolder) {
    mDir.write("tvconfigs/model/first.ini", "[PANEL]\nm_nWidth = 3840\n");
    mDir.write("tvconfigs/model/second.ini", "[PANEL]\nm_nWidth = 3840\n");
    const ProductLine read = line();
    ASSERT_EQ(read.planFolders().size(), 1U);
    EXPECT_EQ(read.planFolders().front().folder->path(), "tvconfigs/freqtables");
    EXPECT_NE(read.find("tvconfigs/freqtables/atv/freqtable_bg"), nullptr);
}

TEST_F(ProductLineTest, ARuleHasABoundedNumberOfFindings) {
    const ProductLine read = line();
    Reporter reporter(read, *findRule("tab"));
    constexpr size_t kFiles = Reporter::kMostOfRule / Reporter::kMostOfFile;
    for (size_t i = 0; i <= kFiles * Reporter::kMostOfFile; ++i) {
        const std::string file = "f" + std::to_string(i % (2 * kFiles));
        reporter.reportIn({}, {file, i, 1}, "a tab", {});
    }
    const std::vector<Finding> findings = reporter.take();
    ASSERT_EQ(findings.size(), Reporter::kMostOfRule);
    EXPECT_EQ(findings[Reporter::kMostOfRule - 2].message, "a tab");
    EXPECT_EQ(findings.back().message, "a tab; there may be more such findings");
}

TEST(TreeTest, APartitionApartHasOnlyWhatLiesInIt) {
    const mlk::testing::TempDir dir;
    dir.write("tree/tvconfigs/customer.ini", "");
    dir.write("apart/data/file", "");
    Tree::Apart apart;
    apart.tvdata = dir.path("apart/data");
    const Tree tree(dir.path("tree"), apart);
    EXPECT_EQ(tree.relative(dir.path("apart/data/file")), "tvdata/file");
    EXPECT_EQ(tree.relative(dir.path("apart/data2/file")), dir.path("apart/data2/file"));
    EXPECT_EQ(tree.host("tvdata/file"), dir.path("apart/data/file"));
    EXPECT_EQ(tree.host("tvdata2/file"), dir.path("tree/tvdata2/file"));
}

}  // namespace

}  // namespace mlk::tree
