#pragma once

#include <cstddef>
#include <string_view>

namespace mlk {

/** The three bytes that some editors write at the beginning of a UTF-8 file. */
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/** One character of a text in UTF-8. */
struct Utf8Character {
    size_t size = 0;   /**< in bytes; 0 if the bytes are not valid */
    char32_t code = 0; /**< its number in Unicode; 0 if the bytes are not valid */
};

/**
 * The character at a position of the text. Surrogates, overlong forms and code points beyond
 * U+10FFFF are not valid.
 *
 * @param position  of a byte of the text
 */
Utf8Character utf8At(std::string_view text, size_t position);

/** The position of the first byte that is not part of valid UTF-8, or npos. */
size_t invalidUtf8At(std::string_view text);

}  // namespace mlk
