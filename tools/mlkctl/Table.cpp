#include "tools/mlkctl/Table.h"

#include <algorithm>

namespace mlk::ctl {

namespace {

size_t widthOf(const std::string& cell) {
    return static_cast<size_t>(std::count_if(cell.begin(), cell.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
    }));
}

}  // namespace

std::string aligned(const Table& table) {
    std::vector<size_t> widths;
    for (const auto& row : table) {
        if (row.size() > widths.size()) {
            widths.resize(row.size());
        }
        for (size_t i = 0; i + 1 < row.size(); ++i) {
            widths[i] = std::max(widths[i], widthOf(row[i]));
        }
    }
    std::string text;
    for (const auto& row : table) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size()) {
                line.append(widths[i] + 2 - widthOf(row[i]), ' ');
            }
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

}  // namespace mlk::ctl
