#include "tools/items/ItemsPage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace mlk {
namespace {

TEST(ItemsPage, IsTheOneThatIsCommitted) {
    const char* const tree = getenv("MLK_SOURCE_DIR");
    ASSERT_NE(tree, nullptr);
    std::ifstream stream(std::string(tree) + "/docs/items.md");
    const std::string committed{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_TRUE(committed == itemsPage())
            << "docs/items.md is out of date: cmake --build build/default --target reference";
}

// A table's row is one line with as many cells as its heading.
TEST(ItemsPage, HasTablesWhoseRowsAreWhole) {
    const std::string page = itemsPage();
    size_t rows = 0;
    size_t cells = 0;
    for (size_t begin = 0; begin < page.size();) {
        const size_t end = page.find('\n', begin);
        const std::string line = page.substr(begin, end - begin);
        begin = end + 1;
        if (line.empty() || line.front() != '|') {
            cells = 0;
            continue;
        }
        const auto bars = static_cast<size_t>(std::count(line.begin(), line.end(), '|'));
        cells = cells == 0 ? bars : cells;
        EXPECT_EQ(bars, cells) << line;
        EXPECT_EQ(line.back(), '|') << line;
        ++rows;
    }
    EXPECT_GT(rows, 150U);
}

}  // namespace
}  // namespace mlk
