#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mlk::tree {

/** A character that people take for another one, or do not see. */
struct Lookalike {
    size_t at = 0;      /**< its first byte in the text */
    size_t size = 0;    /**< in bytes */
    char32_t code = 0;  /**< its number in Unicode */
    char looksLike = 0; /**< the ASCII character that is meant; NUL for one that nobody sees */
};

/** True if all bytes are below 0x80. */
bool isAscii(std::string_view text);

/** The first lookalike from the position `from` on; its size is 0 if the text has no more. */
Lookalike findLookalike(std::string_view text, size_t from = 0);

/** The text with the characters that are meant. */
std::string withoutLookalikes(std::string_view text);

/** True for a text that is meant in ASCII and has some of it: not for one in another script. */
bool isMeantInAscii(std::string_view text);

/** `a no-break space (U+00A0) looks like a blank`: for the beginning of a message. */
std::string describe(std::string_view text, const Lookalike& found);

}  // namespace mlk::tree
