#include "host/text/Utf8.h"

#include <gtest/gtest.h>

#include <ios>
#include <string>
#include <vector>

namespace mlk {

namespace {

TEST(Utf8Test, DecodesCharactersOfEachSize) {
    struct Row {
        std::string bytes;
        char32_t code;
    };
    // The first and the last character of each size, and those beside the surrogates.
    const Row rows[] = {{std::string(1, '\0'), 0x0},
                        {"\x7f", 0x7f},
                        {"\xc2\x80", 0x80},
                        {"\xc3\xa4", 0xe4},
                        {"\xdf\xbf", 0x7ff},
                        {"\xe0\xa0\x80", 0x800},
                        {"\xe2\x80\x8b", 0x200b},
                        {"\xed\x9f\xbf", 0xd7ff},
                        {"\xee\x80\x80", 0xe000},
                        {"\xef\xbf\xbf", 0xffff},
                        {"\xf0\x90\x80\x80", 0x10000},
                        {"\xf0\x9f\x98\x80", 0x1f600},
                        {"\xf4\x8f\xbf\xbf", 0x10ffff}};
    for (const Row& row : rows) {
        // In the middle of a text, and at its end.
        for (const std::string& after : {std::string(), std::string("x"), row.bytes}) {
            const Utf8Character found = utf8At("ab" + row.bytes + after, 2);
            EXPECT_EQ(found.size, row.bytes.size()) << std::hex << row.code;
            EXPECT_EQ(found.code, row.code) << std::hex << row.code;
        }
        EXPECT_EQ(invalidUtf8At("ab" + row.bytes + row.bytes), std::string::npos)
                << std::hex << row.code;
    }
}

TEST(Utf8Test, RefusesWhatIsNoCharacter) {
    struct Row {
        const char* what;
        std::vector<std::string> texts;
    };
    const Row rows[] = {
            {"begins no character", {"\x80", "\xbf", "\xf5\x80\x80\x80", "\xfe", "\xff"}},
            {"overlong", {"\xc0\xaf", "\xc1\xbf", "\xe0\x9f\xbf", "\xf0\x8f\xbf\xbf"}},
            {"surrogate", {"\xed\xa0\x80", "\xed\xbf\xbf"}},
            {"beyond the last character", {"\xf4\x90\x80\x80"}},
            {"cut off by the end", {"\xc3", "\xe2\x82", "\xf0\x9f\x98"}},
            {"cut off", {"\xc3x", "\xe2\x82x", "\xf0\x9f\x98x", "\xe2x\x80", "\xf0x\x80\x80"}},
    };
    for (const Row& row : rows) {
        for (const std::string& text : row.texts) {
            const Utf8Character found = utf8At("\xc3\xa4" + text, 2);
            EXPECT_EQ(found.size, 0U) << row.what << ": " << testing::PrintToString(text);
            EXPECT_EQ(found.code, 0U) << row.what << ": " << testing::PrintToString(text);
            EXPECT_EQ(invalidUtf8At("\xc3\xa4" + text), 2U)
                    << row.what << ": " << testing::PrintToString(text);
        }
    }
}

TEST(Utf8Test, DoesNotLookBehindTheText) {
    EXPECT_EQ(utf8At(std::string_view("\xc3\xa4", 1), 0).size, 0U);
    EXPECT_EQ(invalidUtf8At(""), std::string_view::npos);
}

}  // namespace

}  // namespace mlk
