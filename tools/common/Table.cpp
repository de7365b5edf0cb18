#include "tools/common/Table.h"

#include <algorithm>

#include "tools/common/Wrap.h"

namespace mlk {

std::string aligned(const Table& table) {
    std::vector<size_t> widths;
    for (const auto& row : table) {
        if (row.size() > widths.size()) {
            widths.resize(row.size());
        }
        for (size_t i = 0; i + 1 < row.size(); ++i) {
            widths[i] = std::max(widths[i], columnsOf(row[i]));
        }
    }
    std::string text;
    for (const auto& row : table) {
        std::string line;
        for (size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size()) {
                line.append(widths[i] + 2 - columnsOf(row[i]), ' ');
            }
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

}  // namespace mlk
