#pragma once

#include <string>
#include <vector>

namespace mlk {

/** Rows of cells for a person to read. A cell holds one line. */
using Table = std::vector<std::vector<std::string>>;

/**
 * The rows as lines. The cells of a column start below each other, two blanks after the longest
 * cell of the column before; lines have no trailing blanks. Width is counted in UTF-8 characters;
 * the last cell of a row widens no column.
 */
std::string aligned(const Table& table);

}  // namespace mlk
