#include "tools/mlkctl/Plain.h"

#include <gmock/gmock.h>

namespace mlk::ctl {

namespace {

TEST(PlainTest, IsTheBareValue) {
    EXPECT_EQ(plainOf(R"({"success":true,"value":"a \"b\"\n"})"), "a \"b\"\n");
    EXPECT_EQ(plainOf(R"({"success":true,"value":-3})"), "-3");
    EXPECT_EQ(plainOf(R"({"success":true,"value":0})"), "0");
    EXPECT_EQ(plainOf(R"({"success":true,"value":false})"), "false");
    EXPECT_EQ(plainOf(R"({"success":true,"value":"\udcffx"})"), "\xffx");
}

TEST(PlainTest, OfAListIsALineForEach) {
    EXPECT_EQ(plainOf(R"(["one","\udc80",""])"), "one\n\x80\n");
    EXPECT_EQ(plainOf("[1,4000000000]"), "1\n4000000000");
    EXPECT_EQ(plainOf(R"([{"key":"k","value":"v=w"},{"key":"e","value":""}])"), "k=v=w\ne=");
    EXPECT_EQ(plainOf(R"([{"channel":21,"frequency":474000,"bandwidth":8000000,"label":"E21",)"
                      R"("modulation":18}])"),
              "21\t474000\t8000000\tE21\t18");
}

TEST(PlainTest, MayBeMissing) {
    EXPECT_EQ(plainOf(R"({"success":true,"value":""})"), std::nullopt);
    EXPECT_EQ(plainOf(R"({"success":false,"value":"x"})"), std::nullopt);
    EXPECT_EQ(plainOf(R"({"success":false,"value":1})"), std::nullopt);
    EXPECT_EQ(plainOf("[]"), std::nullopt);
}

}  // namespace

}  // namespace mlk::ctl
