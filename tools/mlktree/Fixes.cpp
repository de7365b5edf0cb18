#include "tools/mlktree/Fixes.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <optional>

#include "regional/CountryTable.h"
#include "tools/common/Utf8.h"
#include "tools/mlktree/Lookalikes.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

constexpr size_t kContext = 3;  // lines around a change

bool isList(FileFormat format) {
    return format == FileFormat::COUNTRY_LIST || format == FileFormat::LANGUAGE_LIST;
}

bool hasItems(FileFormat format) {
    return format == FileFormat::PROJECT || format == FileFormat::AUXILIARY ||
           format == FileFormat::TV_FEATURES;
}

// Each of these gives a line its right form, if that is known; the line is without its line feed.

void dropBlanksOfEntry(FileFormat format, std::string& line) {
    if (!isList(format) || trimmed(line).empty()) {
        return;
    }
    const size_t comma = line.find(',', std::min(line.find_first_not_of(','), line.size()));
    const std::string_view entry = trimmed(std::string_view(line).substr(0, comma));
    const std::string rest = comma == std::string::npos ? "" : line.substr(comma);
    line = std::string(entry) + rest;
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

// Spaces that are no blanks and characters that nobody sees, at the ends of names and values.
void plainSpaces(FileFormat format, std::string& line) {
    if (isAscii(line) || looksLikeComment(line)) {
        return;
    }
    const auto isBlank = [&](size_t from, size_t to) {
        const size_t text = line.find_first_not_of(" \t\r\";", from);
        return from >= to || text == std::string::npos || text >= to;
    };
    size_t end = std::min(line.find(isList(format) ? ',' : '#'), line.size());
    for (size_t at = 0; at < end;) {
        const Lookalike found = findLookalike(line, at);
        if (found.size == 0 || found.at >= end) {
            return;
        }
        const size_t equals = line.find('=');
        const bool isInName = isList(format) || equals == std::string::npos || found.at < equals;
        const bool isAtEnd =
                isInName || isBlank(equals + 1, found.at) || isBlank(found.at + found.size, end);
        at = found.at + found.size;
        if (isAtEnd && (found.looksLike == ' ' || found.looksLike == '\0')) {
            const size_t left = found.looksLike == ' ' ? 1 : 0;
            line.replace(found.at, found.size, left, ' ');
            at = found.at + left;
            end -= found.size - left;
        }
    }
}

constexpr void (*kFixes[])(FileFormat, std::string&) = {
        dropBlanksOfEntry, capitalizeCountry, outdentComment, dropTabsOfKey, dropBlanksOfFeature,
};

bool isLineFormat(FileFormat format) {
    return hasItems(format) || isList(format) || format == FileFormat::CUSTOMER ||
           format == FileFormat::SYSTEM || format == FileFormat::CHANNEL_PLAN;
}

// Whether a carriage return at the end of a line becomes part of a name or of the models' list.
// Then all lines of the file end without one: an editor adds them to all.
bool keepsCarriageReturns(const FileLines& file) {
    const bool isOfModels = file.format() == FileFormat::SYSTEM;
    return (isOfModels || isList(file.format())) &&
           std::any_of(file.lines().begin(), file.lines().end(), [&](const ReadLine& read) {
               const std::string_view kept = isOfModels ? read.text : read.key;
               return read.use == LineUse::ITEM && !kept.empty() && kept.back() == '\r';
           });
}

// By line number: whether the service uses the line, so that its characters matter.
std::vector<bool> usedLines(const FileLines& file, size_t count) {
    std::vector<bool> used(count + 1);
    for (const ReadLine& read : file.lines()) {
        // A byte order mark makes a remark of the first line something else.
        const bool isMarked = read.number == 1 && beginsWith(read.text, kByteOrderMark);
        if (read.number <= count && (read.use != LineUse::NOTHING || isMarked)) {
            used[read.number] = true;
        }
    }
    return used;
}

std::optional<MendedFile> mendFile(const ProductLine& line, const FileLines& file) {
    const std::vector<std::string_view>& former = line.sources().lines(file.path());
    const std::vector<bool> isUsed = usedLines(file, former.size());
    const bool dropsCarriageReturns = keepsCarriageReturns(file);
    MendedFile mended;
    mended.path = file.path();
    for (size_t i = 0; i < former.size(); ++i) {
        std::string text(former[i]);
        if (isUsed[i + 1]) {
            plainSpaces(file.format(), text);
        }
        if (dropsCarriageReturns && !text.empty() && text.back() == '\r') {
            text.pop_back();
        }
        for (const auto& fix : kFixes) {
            fix(file.format(), text);
        }
        if (text != former[i]) {
            mended.lines.push_back({i + 1, std::string(former[i]), text});
        }
        mended.text += text;
        const bool isLast = i + 1 == former.size();
        const bool isUnended = isLast && !line.sources().endsInLineFeed(file.path());
        mended.endsLastLine = isUnended && file.format() == FileFormat::TV_FEATURES &&
                              text.find('=') != std::string::npos;
        mended.text += isUnended && !mended.endsLastLine ? "" : "\n";
    }
    const bool isSame = mended.lines.empty() && !mended.endsLastLine;
    return isSame ? std::nullopt : std::optional(std::move(mended));
}

// A property's file with a line end, which belongs to the value.
std::optional<MendedFile> mendProperty(const ProductLine& line, const std::string& path) {
    const std::vector<std::string_view>& former = line.sources().lines(path);
    if (former.size() != 1 || trimmed(former.front()).empty() ||
        !line.sources().endsInLineFeed(path)) {
        return std::nullopt;
    }
    MendedFile mended;
    mended.path = path;
    mended.text = former.front();
    mended.text.erase(mended.text.find_last_not_of('\r') + 1);
    mended.lines.push_back({1, std::string(former.front()), mended.text});
    mended.dropsLastEnd = true;
    return mended;
}

}  // namespace

std::vector<MendedFile> mend(const ProductLine& line) {
    std::vector<MendedFile> files;
    for (const std::string& key : line.properties().keys()) {
        std::optional<MendedFile> mended = line.properties().isGiven(key)
                                                   ? std::nullopt
                                                   : mendProperty(line, "data/property/" + key);
        if (mended) {
            files.push_back(std::move(*mended));
        }
    }
    for (const auto& [path, file] : line.files()) {
        // A file that readers refuse is not touched either.
        if (!file->exists() || file->isUnreadable() || !isLineFormat(file->format())) {
            continue;
        }
        if (std::optional<MendedFile> mended = mendFile(line, *file)) {
            files.push_back(std::move(*mended));
        }
    }
    return files;
}

std::string diffOf(const MendedFile& file, const std::vector<std::string_view>& former) {
    std::vector<std::string> after(former.begin(), former.end());
    std::vector<size_t> changed;  // positions, from 0
    for (const MendedLine& line : file.lines) {
        after[line.number - 1] = line.after;
        changed.push_back(line.number - 1);
    }
    if (file.endsLastLine && (changed.empty() || changed.back() + 1 != former.size())) {
        changed.push_back(former.size() - 1);
    }
    std::string diff = "--- a/" + file.path + "\n+++ b/" + file.path + "\n";
    for (size_t first = 0; first < changed.size();) {
        size_t last = first;
        while (last + 1 < changed.size() && changed[last + 1] - changed[last] <= 2 * kContext) {
            ++last;
        }
        const size_t begin = changed[first] - std::min(changed[first], kContext);
        const size_t end = std::min(changed[last] + kContext + 1, former.size());
        const std::string range = std::to_string(begin + 1) + "," + std::to_string(end - begin);
        diff.append("@@ -").append(range).append(" +").append(range).append(" @@\n");
        for (size_t i = begin; i < end; ++i) {
            if (!std::binary_search(changed.begin(), changed.end(), i)) {
                diff += " " + std::string(former[i]) + "\n";
                continue;
            }
            const bool gainsEnd = file.endsLastLine && i + 1 == former.size();
            diff += "-" + std::string(former[i]) +
                    (gainsEnd ? "\n\\ No newline at end of file\n+" : "\n+") + after[i] + "\n";
            const bool losesEnd = file.dropsLastEnd && i + 1 == former.size();
            diff += losesEnd ? "\\ No newline at end of file\n" : "";
        }
        first = last + 1;
    }
    return diff;
}

}  // namespace mlk::tree
