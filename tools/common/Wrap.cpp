#include "tools/common/Wrap.h"

#include <algorithm>

namespace mlk {

namespace {

bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
}

// The number of bytes of the first `columns` characters.
size_t bytesOf(std::string_view text, size_t columns) {
    size_t at = 0;
    while (at < text.size()) {
        if (beginsCharacter(text[at])) {
            if (columns == 0) {
                break;
            }
            --columns;
        }
        ++at;
    }
    return at;
}

// The pieces that no line end may divide. Each ends with the blank or the break that follows it.
std::vector<std::string_view> piecesOf(std::string_view text, std::string_view breaks) {
    std::vector<std::string_view> pieces;
    size_t begin = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == ' ' || breaks.find(text[at]) != std::string_view::npos) {
            pieces.push_back(text.substr(begin, at + 1 - begin));
            begin = at + 1;
        }
    }
    if (begin < text.size()) {
        pieces.push_back(text.substr(begin));
    }
    return pieces;
}

std::string_view withoutBlanks(std::string_view line) {
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

}  // namespace

size_t columnsOf(std::string_view text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
}

std::vector<std::string> wrapped(std::string_view text, size_t width, std::string_view breaks) {
    std::vector<std::string> lines(1);
    const auto startLine = [&lines] {
        lines.back() = withoutBlanks(lines.back());
        lines.emplace_back();
    };
    for (std::string_view piece : piecesOf(text, breaks)) {
        if (!lines.back().empty() &&
            columnsOf(lines.back()) + columnsOf(withoutBlanks(piece)) > width) {
            startLine();
        }
        while (columnsOf(withoutBlanks(piece)) > width) {
            const size_t cut = bytesOf(piece, width);
            lines.back() = piece.substr(0, cut);
            piece.remove_prefix(cut);
            startLine();
        }
        lines.back() += piece;
    }
    lines.back() = withoutBlanks(lines.back());
    if (lines.size() > 1 && lines.back().empty()) {
        lines.pop_back();
    }
    return lines;
}

std::string paragraph(const std::string& begin, std::string_view text, size_t indent,
                      size_t width) {
    std::string out = begin;
    bool isFirst = true;
    for (const std::string& line : wrapped(text, width - indent)) {
        out += (isFirst ? std::string() : std::string(indent, ' ')) + line + '\n';
        isFirst = false;
    }
    return out;
}

}  // namespace mlk
