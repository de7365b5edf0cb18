#pragma once

#include <string>
#include <vector>

namespace mlk::ctl {

/// Rows of cells for a person to read. A cell holds one line.
using Table = std::vector<std::vector<std::string>>;

/// The rows as lines: the cells of a column begin below each other, two blanks behind the longest
/// one of the column before; no blanks at the end of a line. Width is counted in characters of
/// UTF-8; the last column of a row counts for nobody.
std::string aligned(const Table& table);

}  // namespace mlk::ctl
