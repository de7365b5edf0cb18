#include "tools/common/Text.h"

#include <algorithm>
#include <cstdint>

#include "host/text/Utf8.h"

namespace mlk {

namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

uint8_t byteAt(std::string_view text, size_t position) {
    return static_cast<uint8_t>(text[position]);
}

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
        const size_t length = utf8At(text, position).size;
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
        const size_t length = std::max<size_t>(utf8At(text, end).size, 1);
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
