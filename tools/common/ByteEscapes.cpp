// The reading half of Text.h: \udcXX becomes a byte again.

#include <optional>

#include "tools/common/Text.h"

namespace mlk {

namespace {

constexpr size_t kEscapeLength = 6;  // \uXXXX

// DEL marks a hidden byte: two hexadecimal digits follow, or a second DEL for DEL itself. DEL may
// stand unescaped in a JSON string, and nobody uses it.
constexpr char kMark = '\x7f';

std::optional<unsigned> hexValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return {};
}

// The number of the escape \uXXXX at the position, if there is one.
std::optional<unsigned> escapeAt(std::string_view text, size_t position) {
    if (position + kEscapeLength > text.size()) {
        return {};
    }
    if (text[position] != '\\' || text[position + 1] != 'u') {
        return {};
    }
    unsigned number = 0;
    for (size_t i = 2; i < kEscapeLength; ++i) {
        const auto digit = hexValue(text[position + i]);
        if (!digit) {
            return {};
        }
        number = number << 4 | *digit;
    }
    return number;
}

bool isByte(unsigned number) {
    return number >= 0xdc80 && number <= 0xdcff;
}

bool isHighSurrogate(unsigned number) {
    return number >= 0xd800 && number <= 0xdbff;
}

bool isLowSurrogate(unsigned number) {
    return number >= 0xdc00 && number <= 0xdfff;
}

// Copies the escape that begins at the position of a JSON text, and hides a byte. Returns the
// number of characters read.
size_t copyEscape(std::string_view json, size_t position, std::string* plain, bool* hidden) {
    const auto number = escapeAt(json, position);
    if (!number) {
        // Another escape: its second character does not begin an escape.
        plain->append(json.substr(position, 2));
        return 2;
    }
    if (isByte(*number)) {
        plain->append(1, kMark).append(json.substr(position + 4, 2));
        *hidden = true;
        return kEscapeLength;
    }
    if (*number == static_cast<unsigned>(kMark)) {
        plain->append(2, kMark);
        return kEscapeLength;
    }
    const auto next = escapeAt(json, position + kEscapeLength);
    const bool pair = isHighSurrogate(*number) && next && isLowSurrogate(*next);
    const size_t length = pair ? 2 * kEscapeLength : kEscapeLength;
    plain->append(json.substr(position, length));
    return length;
}

}  // namespace

std::string withoutByteEscapes(std::string_view word) {
    std::string out;
    size_t position = 0;
    while (position < word.size()) {
        const auto number = escapeAt(word, position);
        if (number && isByte(*number)) {
            out += static_cast<char>(*number & 0xff);
            position += kEscapeLength;
        } else {
            out += word[position++];
        }
    }
    return out;
}

bool hideByteEscapes(std::string_view json, std::string* plain) {
    // Nearly no line has an escape.
    if (json.find("\\ud") == std::string_view::npos &&
        json.find("\\uD") == std::string_view::npos) {
        return false;
    }
    plain->clear();
    plain->reserve(json.size());
    bool hidden = false;
    bool inString = false;
    size_t position = 0;
    while (position < json.size()) {
        const char character = json[position];
        if (inString && character == '\\') {
            position += copyEscape(json, position, plain, &hidden);
            continue;
        }
        if (character == '"') {
            inString = !inString;
        }
        // Outside of a string the mark is an error: the parser reports it.
        plain->append(inString && character == kMark ? 2 : 1, character);
        ++position;
    }
    return hidden;
}

std::string restoreBytes(std::string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != kMark || i + 1 >= text.size()) {
            out += text[i];
        } else if (text[i + 1] == kMark) {
            out += text[++i];
        } else {
            const unsigned high = hexValue(text[i + 1]).value_or(0);
            const unsigned low = hexValue(i + 2 < text.size() ? text[i + 2] : '0').value_or(0);
            out += static_cast<char>(high << 4 | low);
            i += 2;
        }
    }
    return out;
}

}  // namespace mlk
