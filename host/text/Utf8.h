#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// Only a header, so that tools which a platform builds take it without a library of a host.

namespace mlk {

/** The three bytes that some editors write at the beginning of a UTF-8 file. */
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/** One character of a text in UTF-8. */
struct Utf8Character {
    size_t size = 0;   /**< in bytes; 0 if the bytes are not valid */
    char32_t code = 0; /**< its number in Unicode; 0 if the bytes are not valid */
};

namespace utf8 {

/**
 * The characters that begin with one of some bytes. The range of the second byte depends on the
 * first: it excludes overlong forms, surrogates and code points beyond U+10FFFF.
 */
struct Row {
    uint8_t first, last;             /**< range of the first byte */
    uint8_t bits;                    /**< of the first byte, that belong to the code point */
    size_t size;                     /**< of the character */
    uint8_t secondFirst, secondLast; /**< range of the second byte */
};

inline constexpr std::array<Row, 9> kRows = {{{0x00, 0x7f, 0x7f, 1, 0x00, 0x00},
                                              {0xc2, 0xdf, 0x1f, 2, 0x80, 0xbf},
                                              {0xe0, 0xe0, 0x0f, 3, 0xa0, 0xbf},
                                              {0xe1, 0xec, 0x0f, 3, 0x80, 0xbf},
                                              {0xed, 0xed, 0x0f, 3, 0x80, 0x9f},
                                              {0xee, 0xef, 0x0f, 3, 0x80, 0xbf},
                                              {0xf0, 0xf0, 0x07, 4, 0x90, 0xbf},
                                              {0xf1, 0xf3, 0x07, 4, 0x80, 0xbf},
                                              {0xf4, 0xf4, 0x07, 4, 0x80, 0x8f}}};

/** A byte of the text, as a number. */
inline uint8_t byteAt(std::string_view text, size_t position) {
    return static_cast<uint8_t>(text[position]);
}

}  // namespace utf8

/**
 * The character at a position of the text. Surrogates, overlong forms and code points beyond
 * U+10FFFF are not valid. Allocates nothing.
 *
 * @param position  of a byte of the text
 */
inline Utf8Character utf8At(std::string_view text, size_t position) {
    const uint8_t lead = utf8::byteAt(text, position);
    for (const utf8::Row& row : utf8::kRows) {
        if (lead < row.first || lead > row.last) {
            continue;
        }
        if (position + row.size > text.size()) {
            return {};
        }
        char32_t code = lead & row.bits;
        for (size_t i = 1; i < row.size; ++i) {
            const uint8_t byte = utf8::byteAt(text, position + i);
            const bool fits = i == 1 ? byte >= row.secondFirst && byte <= row.secondLast
                                     : byte >= 0x80 && byte <= 0xbf;
            if (!fits) {
                return {};
            }
            code = code << 6U | (byte & 0x3fU);
        }
        return {row.size, code};
    }
    return {};
}

/** The position of the first byte that is not part of valid UTF-8, or npos. Allocates nothing. */
inline size_t invalidUtf8At(std::string_view text) {
    for (size_t at = 0; at < text.size();) {
        if (utf8::byteAt(text, at) < 0x80) {  // most bytes
            ++at;
            continue;
        }
        const size_t size = utf8At(text, at).size;
        if (size == 0) {
            return at;
        }
        at += size;
    }
    return std::string_view::npos;
}

}  // namespace mlk
