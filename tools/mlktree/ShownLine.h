#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mlk::tree {

/** A source line for a terminal, and where the caret below it stands. */
struct ShownLine {
    std::string text;
    size_t caret = 0; /**< display columns before the caret */
};

/**
 * Makes a source line fit for a terminal: tabs become blanks, control characters and those that
 * change the direction of text become \uXXXX, bytes that are not UTF-8 become \udcXX. A long line
 * is cut to the part around the column, with "..." for what is left out.
 *
 * @param bytes   the line as it stands in the file
 * @param column  in bytes, from 1; 0 for the first that is no blank
 * @param width   of the part that is shown, in display columns
 */
ShownLine shownLine(std::string_view bytes, size_t column, size_t width = 100);

/** A column in bytes as the number of code points before it, from 1; 0 stays 0. */
size_t codePointColumn(std::string_view bytes, size_t column);

/**
 * A text for a terminal in one line: as printable(), and characters that change the direction of
 * text or have no width are escaped too.
 */
std::string shownText(std::string_view text);

}  // namespace mlk::tree
