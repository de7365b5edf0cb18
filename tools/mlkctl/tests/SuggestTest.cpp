#include "tools/mlkctl/Suggest.h"

#include <gmock/gmock.h>

namespace mlk::ctl {

namespace {

TEST(EditDistanceTest, CountsSteps) {
    EXPECT_EQ(editDistance("", ""), 0U);
    EXPECT_EQ(editDistance("abc", ""), 3U);
    EXPECT_EQ(editDistance("", "abc"), 3U);
    EXPECT_EQ(editDistance("getPanelName", "getPanelName"), 0U);
    EXPECT_EQ(editDistance("getWowEnabled", "getWOWEnabled"), 0U);
    EXPECT_EQ(editDistance("getPanelNam", "getPanelName"), 1U);
    EXPECT_EQ(editDistance("getPannelName", "getPanelName"), 1U);
    EXPECT_EQ(editDistance("getPamelName", "getPanelName"), 1U);
    EXPECT_EQ(editDistance("gtePanelName", "getPanelName"), 1U);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
}

TEST(SuggestionTest, FindsTheNearest) {
    const std::vector<std::string_view> methods = {"getPQPath", "getEQPath", "getAQPath",
                                                   "setFlag"};
    EXPECT_EQ(suggestion("getEQpath", methods), "getEQPath");
    EXPECT_EQ(suggestion("getQPath", methods), "getPQPath");  // the first of equals
    EXPECT_EQ(suggestion("setflg", methods), "setFlag");
    EXPECT_EQ(suggestion("reboot", methods), "");
    EXPECT_EQ(suggestion("", methods), "");
    EXPECT_EQ(suggestion(std::string(1'000'000, 'x'), methods), "");
}

TEST(SuggestionTest, AShortWordHasToBeNearer) {
    EXPECT_EQ(suggestion("lsit", {"list", "wait"}), "list");
    EXPECT_EQ(suggestion("loop", {"list", "wait"}), "");
    EXPECT_EQ(suggestion("av", {"AV", "PVR"}), "AV");
    EXPECT_EQ(suggestion("ax", {"AV", "PVR"}), "");
}

TEST(DidYouMeanTest, AsksOrSaysTheOther) {
    EXPECT_EQ(didYouMean("lsit", {"list"}, "; no"), "; did you mean list?");
    EXPECT_EQ(didYouMean("dance", {"list"}, "; no"), "; no");
}

}  // namespace

}  // namespace mlk::ctl
