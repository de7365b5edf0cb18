#include "tools/mlktree/report/TextTable.h"

#include <gtest/gtest.h>

namespace mlk::tree {

namespace {

TEST(TextTableTest, NumbersEachTextOnce) {
    TextTable texts;
    EXPECT_EQ(texts.idOf("panel"), 1U);
    EXPECT_EQ(texts.idOf("board"), 2U);
    EXPECT_EQ(texts.idOf("panel"), 1U);
    EXPECT_EQ(texts.idOf(""), 0U);
    EXPECT_EQ(texts.json(), R"(["","panel","board"])");
}

TEST(TextTableTest, AListMayBeEmpty) {
    NumberList numbers;
    EXPECT_TRUE(numbers.isEmpty());
    EXPECT_EQ(numbers.json(), "[]");
    numbers.add(7).addSigned(-1);
    EXPECT_FALSE(numbers.isEmpty());
    EXPECT_EQ(numbers.json(), "[7,-1]");
}

}  // namespace

}  // namespace mlk::tree
