#include "tools/common/Utf8.h"

#include <array>
#include <cstdint>

namespace mlk {

namespace {

// The range of the second byte depends on the first: it excludes overlong forms, surrogates and
// code points beyond U+10FFFF.
struct Row {
    uint8_t first, last;              // range of the first byte
    uint8_t bits;                     // of the first byte, that belong to the code point
    size_t size;                      // of the character
    uint8_t secondFirst, secondLast;  // range of the second byte
};
constexpr std::array<Row, 9> kRows = {{{0x00, 0x7f, 0x7f, 1, 0x00, 0x00},
                                       {0xc2, 0xdf, 0x1f, 2, 0x80, 0xbf},
                                       {0xe0, 0xe0, 0x0f, 3, 0xa0, 0xbf},
                                       {0xe1, 0xec, 0x0f, 3, 0x80, 0xbf},
                                       {0xed, 0xed, 0x0f, 3, 0x80, 0x9f},
                                       {0xee, 0xef, 0x0f, 3, 0x80, 0xbf},
                                       {0xf0, 0xf0, 0x07, 4, 0x90, 0xbf},
                                       {0xf1, 0xf3, 0x07, 4, 0x80, 0xbf},
                                       {0xf4, 0xf4, 0x07, 4, 0x80, 0x8f}}};

uint8_t byteAt(std::string_view text, size_t position) {
    return static_cast<uint8_t>(text[position]);
}

}  // namespace

Utf8Character utf8At(std::string_view text, size_t position) {
    const uint8_t lead = byteAt(text, position);
    for (const Row& row : kRows) {
        if (lead < row.first || lead > row.last) {
            continue;
        }
        if (position + row.size > text.size()) {
            return {};
        }
        char32_t code = lead & row.bits;
        for (size_t i = 1; i < row.size; ++i) {
            const uint8_t byte = byteAt(text, position + i);
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

size_t invalidUtf8At(std::string_view text) {
    for (size_t at = 0; at < text.size();) {
        if (byteAt(text, at) < 0x80) {  // most bytes
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
