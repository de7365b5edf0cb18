#include <cutils/properties.h>
#include <gmock/gmock.h>
#include <stdlib.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "host/testing/HostSet.h"

namespace {

using ::mlk::testing::HostSet;
using ::testing::ElementsAre;
using ::testing::Pair;

static_assert(PROPERTY_KEY_MAX == 32);
static_assert(PROPERTY_VALUE_MAX == 92);

class PropertiesTest : public ::testing::Test {
  protected:
    HostSet mSet;
    std::array<char, PROPERTY_VALUE_MAX> mValue{};

    std::pair<int, std::string> get(const char* key, const char* defaultValue) {
        mValue.fill('#');
        const int size = property_get(key, mValue.data(), defaultValue);
        return {size, mValue.data()};
    }
};

TEST_F(PropertiesTest, GetGivesTheValueAndItsLength) {
    ASSERT_EQ(property_set("a.key", "hello"), 0);
    EXPECT_THAT(get("a.key", "default"), Pair(5, "hello"));
    EXPECT_EQ(mSet.dir().read("data/property/a.key"), "hello");
}

TEST_F(PropertiesTest, GetUsesTheDefaultForMissingAndEmptyValues) {
    ASSERT_EQ(property_set("empty", ""), 0);
    ASSERT_EQ(property_set("null", nullptr), 0);
    for (const char* key :
         {"empty", "null", "missing", "no key", static_cast<const char*>(nullptr)}) {
        EXPECT_THAT(get(key, "default"), Pair(7, "default"));
        EXPECT_THAT(get(key, ""), Pair(0, ""));
        EXPECT_THAT(get(key, nullptr), Pair(0, ""));
    }
}

TEST_F(PropertiesTest, GetCutsTheDefaultToTheBuffer) {
    EXPECT_THAT(get("missing", std::string(200, 'd').c_str()), Pair(91, std::string(91, 'd')));
}

TEST_F(PropertiesTest, GetMayHaveItsDefaultInTheBuffer) {
    mValue = {"default"};
    EXPECT_EQ(property_get("missing", mValue.data(), mValue.data()), 7);
    EXPECT_STREQ(mValue.data(), "default");
}

TEST_F(PropertiesTest, SetRefusesWhatTheStoreRefuses) {
    EXPECT_EQ(property_set("a.key", std::string(91, 'x').c_str()), 0);
    EXPECT_LT(property_set("a.key", std::string(92, 'x').c_str()), 0);
    EXPECT_LT(property_set("", "value"), 0);
    EXPECT_LT(property_set(nullptr, "value"), 0);
    EXPECT_LT(property_set("../key", "value"), 0);
    EXPECT_EQ(property_set("ro.key", "one"), 0);
    EXPECT_LT(property_set("ro.key", "two"), 0);
}

TEST_F(PropertiesTest, BooleansAreTenWords) {
    const std::vector<std::pair<const char*, int>> rows = {
            {"1", 1},     {"true", 1}, {"y", 1},   {"yes", 1},    {"on", 1},     {"0", 0},
            {"false", 0}, {"n", 0},    {"no", 0},  {"off", 0},    {"", 7},       {"TRUE", 7},
            {"2", 7},     {" on", 7},  {"on ", 7}, {"true\n", 7}, {"yes no", 7}, {"t", 7}};
    for (const auto& [text, value] : rows) {
        ASSERT_EQ(property_set("a.key", text), 0);
        EXPECT_EQ(property_get_bool("a.key", 7), value) << text;
    }
    EXPECT_EQ(property_get_bool("missing", 1), 1);
    EXPECT_EQ(property_get_bool(nullptr, 1), 1);
}

TEST_F(PropertiesTest, IntegersAreReadAsTheCLibraryDoes) {
    constexpr int32_t kDefault = -7;
    const std::vector<std::pair<const char*, int32_t>> rows = {{"0", 0},
                                                               {"42", 42},
                                                               {"-42", -42},
                                                               {"+42", 42},
                                                               {"0x2a", 42},
                                                               {"0X2A", 42},
                                                               {"052", 42},
                                                               {"  42", 42},
                                                               {"42  ", 42},
                                                               {"42abc", 42},
                                                               {"4 2", 4},
                                                               {"2147483647", INT32_MAX},
                                                               {"-2147483648", INT32_MIN},
                                                               {"2147483648", kDefault},
                                                               {"-2147483649", kDefault},
                                                               {"9223372036854775808", kDefault},
                                                               {"-9223372036854775809", kDefault},
                                                               {"", kDefault},
                                                               {"   ", kDefault},
                                                               {"abc", kDefault},
                                                               {"true", kDefault},
                                                               {"-", kDefault}};
    for (const auto& [text, value] : rows) {
        ASSERT_EQ(property_set("a.key", text), 0);
        EXPECT_EQ(property_get_int32("a.key", kDefault), value) << '"' << text << '"';
    }
    EXPECT_EQ(property_get_int32("missing", kDefault), kDefault);
    EXPECT_EQ(property_get_int32(nullptr, kDefault), kDefault);
}

TEST_F(PropertiesTest, LongIntegersHave64Bits) {
    const std::vector<std::pair<const char*, int64_t>> rows = {
            {"2147483648", 2147483648},          {"9223372036854775807", INT64_MAX},
            {"-9223372036854775808", INT64_MIN}, {"9223372036854775808", 7},
            {"-9223372036854775809", 7},         {"nothing", 7}};
    for (const auto& [text, value] : rows) {
        ASSERT_EQ(property_set("a.key", text), 0);
        EXPECT_EQ(property_get_int64("a.key", 7), value) << text;
    }
    EXPECT_EQ(property_get_int64("missing", 7), 7);
    // An earlier overflow does not affect this call.
    ASSERT_EQ(property_set("a.key", "42"), 0);
    errno = ERANGE;
    EXPECT_EQ(property_get_int64("a.key", 7), 42);
}

TEST_F(PropertiesTest, ListGivesEveryPropertyOnce) {
    mSet.setProperty("b.key", "two");
    mSet.setProperty("a.key", "one");
    mSet.setProperty("empty", "");
    mSet.dir().write("data/property/.new-1-1", "left behind");
    std::vector<std::pair<std::string, std::string>> all;
    EXPECT_EQ(property_list(
                      [](const char* key, const char* value, void* cookie) {
                          static_cast<decltype(all)*>(cookie)->emplace_back(key, value);
                      },
                      &all),
              0);
    EXPECT_THAT(all, ElementsAre(Pair("a.key", "one"), Pair("b.key", "two"), Pair("empty", "")));
}

TEST_F(PropertiesTest, EachSetHasAStoreOfItsOwn) {
    ASSERT_EQ(property_set("a.key", "one"), 0);
    {
        const HostSet other;
        EXPECT_THAT(get("a.key", "default"), Pair(7, "default"));
        ASSERT_EQ(property_set("a.key", "two"), 0);
    }
    EXPECT_THAT(get("a.key", "default"), Pair(3, "one"));
}

}  // namespace
