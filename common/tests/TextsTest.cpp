#include "common/Texts.h"

#include <gtest/gtest.h>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

TEST(TextsTest, BeginsWith) {
    EXPECT_TRUE(beginsWith("/tvdata/x", "/tvdata"));
    EXPECT_TRUE(beginsWith("/tvdata", "/tvdata"));
    EXPECT_TRUE(beginsWith("x", ""));
    EXPECT_TRUE(beginsWith("", ""));
    EXPECT_FALSE(beginsWith("/tvdat", "/tvdata"));
    EXPECT_FALSE(beginsWith("", "/"));
    EXPECT_FALSE(beginsWith("x/tvdata", "/tvdata"));
}

TEST(TextsTest, OrEmpty) {
    EXPECT_STREQ(orEmpty(nullptr), "");
    const char text[] = "text";
    EXPECT_EQ(orEmpty(text), text);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
