#include "tools/mlktree/ShownLine.h"

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cwchar>
#include <vector>

#include "host/text/Utf8.h"
#include "tools/common/Text.h"

namespace mlk::tree {

namespace {

constexpr size_t kTab = 4;

// The bytes of one character of the text, or one byte that is no UTF-8.
std::string_view nextPiece(std::string_view text, size_t at) {
    return text.substr(at, std::max<size_t>(utf8At(text, at).size, 1));
}

// Characters that a reader cannot see, but that move or hide others.
bool isHidden(uint32_t code) {
    struct Range {
        uint32_t first, last;
    };
    constexpr Range kHidden[] = {{0x061c, 0x061c}, {0x200b, 0x200f},  {0x2028, 0x202e},
                                 {0x2060, 0x206f}, {0xfeff, 0xfeff},  {0xfff9, 0xfffb},
                                 {0xfffe, 0xffff}, {0xe0000, 0xe007f}};
    for (const Range& range : kHidden) {
        if (code >= range.first && code <= range.last) {
            return true;
        }
    }
    return false;
}

std::string escaped(uint32_t code) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string out = code > 0xffff ? "\\U" : "\\u";
    for (int shift = code > 0xffff ? 28 : 12; shift >= 0; shift -= 4) {
        out += kDigits[code >> static_cast<unsigned>(shift) & 0xfU];
    }
    return out;
}

std::string shownPiece(std::string_view piece) {
    std::string text = printable(piece);
    if (text != piece || piece.size() < 2) {
        return text;
    }
    const uint32_t code = utf8At(piece, 0).code;
    return isHidden(code) ? escaped(code) : text;
}

// Asks the C library with a locale of its own, because the program's is that of the bytes.
size_t widthOf(uint32_t code) {
    if (code < 0x7f) {
        return 1;
    }
    static const locale_t kUtf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{});
    if (kUtf8 == locale_t{}) {
        return 1;
    }
    const locale_t former = uselocale(kUtf8);
    const int width = wcwidth(static_cast<wchar_t>(code));
    uselocale(former);
    return width < 0 ? 1 : static_cast<size_t>(width);
}

struct Cell {
    std::string text;
    size_t column;  // display columns before it
};

// Where the window begins, so that the caret is well inside.
size_t windowBegin(size_t caret, size_t total, size_t width) {
    if (total <= width || caret < width * 3 / 4) {
        return 0;
    }
    const size_t begin = caret - width / 2;
    return begin + width > total ? total - width : begin;
}

}  // namespace

std::string shownText(std::string_view text) {
    std::string out;
    for (size_t at = 0; at < text.size();) {
        const std::string_view piece = nextPiece(text, at);
        out += shownPiece(piece);
        at += piece.size();
    }
    return out;
}

size_t codePointColumn(std::string_view bytes, size_t column) {
    size_t count = column == 0 ? 0 : 1;
    for (size_t at = 0; at < bytes.size() && at + 1 < column; ++count) {
        at += nextPiece(bytes, at).size();
    }
    return count;
}

ShownLine shownLine(std::string_view bytes, size_t column, size_t width) {
    constexpr size_t kMostBytes = 16384;  // a longer line shows nothing more
    while (!bytes.empty() && (bytes.back() == '\n' || bytes.back() == '\r')) {
        bytes.remove_suffix(1);
    }
    if (column == 0) {
        const size_t begin = bytes.find_first_not_of(" \t");
        column = begin == std::string_view::npos ? 1 : begin + 1;
    }
    if (bytes.size() > kMostBytes && column <= kMostBytes) {
        bytes = bytes.substr(0, kMostBytes);
    }
    std::vector<Cell> cells;
    size_t total = 0;
    size_t caret = 0;
    bool isCaretSet = false;
    for (size_t at = 0; at < bytes.size();) {
        const std::string_view piece = nextPiece(bytes, at);
        if (!isCaretSet && at + piece.size() >= column) {
            caret = total;
            isCaretSet = true;
        }
        std::string text =
                piece == "\t" ? std::string(kTab - total % kTab, ' ') : shownPiece(piece);
        const size_t wide = text.size() == piece.size() && piece.size() > 1
                                    ? widthOf(utf8At(piece, 0).code)
                                    : text.size();
        cells.push_back({std::move(text), total});
        total += wide;
        at += piece.size();
    }
    if (!isCaretSet) {
        caret = total;
    }
    const size_t begin = windowBegin(caret, total, width);
    ShownLine shown;
    size_t first = 0;
    bool isFirstSet = false;
    for (const Cell& cell : cells) {
        if (cell.column >= begin && cell.column < begin + width) {
            if (!isFirstSet) {
                first = cell.column;
                isFirstSet = true;
            }
            shown.text += cell.text;
        }
    }
    shown.caret = caret - first;
    if (begin > 0) {
        shown.text.insert(0, "...");
        shown.caret += 3;
    }
    if (total > begin + width) {
        shown.text += "...";
    }
    return shown;
}

}  // namespace mlk::tree
