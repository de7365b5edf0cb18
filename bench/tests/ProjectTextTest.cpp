#include "bench/ProjectText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "bench/ProductLine.h"
#include "projectconfigs/ProjectParser.h"

namespace mlk::bench {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::ConfigKey;
using vendor::morlak::mlkconfigs::V1_0::implementation::ProjectParser;

size_t linesOf(const std::string& text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

class SizesTest : public ::testing::TestWithParam<size_t> {};

TEST_P(SizesTest, FileHasSoManyLines) {
    const ProjectText project = projectOfLines(GetParam());
    EXPECT_EQ(project.lines, GetParam());
    EXPECT_EQ(GetParam(), linesOf(project.text));
    // The other lines are sections, comments and empty lines, as in real files.
    EXPECT_GT(project.items.size(), GetParam() * 6 / 10);
    EXPECT_LT(project.items.size(), GetParam() * 9 / 10);
}

TEST_P(SizesTest, FileHasSoManyItemsAndNoneTwice) {
    const ProjectText project = projectOfItems(GetParam());
    EXPECT_EQ(project.lines, linesOf(project.text));
    ASSERT_EQ(project.items.size(), GetParam());
    std::set<std::pair<std::string, std::string>> keys;
    for (const Item& item : project.items) {
        keys.emplace(item.category, item.key);
    }
    EXPECT_EQ(keys.size(), GetParam());
}

TEST_P(SizesTest, StoreHoldsJustItsItems) {
    const ProjectText project = projectOfItems(GetParam());
    const testing::HostSet set;
    const std::string customer = writeProject(set, project);
    const std::string tvconfigs = set.tvconfigs();
    ProjectParser parser("/tvdata", tvconfigs.c_str(), "/impdata");
    parser.update(customer.c_str(), 1, "DEFAULT_BOARD_ID");
    std::set<std::string> categories;
    for (const Item& item : project.items) {
        categories.insert(item.category);
        std::string value = item.value;
        if (value.rfind("/tvconfigs", 0) == 0) {
            value.replace(0, 10, tvconfigs);
        }
        EXPECT_EQ(parser.getInfo(ConfigKey(item.category, item.key)), value) << item.key;
    }
    size_t held = 0;
    for (const std::string& category : categories) {
        held += parser.getInfosByCategory(category).size();
    }
    EXPECT_EQ(project.items.size(), held);
}

INSTANTIATE_TEST_SUITE_P(, SizesTest, ::testing::Values(100, 500, 5000));

TEST(ProjectTextTest, SameFileEveryTime) {
    EXPECT_EQ(projectOfLines(1000).text, projectOfLines(1000).text);
}

TEST(ProjectTextTest, ManyItemsNameFiles) {
    const ProjectText project = projectOfItems(1000);
    const auto paths = std::count_if(project.items.begin(), project.items.end(),
                                     [](const Item& item) { return isPath(item.value); });
    EXPECT_GT(paths, 150);
    EXPECT_LT(paths, 300);
}

}  // namespace

}  // namespace mlk::bench
