#include "common/TextOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "common/ConfigKey.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

constexpr size_t kNumbers = 1000;  // the number of the first text

// Sorts the texts, each of which is followed by bytes that differ from text to text.
std::vector<std::string> sorted(const std::vector<std::string>& texts) {
    std::mt19937 random(1);
    std::deque<std::string> followed;
    std::vector<NumberedText> numbered;
    for (const std::string& text : texts) {
        std::string& copy = followed.emplace_back(text);
        for (size_t i = 0; i < kReadBySorting; ++i) {
            copy += static_cast<char>(random());
        }
        const size_t number = kNumbers + numbered.size();
        numbered.emplace_back(std::string_view(copy).substr(0, text.size()),
                              static_cast<uint32_t>(number));
    }
    sortTexts(numbered);
    std::vector<std::string> result;
    for (const NumberedText& one : numbered) {
        result.emplace_back(one.text, one.size);
        EXPECT_EQ(texts.at(one.number - kNumbers), result.back()) << "the number stays with it";
    }
    return result;
}

void expectSorted(const std::vector<std::string>& texts, const std::string& what) {
    std::vector<std::string> expected = texts;
    std::sort(expected.begin(), expected.end(), ConfigKey::CompareStr);
    EXPECT_EQ(sorted(texts), expected) << what;
}

TEST(TextOrderTest, SortsFewAndManyRandomTexts) {
    std::mt19937 random(7);
    const auto below = [&](size_t limit) { return random() % limit; };
    for (int round = 0; round < 1000; ++round) {
        const std::string start(below(25), 'P');
        const size_t symbols = round % 3 == 0 ? 256 : 2;  // few symbols make texts that are alike
        const size_t longest = 1 + below(20);
        const size_t count = below(round % 2 == 0 ? 18 : 60);
        std::set<std::string> different;
        for (size_t i = 0; i < count; ++i) {
            std::string text = start;
            for (size_t left = below(longest + 1); left > 0; --left) {
                text += static_cast<char>(below(symbols));
            }
            different.insert(text);
        }
        std::vector<std::string> texts(different.begin(), different.end());
        std::shuffle(texts.begin(), texts.end(), random);
        expectSorted(texts, "round " + std::to_string(round));
    }
}

// Texts of any two sizes near a limit of the sort keys. The longer a text, the lower its bytes.
TEST(TextOrderTest, SizeDecidesForLongTexts) {
    for (const size_t limit : {127U, 255U, 65'535U}) {
        for (const size_t others : {0U, 20U}) {
            std::vector<std::string> texts;
            char symbol = 'z';
            for (size_t size = limit - 2; size <= limit + 2; ++size, --symbol) {
                texts.emplace_back(size, symbol);
                texts.push_back(std::string(size - 1, symbol) + 'a');
            }
            for (size_t size = 1; size <= others; ++size) {
                texts.emplace_back(size, 'o');
            }
            expectSorted(texts, std::to_string(limit) + " and " + std::to_string(others));
        }
    }
}

TEST(TextOrderTest, ATextMayBeTheStartOfAllOthers) {
    expectSorted({"PANEL_MODE_2", "PANEL_MODE", "PANEL_MODE_", "PANEL_MODE_1"}, "short");
    const std::string start(40, 'x');
    expectSorted({start + "b", start, start + "a", start + "ab", ""}, "long");
}

TEST(TextOrderTest, BytesCompareAsUnsigned) {
    expectSorted({"\xff", "\x80", "\x7f", "a"}, "few");
    std::vector<std::string> all;
    for (int symbol = 255; symbol >= 0; --symbol) {
        all.emplace_back(1, static_cast<char>(symbol));
    }
    expectSorted(all, "many");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
