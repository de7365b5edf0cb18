#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mlk {

/**
 * The number of columns that a text takes: one for each UTF-8 character. In malformed text, a
 * continuation byte takes none, and any other byte takes one.
 */
size_t columnsOf(std::string_view text);

/**
 * A text as lines of at most `width` columns (1 or more), at least one line. A line ends at a
 * blank, which is dropped, or after one of the `breaks`; only a piece that is longer than a line is
 * cut elsewhere, never inside a character.
 */
std::vector<std::string> wrapped(std::string_view text, size_t width, std::string_view breaks = {});

/**
 * The same as one text: every line but the first begins with `indent` blanks, the width counts
 * them, and each line ends with a newline. `begin` stands in front of the first line.
 */
std::string paragraph(const std::string& begin, std::string_view text, size_t indent, size_t width);

}  // namespace mlk
