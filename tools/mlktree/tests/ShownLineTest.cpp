#include "tools/mlktree/ShownLine.h"

#include <gmock/gmock.h>

using namespace std::string_literals;

namespace mlk::tree {

namespace {

using ::testing::HasSubstr;

// The line with a "^" inserted where the caret stands.
std::string shown(std::string_view bytes, size_t column, size_t width = 100) {
    const ShownLine line = shownLine(bytes, column, width);
    return line.text + "\n" + std::string(line.caret, ' ') + "^";
}

TEST(ShownLineTest, PutsTheCaretBelowTheColumn) {
    EXPECT_EQ(shown("key = value", 1), "key = value\n^");
    EXPECT_EQ(shown("key = value", 7), "key = value\n      ^");
    EXPECT_EQ(shown("key", 4), "key\n   ^");
    EXPECT_EQ(shown("key", 99), "key\n   ^");
    EXPECT_EQ(shown("", 1), "\n^");
    EXPECT_EQ(shown("  key\r\n", 0), "  key\n  ^");
}

TEST(ShownLineTest, ExpandsTabs) {
    EXPECT_EQ(shown("\tkey", 2), "    key\n    ^");
    EXPECT_EQ(shown("ab\tkey", 4), "ab  key\n    ^");
    EXPECT_EQ(shown("ab\tkey", 3), "ab  key\n  ^");
}

TEST(ShownLineTest, CountsColumnsOfTheTerminal) {
    EXPECT_EQ(shown("\xc3\xa4\xc3\xb6x", 5), "\xc3\xa4\xc3\xb6x\n  ^");
    EXPECT_EQ(shown("\xe4\xb8\xad\xe6\x96\x87x", 7), "\xe4\xb8\xad\xe6\x96\x87x\n    ^");
    EXPECT_EQ(shown("e\xcc\x81x", 4), "e\xcc\x81x\n ^");  // a combining accent has no width
}

TEST(ShownLineTest, HandsNoControlCharacterToTheTerminal) {
    EXPECT_EQ(shown("a\033[31mb", 7), "a\\u001b[31mb\n           ^");
    EXPECT_EQ(shown("a\0b"s, 3), "a\\u0000b\n       ^");
    EXPECT_EQ(shown("a\xff\xfe", 3), "a\\udcff\\udcfe\n       ^");
    EXPECT_EQ(shown("a\xc2\x9b", 2), "a\\u009b\n ^");
    // What turns the direction of text, and what has no width.
    EXPECT_EQ(shown("a\xe2\x80\xae"
                    "b",
                    5),
              "a\\u202eb\n       ^");
    EXPECT_EQ(shown("\xef\xbb\xbf[A]", 4), "\\ufeff[A]\n      ^");
}

TEST(ShownLineTest, CutsALongLineAroundTheColumn) {
    const std::string line = std::string(200, 'a') + "X" + std::string(200, 'b');
    const ShownLine middle = shownLine(line, 201, 20);
    EXPECT_EQ(middle.text, "..." + std::string(10, 'a') + "X" + std::string(9, 'b') + "...");
    EXPECT_EQ(middle.text[middle.caret], 'X');
    EXPECT_EQ(shownLine(line, 1, 20).text, std::string(20, 'a') + "...");
    const ShownLine end = shownLine(line, 401, 20);
    EXPECT_EQ(end.text, "..." + std::string(20, 'b'));
    EXPECT_EQ(end.text[end.caret], 'b');
}

TEST(ShownLineTest, BoundsWhatAnEndlessLineCosts) {
    const std::string line(1U << 20U, 'a');
    EXPECT_LE(shownLine(line, 5, 100).text.size(), 110U);
    EXPECT_LE(shownLine(line, line.size(), 100).text.size(), 110U);
}

TEST(ShownTextTest, IsOneLine) {
    EXPECT_EQ(shownText("a\nb\tc"), "a\\nb\\tc");
    EXPECT_EQ(shownText("\xe2\x81\xa6"
                        "a"),
              "\\u2066a");
    EXPECT_EQ(shownText("\xf0\x9f\x93\xba"), "\xf0\x9f\x93\xba");
    EXPECT_EQ(shownText("\xf3\xa0\x80\xa0"), "\\U000e0020");
}

TEST(CodePointColumnTest, CountsCodePoints) {
    EXPECT_EQ(codePointColumn("\xc3\xa4x", 3), 2U);
    EXPECT_EQ(codePointColumn("\xff\xffx", 3), 3U);
    EXPECT_EQ(codePointColumn("abc", 0), 0U);
    EXPECT_EQ(codePointColumn("abc", 1), 1U);
    EXPECT_EQ(codePointColumn("", 5), 1U);
}

}  // namespace

}  // namespace mlk::tree
