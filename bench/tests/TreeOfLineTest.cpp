#include "bench/TreeOfLine.h"

#include <gtest/gtest.h>

#include "tools/mlktree/Checker.h"

namespace mlk::bench {

namespace {

// A mistake in the line would make the check do other work than on a line that people keep.
TEST(TreeOfLineTest, IsSoundAndHasItsSize) {
    const testing::TempDir dir;
    writeTree(dir, {20, 3, 12});
    const tree::Tree tree(dir.path(), {});
    const tree::Settings settings;
    const tree::TreeProperties properties(dir.path("data/property"), {});
    const tree::ProductLine line(tree, settings, properties, {});
    EXPECT_EQ(line.models().size(), 20U);
    EXPECT_EQ(line.boards().size(), 3U);
    EXPECT_GE(line.countries().size(), 12U);
    for (const tree::Finding& finding : tree::check(line)) {
        const bool isOfSample = finding.rule == "key-twice";  // the model has two on purpose
        EXPECT_TRUE(isOfSample || finding.severity < tree::Severity::WARNING)
                << finding.place.file << ':' << finding.place.line << ": " << finding.message;
    }
}

}  // namespace

}  // namespace mlk::bench
