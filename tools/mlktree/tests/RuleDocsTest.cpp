// Holds the tables of traps in the documents against the rules.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include "host/testing/Process.h"
#include "tools/mlktree/Rule.h"

namespace mlk::tree {

namespace {

constexpr const char* kHarmless = "harmless";

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    bool isCode = false;
    for (const char c : line) {
        isCode ^= c == '`';
        if (c == '|' && !isCode) {
            cells.emplace_back();
        } else if (!cells.empty()) {
            cells.back() += c;
        }
    }
    cells.pop_back();  // after the last "|"
    for (std::string& cell : cells) {
        const size_t begin = cell.find_first_not_of(' ');
        cell = begin == std::string::npos
                       ? ""
                       : cell.substr(begin, cell.find_last_not_of(' ') - begin + 1);
    }
    return cells;
}

struct Row {
    std::string text;
    std::string rules;    // the last cell
    bool isTrap = false;  // of a table with the column "trap"
};

// The rows of the tables whose last column is "rule".
std::vector<Row> rowsOf(const std::string& document) {
    std::ifstream stream(mlk::testing::sourceDir() + "/" + document);
    std::vector<Row> rows;
    std::vector<std::string> heading;
    for (std::string line; std::getline(stream, line);) {
        if (line.rfind("| ", 0) != 0) {
            heading = line.rfind("|--", 0) == 0 ? heading : std::vector<std::string>();
            continue;
        }
        const std::vector<std::string> cells = cellsOf(line);
        if (heading.empty()) {
            heading = cells;
        } else if (heading.back() == "rule") {
            const bool isTrap = std::find(heading.begin(), heading.end(), "trap") != heading.end();
            rows.push_back({line, cells.back(), isTrap});
        }
    }
    return rows;
}

class RuleDocs : public ::testing::TestWithParam<const char*> {};

TEST_P(RuleDocs, NameRulesThatExist) {
    const std::regex name("`([^`]+)`");
    size_t named = 0;
    for (const Row& row : rowsOf(GetParam())) {
        for (std::sregex_iterator each(row.rules.begin(), row.rules.end(), name), end; each != end;
             ++each) {
            EXPECT_NE(findRule((*each)[1].str()), nullptr) << row.text;
            ++named;
        }
    }
    EXPECT_GT(named, 10U);
}

TEST_P(RuleDocs, HaveARuleForEachTrap) {
    size_t traps = 0;
    for (const Row& row : rowsOf(GetParam())) {
        if (row.isTrap) {
            ++traps;
            EXPECT_TRUE(row.rules == kHarmless || row.rules.find('`') == 0) << row.text;
        }
    }
    EXPECT_GT(traps, 10U);
}

INSTANTIATE_TEST_SUITE_P(Documents, RuleDocs,
                         ::testing::Values("docs/formats.md", "samples/README.md"),
                         [](const auto& param) {
                             return std::string(param.param).find("docs") == 0 ? "formats"
                                                                               : "sample";
                         });

}  // namespace

}  // namespace mlk::tree
