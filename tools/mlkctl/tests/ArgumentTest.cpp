#include "tools/mlkctl/Argument.h"

#include <gmock/gmock.h>

#include "tools/mlkctl/Failure.h"

namespace mlk::ctl {

namespace {

using testing::EndsWith;
using testing::HasSubstr;

const Word kText{"PATH", Word::Kind::TEXT};
const Word kNumber{"INDEX", Word::Kind::NUMBER};
const Word kFlag{"ENABLED", Word::Kind::FLAG};
const Word kEnumerator{
        "TYPE", Word::Kind::ENUMERATOR, {"an enumerator", {{"ATV", 1}, {"ATV_CABLE", 3}}}};
const Word kCountry{"COUNTRY",
                    Word::Kind::NUMBER,
                    {"a country's name", {{"DEFAULT", -1}, {"ANDORRA", 0}, {"GERMANY", 57}}}};

Argument word(const std::string& text) {
    return Argument::ofCommandLine(text);
}

int64_t numberOf(const Argument& argument, const Word& target = kNumber) {
    return argument.toNumber(target, INT32_MIN, INT32_MAX);
}

// The message of the failure that reading throws; it is always USAGE.
template <typename Read>
std::string refusal(const Read& read) {
    try {
        read();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::USAGE);
        return failure.what();
    }
    return "nothing thrown";
}

std::string refusedNumber(const Argument& argument, const Word& target = kNumber) {
    return refusal([&] { numberOf(argument, target); });
}

TEST(NumberFromTest, TakesDecimalAndHexadecimal) {
    EXPECT_EQ(numberFrom("0"), 0);
    EXPECT_EQ(numberFrom("-3"), -3);
    EXPECT_EQ(numberFrom("007"), 7);
    EXPECT_EQ(numberFrom("0x1F"), 31);
    EXPECT_EQ(numberFrom("0Xff"), 255);
    EXPECT_EQ(numberFrom("-0x10"), -16);
    EXPECT_EQ(numberFrom("9223372036854775807"), INT64_MAX);
    for (const char* text : {"", "-", "+1", "--1", "0x", "0x-1", "0xg", " 1", "1 ", "1.0", "1e3",
                             "abc", "9223372036854775808", "0xffffffffffffffff0"}) {
        EXPECT_EQ(numberFrom(text), std::nullopt) << text;
    }
}

TEST(ArgumentTest, NumbersAreHeldToTheirRange) {
    EXPECT_EQ(numberOf(word("-2147483648")), INT32_MIN);
    EXPECT_EQ(numberOf(word("2147483647")), INT32_MAX);
    EXPECT_EQ(numberOf(word("0x7fffffff")), INT32_MAX);
    EXPECT_EQ(numberOf(Argument::ofNumber(-5)), -5);
    const char* const right = "INDEX is a number from -2147483648 to 2147483647, not ";
    EXPECT_EQ(refusedNumber(word("2147483648")), std::string(right) + R"("2147483648")");
    EXPECT_EQ(refusedNumber(word("-2147483649")), std::string(right) + R"("-2147483649")");
    EXPECT_EQ(refusedNumber(word("")), std::string(right) + R"("")");
    EXPECT_EQ(refusedNumber(word("a\nb")), std::string(right) + R"("a\nb")");
    EXPECT_EQ(refusedNumber(Argument::ofNumber(2147483648)), std::string(right) + "2147483648");
}

TEST(ArgumentTest, JsonGivesNumbersAsNumbers) {
    const char* const right = "INDEX is a number from -2147483648 to 2147483647, not ";
    EXPECT_EQ(refusedNumber(Argument::ofText("1")), std::string(right) + R"("1")");
    EXPECT_EQ(refusedNumber(Argument::ofOther("1.0")), std::string(right) + "1.0");
    EXPECT_EQ(refusedNumber(Argument::ofFlag(true)), std::string(right) + "true");
    EXPECT_EQ(refusedNumber(Argument::ofOther("null")), std::string(right) + "null");
}

TEST(ArgumentTest, FlagsAreTrueAndFalse) {
    EXPECT_TRUE(word("true").toFlag(kFlag));
    EXPECT_FALSE(word("false").toFlag(kFlag));
    EXPECT_TRUE(Argument::ofFlag(true).toFlag(kFlag));
    EXPECT_FALSE(Argument::ofFlag(false).toFlag(kFlag));
    for (const char* text : {"", "True", "TRUE", "1", "0", "yes", "true "}) {
        EXPECT_THAT(refusal([&] { (void)word(text).toFlag(kFlag); }),
                    HasSubstr("ENABLED is true or false, not \""));
    }
    EXPECT_EQ(refusal([] { (void)Argument::ofText("true").toFlag(kFlag); }),
              R"(ENABLED is true or false, not "true")");
    EXPECT_EQ(refusal([] { (void)Argument::ofNumber(1).toFlag(kFlag); }),
              "ENABLED is true or false, not 1");
}

TEST(ArgumentTest, TextsAreBytes) {
    EXPECT_EQ(word("").toText(kText), "");
    EXPECT_EQ(word("--foo").toText(kText), "--foo");
    EXPECT_EQ(word("5").toText(kText), "5");
    EXPECT_EQ(word("\xff\\udc80").toText(kText), "\xff\x80");
    // A JSON parser has already replaced the escapes. A text that looks like one had two
    // backslashes.
    EXPECT_EQ(Argument::ofText("\\udc80").toText(kText), "\\udc80");
    EXPECT_EQ(Argument::ofText(std::string("a\0b", 3)).toText(kText), std::string("a\0b", 3));
    EXPECT_EQ(refusal([] { (void)Argument::ofNumber(5).toText(kText); }), "PATH is a text, not 5");
    EXPECT_EQ(refusal([] { (void)Argument::ofFlag(false).toText(kText); }),
              "PATH is a text, not false");
}

TEST(ArgumentTest, EnumeratorsAreNamesOrNumbers) {
    EXPECT_EQ(numberOf(word("ATV_CABLE"), kEnumerator), 3);
    EXPECT_EQ(numberOf(word("77"), kEnumerator), 77);
    EXPECT_EQ(numberOf(word("0x1a"), kEnumerator), 26);
    EXPECT_EQ(numberOf(Argument::ofText("ATV"), kEnumerator), 1);
    EXPECT_EQ(numberOf(Argument::ofText("0x2"), kEnumerator), 2);
    EXPECT_EQ(numberOf(Argument::ofNumber(4), kEnumerator), 4);
    EXPECT_EQ(
            refusedNumber(word("ATV_CABEL"), kEnumerator),
            R"(TYPE is ATV, ATV_CABLE, or a number of 32 bits, not "ATV_CABEL"; did you mean ATV_CABLE?)");
    EXPECT_EQ(refusedNumber(word("atv"), kEnumerator),
              R"(TYPE is ATV, ATV_CABLE, or a number of 32 bits, not "atv"; did you mean ATV?)");
    EXPECT_EQ(refusedNumber(Argument::ofFlag(true), kEnumerator),
              "TYPE is ATV, ATV_CABLE, or a number of 32 bits, not true");
}

TEST(ArgumentTest, ANumberMayHaveNames) {
    EXPECT_EQ(numberOf(word("GERMANY"), kCountry), 57);
    EXPECT_EQ(numberOf(word("DEFAULT"), kCountry), -1);
    EXPECT_EQ(numberOf(word("185"), kCountry), 185);
    EXPECT_EQ(numberOf(Argument::ofText("ANDORRA"), kCountry), 0);
    EXPECT_EQ(refusedNumber(word("GERMANI"), kCountry),
              "COUNTRY is a country's name or a number from -2147483648 to 2147483647, not "
              R"("GERMANI"; did you mean GERMANY?)");
    EXPECT_EQ(refusedNumber(Argument::ofText("57"), kCountry),
              "COUNTRY is a country's name or a number from -2147483648 to 2147483647, not "
              R"("57")");
}

TEST(ArgumentTest, LongOnesAreCutInMessages) {
    EXPECT_LT(refusedNumber(word(std::string(100'000, 'x'))).size(), 200U);
    const std::string digits(60, '1');
    EXPECT_THAT(refusedNumber(Argument::ofOther(digits)), EndsWith(", not " + digits));
    EXPECT_THAT(refusedNumber(Argument::ofOther(digits + "2")), EndsWith(", not " + digits));
    EXPECT_LT(refusedNumber(Argument::ofOther(std::string(100'000, '1'))).size(), 200U);
}

}  // namespace

}  // namespace mlk::ctl
