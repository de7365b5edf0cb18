#include "tools/mlktree/Lookalikes.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "host/text/Utf8.h"

namespace mlk::tree {

namespace {

struct Range {
    char32_t first;
    char32_t last;
    char looksLike;  // of the first one
    char step;       // 1 if the next ones look like the next ASCII characters, 0 if like the same
};

constexpr Range kRanges[] = {
        {0x00A0, 0x00A0, ' ', 0},                              // no-break space
        {0x00AD, 0x00AD, '\0', 0},                             // soft hyphen
        {0x2000, 0x200A, ' ', 0},                              // spaces of other widths
        {0x200B, 0x200F, '\0', 0},                             // zero width, marks of direction
        {0x2010, 0x2015, '-', 0},                              // hyphens and dashes
        {0x2018, 0x201B, '\'', 0},                             // quotes of typography
        {0x201C, 0x201F, '"', 0},  {0x202A, 0x202E, '\0', 0},  // directions
        {0x202F, 0x202F, ' ', 0},                              // narrow no-break space
        {0x2032, 0x2032, '\'', 0},                             // prime
        {0x2033, 0x2033, '"', 0},  {0x2044, 0x2044, '/', 0},   // fraction slash
        {0x2060, 0x2064, '\0', 0},                             // word joiner
        {0x2212, 0x2212, '-', 0},                              // minus sign
        {0x2215, 0x2215, '/', 0},                              // division slash
        {0x3000, 0x3000, ' ', 0},                              // ideographic space
        {0xFEFF, 0xFEFF, '\0', 0},                             // byte order mark inside of a text
        {0xFF01, 0xFF5E, '!', 1},                              // full width
};

struct Letter {
    char32_t code;
    char looksLike;
};

// Greek and Cyrillic letters that no eye tells from Latin ones.
constexpr Letter kLetters[] = {
        {0x0391, 'A'}, {0x0392, 'B'}, {0x0395, 'E'}, {0x0396, 'Z'}, {0x0397, 'H'}, {0x0399, 'I'},
        {0x039A, 'K'}, {0x039C, 'M'}, {0x039D, 'N'}, {0x039F, 'O'}, {0x03A1, 'P'}, {0x03A4, 'T'},
        {0x03A5, 'Y'}, {0x03A7, 'X'}, {0x03BF, 'o'}, {0x0405, 'S'}, {0x0406, 'I'}, {0x0408, 'J'},
        {0x0410, 'A'}, {0x0412, 'B'}, {0x0415, 'E'}, {0x041A, 'K'}, {0x041C, 'M'}, {0x041D, 'H'},
        {0x041E, 'O'}, {0x0420, 'P'}, {0x0421, 'C'}, {0x0422, 'T'}, {0x0425, 'X'}, {0x0430, 'a'},
        {0x0435, 'e'}, {0x043E, 'o'}, {0x0440, 'p'}, {0x0441, 'c'}, {0x0443, 'y'}, {0x0445, 'x'},
        {0x0455, 's'}, {0x0456, 'i'}, {0x0458, 'j'},
};

bool isLookalike(char32_t code, char& looksLike) {
    for (const Range& range : kRanges) {
        if (code >= range.first && code <= range.last) {
            looksLike = static_cast<char>(
                    range.looksLike + (range.step != 0 ? static_cast<int>(code - range.first) : 0));
            return true;
        }
    }
    const auto* const letter = std::find_if(std::begin(kLetters), std::end(kLetters),
                                            [&](const Letter& each) { return each.code == code; });
    looksLike = letter != std::end(kLetters) ? letter->looksLike : '\0';
    return letter != std::end(kLetters);
}

}  // namespace

bool isAscii(std::string_view text) {
    constexpr uint64_t kHighBits = 0x8080808080808080U;
    size_t at = 0;
    for (uint64_t word = 0; at + sizeof(word) <= text.size(); at += sizeof(word)) {
        memcpy(&word, text.data() + at, sizeof(word));
        if ((word & kHighBits) != 0) {
            return false;
        }
    }
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

Lookalike findLookalike(std::string_view text, size_t from) {
    for (size_t at = from; at < text.size();) {
        if (static_cast<unsigned char>(text[at]) < 0x80) {
            ++at;
            continue;
        }
        const Utf8Character character = utf8At(text, at);
        Lookalike found{at, character.size, character.code, 0};
        if (isLookalike(character.code, found.looksLike)) {
            return found;
        }
        at += std::max<size_t>(character.size, 1);
    }
    return {};
}

std::string withoutLookalikes(std::string_view text) {
    std::string plain;
    size_t at = 0;
    for (Lookalike found = findLookalike(text); found.size > 0; found = findLookalike(text, at)) {
        plain += text.substr(at, found.at - at);
        if (found.looksLike != '\0') {
            plain += found.looksLike;
        }
        at = found.at + found.size;
    }
    return plain.append(text.substr(at));
}

bool isMeantInAscii(std::string_view text) {
    const auto isAlnum = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x80 && std::isalnum(byte) != 0;
    };
    return std::any_of(text.begin(), text.end(), isAlnum) && isAscii(withoutLookalikes(text));
}

std::string describe(std::string_view text, const Lookalike& found) {
    std::array<char, 16> number{};
    (void)snprintf(number.data(), number.size(), "U+%04X", static_cast<unsigned>(found.code));
    const std::string code = std::string(" (") + number.data() + ")";
    if (found.looksLike == '\0') {
        return "an invisible character" + code;
    }
    if (found.looksLike == ' ') {
        return "a space" + code + " that is no blank";
    }
    const std::string like = found.looksLike == '"'    ? "a quote"
                             : found.looksLike == '\'' ? "an apostrophe"
                                                       : std::string("\"") + found.looksLike + "\"";
    return std::string(text.substr(found.at, found.size)) + code + ", which only looks like " +
           like + ",";
}

}  // namespace mlk::tree
