#include "common/ConfigKey.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

bool equal(const ConfigKey& a, const ConfigKey& b) {
    return !(a < b) && !(b < a);
}

TEST(ConfigKeyTest, TextsAreOrderedByLengthThenByUnsignedBytes) {
    const std::vector<std::string> inOrder = {"",     "A",  "Z",  "a",  "\x7f", "\x80",
                                              "\xff", "AA", "AB", "BA", "AAA"};
    for (size_t i = 0; i < inOrder.size(); ++i) {
        for (size_t j = 0; j < inOrder.size(); ++j) {
            EXPECT_EQ(ConfigKey::CompareStr(inOrder[i], inOrder[j]), i < j)
                    << inOrder[i] << " before " << inOrder[j];
        }
    }
}

TEST(ConfigKeyTest, ShorterSectionNameComesFirst) {
    EXPECT_TRUE(ConfigKey("[KEY]", "Z") < ConfigKey("[AUDIO]", "A"));
    EXPECT_FALSE(ConfigKey("[AUDIO]", "A") < ConfigKey("[KEY]", "Z"));
}

TEST(ConfigKeyTest, KeyDecidesOnlyWithinOneCategory) {
    EXPECT_TRUE(ConfigKey("[A]", "B") < ConfigKey("[A]", "AA"));
    EXPECT_TRUE(ConfigKey("[A]", "ZZZ") < ConfigKey("[B]", "A"));
    EXPECT_FALSE(ConfigKey("[B]", "A") < ConfigKey("[A]", "ZZZ"));
}

TEST(ConfigKeyTest, EqualityIsByteForByte) {
    EXPECT_TRUE(equal(ConfigKey("[A]", "k"), ConfigKey("[A]", "k")));
    EXPECT_FALSE(equal(ConfigKey("[A]", "k"), ConfigKey("[A]", "K")));
    EXPECT_FALSE(equal(ConfigKey("[LiveTV]", "k"), ConfigKey("LiveTV", "k")));
    // The same bytes, divided differently between category and key.
    EXPECT_FALSE(equal(ConfigKey("ab", "c"), ConfigKey("a", "bc")));
}

TEST(ConfigKeyTest, OrdersAMap) {
    std::map<ConfigKey, std::string> items;
    for (const char* key : {"B", "AA", "A"}) {
        items[ConfigKey("[S]", key)] = key;
    }
    std::string walk;
    for (const auto& [key, value] : items) {
        walk.append(key.category).append(key.key).append("=").append(value).append(";");
    }
    EXPECT_EQ(walk, "[S]A=A;[S]B=B;[S]AA=AA;");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
