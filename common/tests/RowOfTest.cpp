#include "common/RowOf.h"

#include <gtest/gtest.h>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

struct Row {
    const char* method;
    int value;
};

constexpr Row kRows[] = {{"getOne", 1}, {"getOneMore", 2}, {"getTwo", 3}, {"getTwo", 4}};

TEST(RowOf, IsTheFirstRowOfThatName) {
    static_assert(rowOf(kRows, "getOne") == 0);
    static_assert(rowOf(kRows, "getOneMore") == 1);
    static_assert(rowOf(kRows, "getTwo") == 2);
    EXPECT_EQ(kRows[rowOf(kRows, "getOneMore")].value, 2);
}

TEST(RowOfDeathTest, EndsTheProcessForAMethodWithoutARow) {
    EXPECT_DEATH(rowOf(kRows, "getTw"), "");
    EXPECT_DEATH(rowOf(kRows, ""), "");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
