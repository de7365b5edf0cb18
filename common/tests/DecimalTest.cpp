#include "common/Decimal.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <random>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

TEST(DecimalTest, ReadsLeadingDigits) {
    EXPECT_EQ(parseDecimal("0"), 0);
    EXPECT_EQ(parseDecimal("12"), 12);
    EXPECT_EQ(parseDecimal("-3"), -3);
    EXPECT_EQ(parseDecimal("+4"), 4);
    EXPECT_EQ(parseDecimal("12abc"), 12);
    EXPECT_EQ(parseDecimal("007"), 7);
    EXPECT_EQ(parseDecimal("0x10"), 0);
    EXPECT_EQ(parseDecimal("5 6"), 5);
}

TEST(DecimalTest, SkipsWhiteSpaceBeforeTheSignOnly) {
    EXPECT_EQ(parseDecimal(" \t\n\v\f\r 9"), 9);
    EXPECT_EQ(parseDecimal("  -9"), -9);
    EXPECT_EQ(parseDecimal("- 9"), 0);
}

TEST(DecimalTest, TextWithoutNumberIsZero) {
    for (const char* text : {"", " ", "-", "+", "+-1", "-+1", "--1", "abc", "\"1\"", "\xff"}) {
        EXPECT_EQ(parseDecimal(text), 0) << text;
    }
}

TEST(DecimalTest, LimitsOf32Bits) {
    EXPECT_EQ(parseDecimal("2147483647"), INT32_MAX);
    EXPECT_EQ(parseDecimal("-2147483648"), INT32_MIN);
    EXPECT_EQ(parseDecimal("4294967295"), -1);
    EXPECT_EQ(parseDecimal("4294967298"), 2);
    EXPECT_EQ(parseDecimal("-4294967298"), -2);
}

TEST(DecimalTest, BeyondSixtyFourBitsIsTheNearest64BitNumber) {
    EXPECT_EQ(parseDecimal("9223372036854775807"), -1);
    EXPECT_EQ(parseDecimal("9223372036854775808"), -1);
    EXPECT_EQ(parseDecimal("18446744073709551617"), -1);
    EXPECT_EQ(parseDecimal("-9223372036854775808"), 0);
    EXPECT_EQ(parseDecimal("-9223372036854775809"), 0);
    EXPECT_EQ(parseDecimal(std::string(500, '9')), -1);
    EXPECT_EQ(parseDecimal("-" + std::string(500, '9')), 0);
}

TEST(DecimalTest, AgreesWithTheLibraryOnRandomTexts) {
    std::mt19937 random(1);
    const std::string alphabet = "0123456789 +-9876543210a\t";
    for (int round = 0; round < 20000; ++round) {
        std::string text(random() % 24, ' ');
        for (char& c : text) {
            c = alphabet[random() % alphabet.size()];
        }
        EXPECT_EQ(parseDecimal(text), static_cast<int32_t>(std::strtoll(text.c_str(), nullptr, 10)))
                << text;
    }
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
