#include "tools/common/Text.h"

#include <gmock/gmock.h>

#include <vector>

using namespace std::string_literals;

namespace mlk {

namespace {

struct Row {
    std::string bytes;
    std::string json;  // without its quotes
};

// Every row's bytes are shown as its JSON.
void expectJson(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(jsonString(row.bytes), '"' + row.json + '"');
    }
}

TEST(JsonStringTest, ShowsPlainText) {
    expectJson({{"", ""},
                {"[LiveTV]", "[LiveTV]"},
                {R"(a"b\c/d)", R"(a\"b\\c/d)"},
                {"\b\f\n\r\t", R"(\b\f\n\r\t)"},
                {"\x01\x1f\x7f", "\\u0001\\u001f\\u007f"},
                {"a\0b"s, R"(a\u0000b)"}});
}

TEST(JsonStringTest, ShowsValidUtf8) {
    expectJson({{"\xc2\x80\xc2\x9f\xc2\xa0", "\\u0080\\u009f\xc2\xa0"},
                {"\xdf\xbf", "\xdf\xbf"},
                {"\xe0\xa0\x80", "\xe0\xa0\x80"},
                {"\xed\x9f\xbf", "\xed\x9f\xbf"},
                {"\xee\x80\x80", "\xee\x80\x80"},
                {"\xef\xbf\xbf", "\xef\xbf\xbf"},
                {"\xf0\x90\x80\x80", "\xf0\x90\x80\x80"},
                {"\xf4\x8f\xbf\xbf", "\xf4\x8f\xbf\xbf"}});
}

TEST(JsonStringTest, ShowsOtherBytes) {
    expectJson({{"\x80", R"(\udc80)"},
                {"a\xff z", R"(a\udcff z)"},
                // Overlong.
                {"\xc0\xaf", R"(\udcc0\udcaf)"},
                {"\xc1\xbf", R"(\udcc1\udcbf)"},
                {"\xe0\x9f\xbf", R"(\udce0\udc9f\udcbf)"},
                {"\xf0\x8f\xbf\xbf", R"(\udcf0\udc8f\udcbf\udcbf)"},
                // Surrogates.
                {"\xed\xa0\x80", R"(\udced\udca0\udc80)"},
                {"\xed\xbf\xbf", R"(\udced\udcbf\udcbf)"},
                // Beyond the last character.
                {"\xf4\x90\x80\x80", R"(\udcf4\udc90\udc80\udc80)"},
                {"\xf5\x80\x80\x80", R"(\udcf5\udc80\udc80\udc80)"},
                // Cut off, at the end and before another character.
                {"\xe2\x82", R"(\udce2\udc82)"},
                {"\xe2\x82x", R"(\udce2\udc82x)"},
                {"\xf0\x9f\x98\xc3\xa4", "\\udcf0\\udc9f\\udc98\xc3\xa4"},
                {"\xc3\"", R"(\udcc3\")"}});
}

TEST(JsonStringTest, DoesNotLookBehindTheText) {
    EXPECT_EQ(jsonString(std::string_view("\xc3\xa4", 1)), R"("\udcc3")");
}

TEST(PrintableTest, EscapesWhatATerminalWouldObey) {
    EXPECT_EQ(printable("a\x1b[31m\n\x7f\xc2\x9b\xff"), R"(a\u001b[31m\n\u007f\u009b\udcff)");
    EXPECT_EQ(printable("\x1f\xc2\x80\xc2\x9f\xc2\xa0 "), "\\u001f\\u0080\\u009f\xc2\xa0 ");
    EXPECT_EQ(printable("say \"\\\" \xc3\xa4"), "say \"\\\" \xc3\xa4");
}

TEST(ExcerptTest, IsCutBetweenCharacters) {
    EXPECT_EQ(excerpt("short"), R"("short")");
    EXPECT_EQ(excerpt(std::string(60, 'x')), '"' + std::string(60, 'x') + '"');
    EXPECT_EQ(excerpt(std::string(61, 'x')), '"' + std::string(60, 'x') + "\"...");
    EXPECT_EQ(excerpt(std::string(59, 'x') + "\xc3\xa4"), '"' + std::string(59, 'x') + "\"...");
    EXPECT_EQ(excerpt(std::string(100, '\xff')).size(), 60 * 6 + 5U);
}

TEST(Base64Test, PadsToFours) {
    const auto encode = [](const std::string& text) {
        return base64(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    };
    EXPECT_EQ(encode(""), "");
    EXPECT_EQ(encode("f"), "Zg==");
    EXPECT_EQ(encode("fo"), "Zm8=");
    EXPECT_EQ(encode("foo"), "Zm9v");
    EXPECT_EQ(encode("foob"), "Zm9vYg==");
    EXPECT_EQ(encode("fooba"), "Zm9vYmE=");
    EXPECT_EQ(encode("foobar"), "Zm9vYmFy");
    EXPECT_EQ(encode("\0\xff\xfe\xfb\xff\xbf"s), "AP/++/+/");
}

TEST(WithoutByteEscapesTest, ReadsExactlyTheBytes) {
    EXPECT_EQ(withoutByteEscapes(R"(a\udc80\udcFFb)"), "a\x80\xff"s + "b");
    for (const char* text : {"", R"(C:\new)", R"(\udc7f)", R"(\udd80)", R"(\udc8)", R"(\udc8g)",
                             R"(\Udc80)", R"(\n\u0041)", R"(\)"}) {
        EXPECT_EQ(withoutByteEscapes(text), text);
    }
    // A backslash escapes nothing, not even another backslash.
    EXPECT_EQ(withoutByteEscapes(R"(\\udc80)"), "\\\x80");
}

// Tests which bytes are hidden. BatchLineTest tests the way back, through a JSON parser and
// restoreBytes.
TEST(HideByteEscapesTest, HidesOnlyLoneBytes) {
    std::string plain;
    EXPECT_FALSE(hideByteEscapes(R"(["a","\u0041"])", &plain));
    EXPECT_FALSE(hideByteEscapes(R"(["\ud83d\ude00"])", &plain));
    EXPECT_FALSE(hideByteEscapes(R"(["\ud800\udc80"])", &plain));
    EXPECT_FALSE(hideByteEscapes(R"(["\\udc80"])", &plain));
    EXPECT_FALSE(hideByteEscapes(R"(["\udc7f"])", &plain));
    EXPECT_FALSE(hideByteEscapes(R"([\udc80])", &plain));
    EXPECT_TRUE(hideByteEscapes(R"(["\udc80"])", &plain));
    EXPECT_TRUE(hideByteEscapes(R"(["\uDCFF"])", &plain));
    EXPECT_TRUE(hideByteEscapes(R"(["\ud800\udc80\udc80"])", &plain));
    EXPECT_TRUE(hideByteEscapes(R"(["\\\udc80"])", &plain));
}

TEST(JoinedTest, PutsCommasBetween) {
    EXPECT_EQ(joined({}), "");
    EXPECT_EQ(joined({"a"}), "a");
    EXPECT_EQ(joined({"a", "b", "c"}), "a, b, c");
}

}  // namespace

}  // namespace mlk
