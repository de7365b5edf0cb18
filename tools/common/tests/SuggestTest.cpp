#include "tools/common/Suggest.h"

#include <gmock/gmock.h>

namespace mlk {

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

// Words of a few letters have all distances, and several ways to get there.
TEST(EditDistanceTest, StopsAtTheLimit) {
    std::vector<std::string> words;
    for (size_t number = 0; number < 200; ++number) {
        std::string word;
        for (size_t rest = number * number + 1; rest > 1; rest /= 3) {
            word += static_cast<char>('a' + rest % 3);
        }
        words.push_back(word);
    }
    for (const std::string& one : words) {
        for (const std::string& other : words) {
            const size_t distance = editDistance(one, other);
            EXPECT_EQ(editDistance(other, one), distance) << one << " " << other;
            for (size_t most = 0; most < 5; ++most) {
                EXPECT_EQ(editDistance(one, other, most), std::min(distance, most + 1))
                        << one << " " << other << " " << most;
            }
        }
    }
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

TEST(SuggestionTest, KnowsInitialsAndCase) {
    const std::vector<std::string_view> countries = {
            "UKRAINE", "UAE_NO", "UNITED_KINGDOM", "NEW_ZEALAND", "UNITED_ARAB_EMIRATES", "OMAN"};
    EXPECT_EQ(suggestion("UK", countries), "UNITED_KINGDOM");
    EXPECT_EQ(suggestion("uk", countries), "UNITED_KINGDOM");
    EXPECT_EQ(suggestion("nz", countries), "NEW_ZEALAND");
    EXPECT_EQ(suggestion("UAE", countries), "UNITED_ARAB_EMIRATES");
    EXPECT_EQ(suggestion("oman", countries), "OMAN");
    EXPECT_EQ(suggestion("O", countries), "");  // one word has no initials
    // Case comes before initials, initials before distance.
    EXPECT_EQ(suggestion("ab", {"A_B", "AB"}), "AB");
    EXPECT_EQ(suggestion("abc", {"abx", "Axx_Bxx_Cxx"}), "Axx_Bxx_Cxx");
    EXPECT_EQ(suggestion("ab", {"abc", "_A__B_"}), "_A__B_");
}

TEST(DidYouMeanTest, AsksOrSaysTheOther) {
    EXPECT_EQ(didYouMean("lsit", {"list"}, "; no"), "; did you mean list?");
    EXPECT_EQ(didYouMean("dance", {"list"}, "; no"), "; no");
}

}  // namespace

}  // namespace mlk
