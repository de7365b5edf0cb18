#include "tools/mlktree/Texts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

namespace mlk::tree {

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

bool looksLikeComment(std::string_view text) {
    const std::string_view start = trimmed(text);
    return beginsWith(start, "#") || beginsWith(start, ";") || beginsWith(start, "//");
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::string counted(size_t count, std::string_view singular, std::string_view plural) {
    std::string text = std::to_string(count);
    for (size_t at = text.size(); at > 3;) {
        at -= 3;
        text.insert(at, ",");
    }
    text.append(" ").append(count == 1 || plural.empty() ? singular : plural);
    return count != 1 && plural.empty() ? text + "s" : text;
}

std::string placeText(const std::string& file, size_t line) {
    return line != 0 ? file + ":" + std::to_string(line) : file;
}

}  // namespace mlk::tree
