#include "tools/common/Text.h"

#include <algorithm>
#include <array>

namespace mlk {

namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

uint8_t byteAt(std::string_view text, size_t position) {
    return static_cast<uint8_t>(text[position]);
}

}  // namespace

// The range of the second byte depends on the first: it excludes overlong forms, surrogates and
// code points beyond U+10FFFF.
size_t sequenceLength(std::string_view text, size_t position) {
    struct Row {
        uint8_t first, last;              // range of the first byte
        size_t length;                    // of the sequence
        uint8_t secondFirst, secondLast;  // range of the second byte
    };
    static constexpr std::array<Row, 9> kRows = {{{0x00, 0x7f, 1, 0x00, 0x00},
                                                  {0xc2, 0xdf, 2, 0x80, 0xbf},
                                                  {0xe0, 0xe0, 3, 0xa0, 0xbf},
                                                  {0xe1, 0xec, 3, 0x80, 0xbf},
                                                  {0xed, 0xed, 3, 0x80, 0x9f},
                                                  {0xee, 0xef, 3, 0x80, 0xbf},
                                                  {0xf0, 0xf0, 4, 0x90, 0xbf},
                                                  {0xf1, 0xf3, 4, 0x80, 0xbf},
                                                  {0xf4, 0xf4, 4, 0x80, 0x8f}}};
    const uint8_t lead = byteAt(text, position);
    for (const Row& row : kRows) {
        if (lead < row.first || lead > row.last) {
            continue;
        }
        if (position + row.length > text.size()) {
            return 0;
        }
        for (size_t i = 1; i < row.length; ++i) {
            const uint8_t byte = byteAt(text, position + i);
            const bool fits = i == 1 ? byte >= row.secondFirst && byte <= row.secondLast
                                     : byte >= 0x80 && byte <= 0xbf;
            if (!fits) {
                return 0;
            }
        }
        return row.length;
    }
    return 0;
}

namespace {

void appendHexByte(std::string& out, std::string_view prefix, uint8_t byte) {
    out += prefix;
    out += kHexDigits[byte >> 4];
    out += kHexDigits[byte & 0xf];
}

void appendControl(std::string& out, uint8_t byte) {
    switch (byte) {
        case '\b':
            out += "\\b";
            break;
        case '\f':
            out += "\\f";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            appendHexByte(out, "\\u00", byte);
    }
}

bool isPlain(char byte, bool inQuotes) {
    return byte >= 0x20 && byte < 0x7f && !(inQuotes && (byte == '"' || byte == '\\'));
}

// inQuotes: also escapes quotes and backslashes. DEL and the C1 controls are commands to a
// terminal.
void appendEscaped(std::string& out, std::string_view text, bool inQuotes) {
    size_t position = 0;
    while (true) {
        // Most texts have nothing else.
        const size_t plain = position;
        while (position < text.size() && isPlain(text[position], inQuotes)) {
            ++position;
        }
        out.append(text, plain, position - plain);
        if (position == text.size()) {
            return;
        }
        const size_t length = sequenceLength(text, position);
        const uint8_t byte = byteAt(text, position);
        if (length == 0) {
            appendHexByte(out, "\\udc", byte);
            ++position;
            continue;
        }
        const bool isC1 = byte == 0xc2 && length == 2 && byteAt(text, position + 1) < 0xa0;
        if (byte < 0x20) {
            appendControl(out, byte);
        } else if (inQuotes && (byte == '"' || byte == '\\')) {
            out += '\\';
            out += text[position];
        } else if (byte == 0x7f || isC1) {
            appendHexByte(out, "\\u00", byteAt(text, position + length - 1));
        } else {
            out += text.substr(position, length);
        }
        position += length;
    }
}

}  // namespace

void appendJsonString(std::string& out, std::string_view text) {
    out += '"';
    appendEscaped(out, text, true);
    out += '"';
}

std::string jsonString(std::string_view text) {
    std::string out;
    appendJsonString(out, text);
    return out;
}

std::string excerpt(std::string_view text) {
    constexpr size_t kLimit = 60;
    if (text.size() <= kLimit) {
        return jsonString(text);
    }
    // Do not cut a character.
    size_t end = 0;
    while (true) {
        const size_t length = std::max<size_t>(sequenceLength(text, end), 1);
        if (end + length > kLimit) {
            break;
        }
        end += length;
    }
    return jsonString(text.substr(0, end)) + "...";
}

std::string printable(std::string_view text) {
    std::string out;
    appendEscaped(out, text, false);
    return out;
}

std::string forTerminal(std::string_view text) {
    std::string out;
    size_t begin = 0;
    while (begin < text.size()) {
        const size_t end = std::min(text.find_first_of("\n\t", begin), text.size());
        appendEscaped(out, text.substr(begin, end - begin), false);
        if (end < text.size()) {
            out += text[end];
        }
        begin = end + 1;
    }
    return out;
}

std::string base64(const uint8_t* bytes, size_t size) {
    static constexpr std::string_view kDigits =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    out.reserve((size + 2) / 3 * 4);
    for (size_t i = 0; i < size; i += 3) {
        const size_t count = std::min<size_t>(size - i, 3);
        uint32_t group = 0;
        for (size_t j = 0; j < 3; ++j) {
            group = group << 8 | (j < count ? bytes[i + j] : 0U);
        }
        for (size_t j = 0; j < 4; ++j) {
            out += j <= count ? kDigits[group >> (18 - 6 * j) & 0x3f] : '=';
        }
    }
    return out;
}

std::string joined(const std::vector<std::string>& texts) {
    std::string out;
    for (const std::string& text : texts) {
        if (!out.empty()) {
            out += ", ";
        }
        out += text;
    }
    return out;
}

}  // namespace mlk
