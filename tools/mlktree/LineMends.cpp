#include "tools/mlktree/LineMends.h"

#include <algorithm>
#include <cctype>

#include "host/text/Utf8.h"
#include "regional/CountryTable.h"
#include "regional/PlanColumns.h"
#include "tools/mlktree/Lookalikes.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

// Each of these gives a line its right form, if that is known; the line is without its line feed.

void dropBlanksOfEntry(FileFormat format, std::string& line) {
    if (!isList(format)) {
        return;
    }
    const size_t begin = std::min(line.find_first_not_of(','), line.size());
    const size_t end = std::min(line.find(',', begin), line.size());
    const std::string entry(trimmed(std::string_view(line).substr(begin, end - begin)));
    // The reader skips an empty entry: what follows its comma would take its place.
    if (!entry.empty()) {
        line.replace(begin, end - begin, entry);
    }
}

void capitalizeCountry(FileFormat format, std::string& line) {
    if (format != FileFormat::COUNTRY_LIST) {
        return;
    }
    const size_t comma = std::min(line.find(','), line.size());
    std::string name = line.substr(0, comma);
    const product::NameTable countries = product::countryNames();
    if (countries.find(name)) {
        return;
    }
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) {
        return c == ' ' || c == '-' ? '_' : static_cast<char>(std::toupper(c));
    });
    if (countries.find(name)) {
        line.replace(0, comma, name);
    }
}

void outdentComment(FileFormat format, std::string& line) {
    const size_t start = std::min(line.find_first_not_of(" \t"), line.size());
    if (hasItems(format) && beginsWith(std::string_view(line).substr(start), "#")) {
        line.erase(0, start);
    }
}

void dropTabsOfKey(FileFormat format, std::string& line) {
    const size_t equals = line.find('=');
    const bool isItem = equals != std::string::npos && !looksLikeComment(line) &&
                        !beginsWith(line, "[") && equals < line.find('#');
    if (!hasItems(format) || format == FileFormat::TV_FEATURES || !isItem) {
        return;
    }
    std::string key = line.substr(0, equals);
    const size_t end = key.find_last_not_of(" \t") + 1;
    if (key.find('\t', end) != std::string::npos) {
        line.replace(end, equals - end, " ");
    }
}

void dropBlanksOfFeature(FileFormat format, std::string& line) {
    const size_t equals = line.rfind('=');
    if (format != FileFormat::TV_FEATURES || looksLikeComment(line) ||
        equals == std::string::npos || line.find('#') != std::string::npos) {
        return;
    }
    const bool hasCarriageReturn = line.back() == '\r';
    const std::string key(trimmed(std::string_view(line).substr(0, equals)));
    const std::string value(trimmed(std::string_view(line).substr(equals + 1)));
    line = key + "=" + value + (hasCarriageReturn ? "\r" : "");
}

constexpr void (*kMends[])(FileFormat, std::string&) = {
        dropBlanksOfEntry, capitalizeCountry, outdentComment, dropTabsOfKey, dropBlanksOfFeature,
};

bool isSpace(const Lookalike& found) {
    return found.size > 0 && found.looksLike == ' ';
}

bool isUnseen(const Lookalike& found) {
    return found.size > 0 && found.looksLike == '\0';
}

// Which of the characters that look like a blank, or like nothing, a part of a line loses.
enum class Losing {
    ALL,         // each, wherever it stands
    AT_ENDS,     // those before and after the text
    NOT_INSIDE,  // those at the ends, and inside of the text what nobody sees
};

// The first and the last byte of the text in a part: what is neither a blank nor looks like one.
struct TextRange {
    size_t begin = std::string_view::npos;
    size_t end = 0;

    bool isEmpty() const { return end == 0; }
};

TextRange textIn(std::string_view part) {
    constexpr std::string_view kAround = " \t\r\";";
    TextRange text;
    Lookalike next = findLookalike(part);
    for (size_t at = 0; at < part.size();) {
        if (next.size > 0 && next.at < at) {
            next = findLookalike(part, at);
        }
        const bool isHere = next.at == at && (isSpace(next) || isUnseen(next));
        if (!isHere && kAround.find(part[at]) == std::string_view::npos) {
            text.begin = std::min(text.begin, at);
            text.end = at + 1;
        }
        at += isHere ? next.size : 1;
    }
    return text;
}

// A part without such characters. One of nothing else stays: it is no slip, or nobody knows what is
// meant.
std::string plainPart(std::string_view part, Losing losing) {
    const TextRange text = textIn(part);
    if (text.isEmpty()) {
        return std::string(part);
    }
    std::string plain;
    for (size_t at = 0; at < part.size();) {
        const Lookalike found = findLookalike(part, at);
        if (found.size == 0) {
            return plain.append(part.substr(at));
        }
        plain.append(part.substr(at, found.at - at));
        const bool isInside = found.at > text.begin && found.at < text.end;
        const bool goes = !isInside || losing == Losing::ALL ||
                          (losing == Losing::NOT_INSIDE && isUnseen(found));
        if (!goes || (!isSpace(found) && !isUnseen(found))) {
            plain.append(part.substr(found.at, found.size));
        } else if (isSpace(found)) {
            plain += ' ';
        }
        at = found.at + found.size;
    }
    return plain;
}

// Spaces that are no blanks and characters that nobody sees, in names and at the ends of values.
std::string plainParts(FileFormat format, std::string_view line) {
    const size_t end = std::min(line.find(isList(format) ? ',' : '#'), line.size());
    const std::string_view parts = line.substr(0, end);
    const size_t equals = format == FileFormat::TV_FEATURES ? parts.rfind('=') : parts.find('=');
    const std::string_view name = isList(format) ? parts : parts.substr(0, equals);
    // In other scripts such a character may belong to a word.
    const bool isOtherScript = format == FileFormat::LANGUAGE_LIST && !isMeantInAscii(name);
    std::string plain = plainPart(name, isOtherScript ? Losing::AT_ENDS : Losing::ALL);
    if (name.size() < parts.size()) {
        plain += '=';
        plain += plainPart(parts.substr(name.size() + 1), Losing::AT_ENDS);
    }
    return plain.append(line.substr(end));
}

// The same in a line of a channel plan. A blank ends a column, so that none comes into one.
std::string plainColumns(std::string_view line) {
    std::string plain;
    while (!line.empty()) {
        std::string_view rest = line;
        const std::string_view column = product::nextColumn(rest);
        const auto begin = static_cast<size_t>(line.size() - rest.size() - column.size());
        plain.append(line.substr(0, begin)).append(plainPart(column, Losing::NOT_INSIDE));
        line = rest;
    }
    return plain;
}

// Whether a mend removes the byte order mark at the beginning of a line. In a plan it stays if it
// stands alone in the first column.
bool dropsMark(FileFormat format, std::string_view line) {
    const std::string_view rest = line.substr(std::min(kByteOrderMark.size(), line.size()));
    const bool isColumn = format == FileFormat::CHANNEL_PLAN && beginsWith(trimmed(rest), ",");
    return beginsWith(line, kByteOrderMark) && !isColumn;
}

}  // namespace

bool hasItems(FileFormat format) {
    return format == FileFormat::PROJECT || format == FileFormat::AUXILIARY ||
           format == FileFormat::TV_FEATURES;
}

bool isList(FileFormat format) {
    return format == FileFormat::COUNTRY_LIST || format == FileFormat::LANGUAGE_LIST;
}

bool isMendable(FileFormat format) {
    return hasItems(format) || isList(format) || format == FileFormat::CUSTOMER ||
           format == FileFormat::SYSTEM || format == FileFormat::CHANNEL_PLAN;
}

std::string mendedLine(const LineToMend& where, std::string_view line) {
    std::string text(line);
    if (where.isUsed && where.isFirst && dropsMark(where.format, text)) {
        text.erase(0, kByteOrderMark.size());
    }
    if (where.isUsed && !isAscii(text) && !looksLikeComment(text)) {
        text = where.format == FileFormat::CHANNEL_PLAN ? plainColumns(text)
                                                        : plainParts(where.format, text);
    }
    if (where.dropsCarriageReturns) {
        text.erase(text.find_last_not_of('\r') + 1);
    }
    for (const auto& mend : kMends) {
        mend(where.format, text);
    }
    return text;
}

}  // namespace mlk::tree
