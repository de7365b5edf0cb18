#include "tools/mlkctl/BatchLine.h"

#include <gmock/gmock.h>

#include "tools/common/Text.h"
#include "tools/mlkctl/Failure.h"

using namespace std::string_literals;

namespace mlk::ctl {

namespace {

using testing::EndsWith;
using testing::HasSubstr;

const Word kText{"TEXT", Word::Kind::TEXT};
const Word kNumber{"NUMBER", Word::Kind::NUMBER};

// The argument of a line whose JSON has this text between the quotes.
std::string textOf(const std::string& json) {
    const BatchLine line = parseBatchLine(R"(["I","m",")" + json + R"("])");
    EXPECT_EQ(line.arguments.size(), 1U);
    return line.arguments.at(0).toText(kText);
}

std::string refusalOf(const std::string& line) {
    try {
        (void)parseBatchLine(line);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::USAGE);
        return failure.what();
    }
    return "nothing thrown";
}

TEST(BatchLineTest, ReadsScalars) {
    const BatchLine line = parseBatchLine(
            " [ \"I\", \"m\", \"text\", 5, -6, true, false, null, 1.5, 1e3, "
            "9223372036854775807, 18446744073709551615 ]\r");
    EXPECT_EQ(line.interface, "I");
    EXPECT_EQ(line.method, "m");
    std::vector<std::string> written;
    for (const Argument& argument : line.arguments) {
        written.push_back(argument.written());
    }
    EXPECT_THAT(written,
                testing::ElementsAre(R"("text")", "5", "-6", "true", "false", "null", "1.5", "1e3",
                                     "9223372036854775807", "18446744073709551615"));
    EXPECT_EQ(line.arguments[1].toNumber(kNumber, -9, 9), 5);
    EXPECT_EQ(line.arguments[2].toNumber(kNumber, -9, 9), -6);
}

TEST(BatchLineTest, ReadsTextsWithTheirEscapes) {
    EXPECT_EQ(textOf(""), "");
    EXPECT_EQ(textOf(R"(\"\\\/\b\f\n\r\t\u0041\u00e4)"), "\"\\/\b\f\n\r\tA\xc3\xa4");
    EXPECT_EQ(textOf(R"(a\u0000b)"), "a\0b"s);
    EXPECT_EQ(textOf(R"(\ud83d\ude00)"), "\xf0\x9f\x98\x80");
    EXPECT_EQ(textOf("\xc3\xa4\x7f"), "\xc3\xa4\x7f");
    EXPECT_EQ(textOf(R"(\u007f)"), "\x7f");
}

TEST(BatchLineTest, ReadsBytesThatAreNoUtf8) {
    EXPECT_EQ(textOf(R"(\udc80\udcff\uDCC3)"), "\x80\xff\xc3");
    EXPECT_EQ(textOf(R"(a\udc80b)"),
              "a\x80"
              "b"s);
    // The same after a backslash.
    EXPECT_EQ(textOf(R"(\\udc80)"), R"(\udc80)");
    EXPECT_EQ(textOf(R"(\\\udc80)"), "\\\x80");
    EXPECT_EQ(textOf(R"(\"\udc80)"), "\"\x80");
    // In a pair it is the second half; after a whole pair it is a byte again.
    EXPECT_EQ(textOf(R"(\ud800\udc80)"), "\xf0\x90\x82\x80");
    EXPECT_EQ(textOf(R"(\ud800\udc80\udc80)"), "\xf0\x90\x82\x80\x80");
    // The character that marks hidden bytes may also occur by itself.
    EXPECT_EQ(textOf("\x7f\\udc80\\u007f\x7f"
                     "80\\u007F80"),
              "\x7f\x80\x7f\x7f"
              "80\x7f"
              "80"s);
    EXPECT_EQ(textOf(R"(\udc80\u0041\n)"),
              "\x80"
              "A\n"s);
}

TEST(BatchLineTest, ReadsWhatAnswersPrint) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    for (const std::string& text :
         {all, all + all, "\xc3"s, "\xed\xa0\x80\xed\xb0\x80"s, "\\udc80"s,
          "\x7f"
          "80"s,
          "\xf0\x9f\x98\x80\x9f"s}) {
        const std::string json = jsonString(text);
        EXPECT_EQ(textOf(json.substr(1, json.size() - 2)), text);
    }
}

TEST(BatchLineTest, RefusesOtherSurrogates) {
    for (const char* text : {R"(\udc7f)", R"(\ud800)", R"(\ud800x)", R"(\udfff)", R"(\udd00)",
                             R"(\ud800\ud800\udc80)"}) {
        EXPECT_THAT(refusalOf(R"(["I","m",")"s + text + R"("])"), HasSubstr("not JSON")) << text;
    }
}

TEST(BatchLineTest, RefusesWhatIsNoCall) {
    const std::string form = R"(a line is ["INTERFACE","METHOD",ARGUMENT...])";
    for (const char* line : {"{}", R"({"a":["I"]})", "5", "null", "true", R"("I")", "[]",
                             R"(["I"])", R"([1,2])", R"(["I",2])", R"([null,"m"])"}) {
        EXPECT_EQ(refusalOf(line), form) << line;
    }
    for (const char* line :
         {"", " ", "[", "]", R"(["I","m")", R"(["I","m",])", R"(["I" "m"])", R"(["I","m"] x)",
          R"(["I","m"]["I","m"])", "hello", R"(['I','m'])", R"(["I","m",01])", R"(["I","m",NaN])",
          R"(["I","m","\x"])", "[\"I\",\"m\",\"\t\"]", "[\"I\",\"m\",\"\xff\"]",
          R"(["I","m"] // no)"}) {
        EXPECT_THAT(refusalOf(line), testing::MatchesRegex("column [0-9]+: not JSON; a line is .*"))
                << line;
    }
    EXPECT_THAT(refusalOf("[\"I\",\"m\"\0]"s), HasSubstr("not JSON"));
}

TEST(BatchLineTest, RefusesWhatTheParserWouldPassOver) {
    EXPECT_THAT(refusalOf("[\"I\",\"m\"]\0,5]"s), HasSubstr("column 10: not JSON"));
    EXPECT_THAT(refusalOf("\xef\xbb\xbf[\"I\",\"m\"]"), HasSubstr("column 1: not JSON"));
}

TEST(BatchLineTest, RefusesNesting) {
    EXPECT_EQ(refusalOf(R"(["I","m",[]])"),
              "an argument is a text, a number, true or false, not an array");
    EXPECT_EQ(refusalOf(R"(["I","m",{}])"),
              "an argument is a text, a number, true or false, not an object");
    EXPECT_THAT(refusalOf(std::string(2'000'000, '[')), EndsWith("not an array"));
    EXPECT_THAT(refusalOf(R"([{"a":)" + std::string(1'000'000, '{')), EndsWith("not an object"));
}

TEST(BatchLineTest, MessagesStayShort) {
    EXPECT_LT(refusalOf(std::string(1'000'000, 'x')).size(), 100U);
    EXPECT_LT(refusalOf("[" + std::string(1'000'000, '1')).size(), 100U);
}

}  // namespace

}  // namespace mlk::ctl
