#include "tools/mlktree/Nearest.h"

#include <gtest/gtest.h>

namespace mlk::tree {

namespace {

const std::vector<std::string_view> kCountries = {"AUSTRIA", "AUSTRALIA", "GERMANY",    "HONGKONG",
                                                  "NIGER",   "NIGERIA",   "SOUTH_KOREA"};

TEST(Nearest, CountsTypingMistakes) {
    EXPECT_EQ(distanceOf("", ""), 0U);
    EXPECT_EQ(distanceOf("GERMANY", ""), 7U);
    EXPECT_EQ(distanceOf("", "GERMANY"), 7U);
    EXPECT_EQ(distanceOf("GERMANY", "germany"), 0U);
    EXPECT_EQ(distanceOf("GERMNY", "GERMANY"), 1U);
    EXPECT_EQ(distanceOf("GERRMANY", "GERMANY"), 1U);
    EXPECT_EQ(distanceOf("GERNANY", "GERMANY"), 1U);
    EXPECT_EQ(distanceOf("GEMRANY", "GERMANY"), 1U);
    EXPECT_EQ(distanceOf("South Korea", "SOUTH_KOREA"), 0U);
}

TEST(Nearest, FindsWhatWasMeant) {
    EXPECT_EQ(nearest("germany", kCountries), "GERMANY");
    EXPECT_EQ(nearest("GERMNAY", kCountries), "GERMANY");
    EXPECT_EQ(nearest("AUSTRAILA", kCountries), "AUSTRALIA");
    EXPECT_EQ(nearest("Hong Kong", kCountries), "HONGKONG");
    EXPECT_EQ(nearest("NIGERI", kCountries), "NIGER");
    EXPECT_EQ(nearest("SOUTH-KOREA", kCountries), "SOUTH_KOREA");
}

TEST(Nearest, PrefersTheRightCase) {
    EXPECT_EQ(nearest("Mode", {"MODE", "mode", "Modes"}), "mode");
    EXPECT_EQ(nearest("Mode", {"mODE", "Mode"}), "Mode");
}

TEST(Nearest, FindsNothingFarAway) {
    EXPECT_EQ(nearest("FRANCE", kCountries), "");
    EXPECT_EQ(nearest("X", {"Y"}), "");
    EXPECT_EQ(nearest("AB", {"CD", "A"}), "A");
    EXPECT_EQ(nearest("", kCountries), "");
    EXPECT_EQ(nearest("GERMANY", {}), "");
    EXPECT_EQ(nearest("GERMANY", {""}), "");
}

TEST(Nearest, EndsAMessage) {
    EXPECT_EQ(meant("GERMANY"), " (is \"GERMANY\" meant?)");
    EXPECT_EQ(meant(""), "");
}

}  // namespace

}  // namespace mlk::tree
