#include "tools/mlktree/Patterns.h"

#include <gtest/gtest.h>

namespace mlk::tree {

namespace {

TEST(WildcardsTest, StandForCharacters) {
    EXPECT_TRUE(fitsWildcards("", ""));
    EXPECT_FALSE(fitsWildcards("", "a"));
    EXPECT_TRUE(fitsWildcards("[PANEL]", "[PANEL]"));
    EXPECT_FALSE(fitsWildcards("[PANEL]", "P"));
    EXPECT_TRUE(fitsWildcards("[OEM_*]", "[OEM_]"));
    EXPECT_TRUE(fitsWildcards("[OEM_*]", "[OEM_A/B]"));
    EXPECT_FALSE(fitsWildcards("[OEM_*]", "[OEM_A"));
    EXPECT_TRUE(fitsWildcards("a?c", "abc"));
    EXPECT_FALSE(fitsWildcards("a?c", "ac"));
    EXPECT_TRUE(fitsWildcards("*a*b", "xxaxxaxb"));
    EXPECT_TRUE(fitsWildcards("**", ""));
}

TEST(WildcardsTest, TakeBoundedTime) {
    std::string pattern;
    for (int i = 0; i < 100; ++i) {
        pattern += "a*";
    }
    EXPECT_FALSE(fitsWildcards(pattern + "b", std::string(100000, 'a')));
}

TEST(PathPatternTest, StandsForPaths) {
    EXPECT_TRUE(fitsPath("tvconfigs/model/*.ini", "tvconfigs/model/a.ini"));
    EXPECT_FALSE(fitsPath("tvconfigs/model/*.ini", "tvconfigs/model/old/a.ini"));
    EXPECT_FALSE(fitsPath("tvconfigs/*", "tvconfigs/model/a.ini"));
    EXPECT_TRUE(fitsPath("**", "tvconfigs/model/a.ini"));
    EXPECT_TRUE(fitsPath("**", "mlktree.toml"));
    EXPECT_TRUE(fitsPath("tvconfigs/**", "tvconfigs/model/a.ini"));
    EXPECT_TRUE(fitsPath("**/a.ini", "tvconfigs/model/a.ini"));
    EXPECT_TRUE(fitsPath("**/a.ini", "a.ini"));
    EXPECT_TRUE(fitsPath("tvconfigs/**/a.ini", "tvconfigs/a.ini"));
    EXPECT_TRUE(fitsPath("tvconfigs/**/b?/*.ini", "tvconfigs/x/y/b1/a.ini"));
    EXPECT_FALSE(fitsPath("tvconfigs/**/b?/*.ini", "tvdata/x/y/b1/a.ini"));
    EXPECT_TRUE(fitsPath("*.ini", "tvconfigs/model/a.ini"));
    EXPECT_FALSE(fitsPath("*.ini", "tvconfigs/model/a.txt"));
    EXPECT_TRUE(fitsPath("a.ini", "tvconfigs/model/a.ini"));
    EXPECT_FALSE(fitsPath("tvconfigs*", "tvconfigs/model/a.ini"));
}

TEST(ValuePatternTest, IsARegularExpression) {
    EXPECT_TRUE(std::regex_match("AB12", valuePattern("[A-Z]+[0-9]{2}")));
    EXPECT_FALSE(std::regex_match("AB1", valuePattern("[A-Z]+[0-9]{2}")));
    EXPECT_THROW((void)valuePattern("[A-"), std::regex_error);
    EXPECT_THROW((void)valuePattern("a{1000000000}"), std::regex_error);
}

TEST(ValuePatternTest, TakesBoundedTime) {
    EXPECT_FALSE(std::regex_match(std::string(1023, 'a'), valuePattern("(a+)+b")));
}

}  // namespace

}  // namespace mlk::tree
