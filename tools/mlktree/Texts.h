#pragma once

#include <string>
#include <string_view>

#include "common/Texts.h"

namespace mlk::tree {

/** A text in double quotes, with control characters and quotes written as escapes. */
std::string quoted(std::string_view text);

/** The text without blanks, tabs, carriage returns and line feeds at both ends; a part of it. */
std::string_view trimmed(std::string_view text);

using ::vendor::morlak::mlkconfigs::V1_0::implementation::beginsWith;

/** True for a line that its author takes for a comment, whatever the format. */
bool looksLikeComment(std::string_view text);

/** The text with the ASCII letters in small. */
std::string lowerCase(std::string_view text);

/** "1 line", "3 lines" or "1,240 lines"; the plural has an "s" if none is given. */
std::string counted(size_t count, std::string_view singular, std::string_view plural = "");

/** "tvconfigs/board/b2.ini:13"; the file alone for line 0. */
std::string placeText(const std::string& file, size_t line);

}  // namespace mlk::tree
