#include "tools/mlktree/rules/Texts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

namespace mlk::tree {

namespace {

// The length of the valid UTF-8 character at the beginning, or 0.
size_t characterAt(std::string_view text) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80) {
        return 1;
    }
    const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) {
        return 0;
    }
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) {
            return 0;
        }
    }
    // Overlong forms, surrogates, and code points above U+10FFFF.
    const bool isWrong = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F) ||
                         (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F);
    return isWrong ? 0 : length;
}

}  // namespace

std::string quoted(std::string_view text) {
    constexpr size_t kMost = 60;
    std::string result = "\"";
    for (const char c : text.substr(0, kMost)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\t') {
            result += "\\t";
        } else if (c == '\r') {
            result += "\\r";
        } else if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            std::array<char, 5> escape{};
            (void)snprintf(escape.data(), escape.size(), "\\x%02X", static_cast<unsigned>(byte));
            result += escape.data();
        } else {
            result += c;
        }
    }
    return result + (text.size() > kMost ? "...\"" : "\"");
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

bool beginsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool looksLikeComment(std::string_view text) {
    const std::string_view start = trimmed(text);
    return beginsWith(start, "#") || beginsWith(start, ";") || beginsWith(start, "//");
}

size_t invalidUtf8At(std::string_view text) {
    for (size_t at = 0; at < text.size();) {
        const size_t length = characterAt(text.substr(at));
        if (length == 0) {
            return at;
        }
        at += length;
    }
    return std::string_view::npos;
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::string counted(size_t count, std::string_view singular, std::string_view plural) {
    return std::to_string(count) + " " + std::string(count == 1 ? singular : plural);
}

}  // namespace mlk::tree
