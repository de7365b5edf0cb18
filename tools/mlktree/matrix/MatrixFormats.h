#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/common/TextSink.h"
#include "tools/mlktree/matrix/Matrix.h"

namespace mlk::tree {

/** How the text of a matrix is laid out. */
enum class MatrixLayout {
    AUTO,  /**< a table, unless that would need more than kMostBlocks blocks */
    TABLE, /**< columns side by side, as many as fit, and the others in blocks below */
    LIST,  /**< each row with its values, and with the sets that have them */
};

constexpr size_t kMostBlocks = 3;

/** How to print a matrix. */
struct MatrixStyle {
    MatrixLayout layout = MatrixLayout::AUTO; /**< for the text */
    size_t width = 80;                        /**< columns of a terminal; for the text */
    bool isColoured = false;
};

/** Prints a matrix. Texts of the tree are no commands to who reads the output. */
using MatrixFormat = void (*)(const Matrix& matrix, const MatrixStyle& style, const TextSink& sink);

/** For a person. Long values go on in further lines. */
void matrixText(const Matrix& matrix, const MatrixStyle& style, const TextSink& sink);

/** The layout LIST. */
void matrixList(const Matrix& matrix, const MatrixStyle& style, const TextSink& sink);

/** One object with a line for each row: its values and the sets that have them. */
void matrixJson(const Matrix& matrix, const MatrixStyle& style, const TextSink& sink);

/** A table as in RFC 4180; an item that a set does not have is empty, an empty value is `""`. */
void matrixCsv(const Matrix& matrix, const MatrixStyle& style, const TextSink& sink);

/** A table for a comment on a review. */
void matrixMarkdown(const Matrix& matrix, const MatrixStyle& style, const TextSink& sink);

/** All formats by name; the first is the default. */
const std::vector<std::pair<std::string_view, MatrixFormat>>& matrixFormats();

/** A cell for a person: "-" for nothing, `""` for an empty text. */
std::string cellText(const MatrixCell& cell);

/** The name of each column. */
std::vector<std::string> columnNames(const Matrix& matrix);

/** "A", ..., "Z", "AA", ...: the letters of a column. */
std::string lettersOf(size_t column);

}  // namespace mlk::tree
