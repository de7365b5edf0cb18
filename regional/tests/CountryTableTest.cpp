#include "regional/CountryTable.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

TEST(CountryTableTest, EveryNameTakesTheNextValueButOneThatIsNeverUsed) {
    const NameTable table = countryNames();
    int32_t expected = -1;
    for (const std::string_view name : kCountryNames) {
        if (expected == 161) {
            ++expected;
        }
        EXPECT_EQ(table.find(name), expected) << name;
        std::string found;
        EXPECT_TRUE(table.firstNameOf(expected, found));
        EXPECT_EQ(found, name);
        ++expected;
    }
    EXPECT_EQ(expected, 186);
    std::string found;
    EXPECT_FALSE(table.firstNameOf(161, found));
    EXPECT_FALSE(table.firstNameOf(186, found));
    EXPECT_FALSE(table.firstNameOf(-2, found));
}

TEST(CountryTableTest, TellingValues) {
    const NameTable table = countryNames();
    const std::map<std::string, int32_t> telling = {{"DEFAULT", -1},
                                                    {"ANDORRA", 0},
                                                    {"AUSTRALIA", 1},
                                                    {"BRAZIL", 5},
                                                    {"CANADA", 6},
                                                    {"CHINA", 7},
                                                    {"CZECH", 9},
                                                    {"FINLAND", 12},
                                                    {"GERMANY", 14},
                                                    {"JAPAN", 21},
                                                    {"UNITED_KINGDOM", 43},
                                                    {"USA", 44},
                                                    {"ARE", 56},
                                                    {"ASIA_NONE", 67},
                                                    {"RUSSIA", 131},
                                                    {"UNITED_ARAB_EMIRATES", 147},
                                                    {"AZERBAIJAN", 153},
                                                    {"SAMOA", 160},
                                                    {"MALI", 162},
                                                    {"NIGER", 170},
                                                    {"PAPUA_NEW_GUINEA", 185}};
    for (const auto& [name, value] : telling) {
        EXPECT_EQ(table.find(name), value) << name;
    }
}

TEST(CountryTableTest, NamesAreDistinctCapitals) {
    std::set<std::string_view> names;
    for (const std::string_view name : kCountryNames) {
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_EQ(name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ_"), std::string_view::npos);
    }
    EXPECT_EQ(names.size(), 186U);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
