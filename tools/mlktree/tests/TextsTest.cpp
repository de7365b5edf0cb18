#include "tools/mlktree/Texts.h"

#include <gtest/gtest.h>

namespace mlk::tree {

namespace {

TEST(TextsTest, ACountHasItsDigitsInGroups) {
    EXPECT_EQ(counted(0, "line"), "0 lines");
    EXPECT_EQ(counted(1, "line"), "1 line");
    EXPECT_EQ(counted(999, "line"), "999 lines");
    EXPECT_EQ(counted(1'240, "line"), "1,240 lines");
    EXPECT_EQ(counted(12'345'678, "line"), "12,345,678 lines");
    EXPECT_EQ(counted(1, "row is", "rows are"), "1 row is");
    EXPECT_EQ(counted(2, "row is", "rows are"), "2 rows are");
    EXPECT_EQ(counted(1'000, "row is", "rows are"), "1,000 rows are");
}

}  // namespace

}  // namespace mlk::tree
