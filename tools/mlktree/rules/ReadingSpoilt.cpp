// Rules about files and lines of which nothing is as their author meant it.

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

#include "host/text/Utf8.h"
#include "tools/mlktree/Lookalikes.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/LineRemarks.h"

namespace mlk::tree {

namespace {

// True for two bytes a character: a mark says so, or every second byte is a NUL.
bool isUtf16(std::string_view text) {
    constexpr size_t kLookedAt = 32;
    constexpr size_t kFewest = 6;
    if (beginsWith(text, "\xFF\xFE") || beginsWith(text, "\xFE\xFF")) {
        return true;
    }
    const std::string_view start = text.substr(0, kLookedAt);
    const auto hasNuls = [&](size_t first) {
        for (size_t i = 0; i + 1 < start.size(); i += 2) {
            if (start[i + first] != '\0' || start[i + 1 - first] == '\0') {
                return false;
            }
        }
        return start.size() >= kFewest;
    };
    return hasNuls(0) || hasNuls(1);
}

void checkUtf16(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        const bool hasLine = !file->lines().empty() && file->lines().front().column != 0;
        const bool isSuspect = !hasLine || file->lines().front().hasNul ||
                               isIdentity(file->format()) ||
                               beginsWith(file->lines().front().text, "\xFF\xFE") ||
                               beginsWith(file->lines().front().text, "\xFE\xFF");
        if (file->exists() && isSuspect && isUtf16(line.sources().line(path, 1))) {
            reporter.reportSpoilt(placeOf(*file), kWholeFile,
                                  "the file is UTF-16, of which the service understands nothing; "
                                  "save it as UTF-8 without a byte order mark");
        }
    }
}

// Calls check(number, text) for the lines of an XML file that is broken, or those of another file
// that have one of these contents.
template <typename Check>
void forEachWholeLine(const ProductLine& line, const FileLines& file,
                      const std::vector<bool>& marks, const Check& check) {
    if (isXml(file.format())) {
        // Its reader tells of elements, and XML with these marks has none.
        if (file.problems().empty()) {
            return;
        }
        const std::vector<std::string_view>& lines = line.sources().lines(file.path());
        for (size_t i = 0; i < lines.size(); ++i) {
            check(i + 1, lines[i]);
        }
        return;
    }
    for (const ReadLine* const read : linesThat(file, marks)) {
        check(read->number, read->text);
    }
}

// A line that begins or ends a conflict.
bool isConflictMark(FileFormat /* format */, const ReadLine& read) {
    return read.column == 1 &&
           (beginsWith(read.text, "<<<<<<< ") || beginsWith(read.text, ">>>>>>> "));
}

void checkConflicts(const ProductLine& line, Reporter& reporter) {
    const std::vector<bool> marks = contentsThat(line, isConflictMark);
    for (const auto& [path, file] : line.files()) {
        size_t begin = 0;
        const auto report = [&, path = std::string_view(path)](size_t first, size_t end) {
            std::vector<Related> related;
            if (end != first) {
                related.push_back({{std::string(path), end, 1}, "it ends here"});
            }
            reporter.reportSpoilt({std::string(path), first, 1}, {first, end},
                                  "a merge conflict is not resolved: keep one side, and remove "
                                  "the lines that begin with \"<<<<<<<\", \"=======\" and "
                                  "\">>>>>>>\"",
                                  std::move(related));
        };
        forEachWholeLine(line, *file, marks, [&](size_t number, std::string_view text) {
            if (beginsWith(text, "<<<<<<< ")) {
                if (begin != 0) {
                    report(begin, begin);
                }
                begin = number;
            } else if (beginsWith(text, ">>>>>>> ")) {
                report(begin != 0 ? begin : number, number);
                begin = 0;
            }
        });
        if (begin != 0) {
            report(begin, begin);
        }
    }
}

// Quotes, spaces and what nobody sees: in a text of any script, they are a slip at its ends.
bool isOfNoScript(const Lookalike& found) {
    return found.looksLike == '"' || found.looksLike == '\'' || found.looksLike == ' ' ||
           found.looksLike == '\0';
}

bool hasSlipAtEnd(std::string_view text, const Lookalike& first) {
    Lookalike last = first;
    for (Lookalike next = last; next.size > 0; next = findLookalike(text, last.at + last.size)) {
        last = next;
    }
    const bool isAtBegin = first.at == 0 && isOfNoScript(first);
    return isAtBegin || (last.at + last.size == text.size() && isOfNoScript(last));
}

// Whether such a character harms a value: a path, a number, a word, or at the ends.
bool harms(std::string_view value, const Lookalike& first) {
    const std::string plain = withoutLookalikes(value);
    const std::string_view core = trimmed(plain);
    const bool isNumber =
            !core.empty() && core.find_first_not_of("+-.,0123456789 ") == std::string_view::npos;
    const bool isPath = core.find('/') <= 1;
    const bool isWord = core.find(' ') == std::string_view::npos && isMeantInAscii(value);
    return isNumber || isPath || isWord || hasSlipAtEnd(value, first);
}

// A lookalike that does harm: where, and to what part of the line.
struct Harm {
    size_t at;
    const char* part;
};

std::optional<Harm> harmIf(bool isHarm, size_t at, const char* part) {
    return isHarm ? std::optional<Harm>({at, part}) : std::nullopt;
}

bool harmsListed(FileFormat format, std::string_view name, const Lookalike& first) {
    const bool isHarmless = format == FileFormat::LANGUAGE_LIST && !isMeantInAscii(name) &&
                            !hasSlipAtEnd(name, first);
    return first.at < name.size() && !isHarmless;
}

// Of the name of a section or a key.
bool harmsName(std::string_view name, const Lookalike& first) {
    return isMeantInAscii(name) || isOfNoScript(first);
}

// Whether a line that is neither a section nor an item was meant for one.
bool isMeantForOne(std::string_view code) {
    const std::string plain = withoutLookalikes(code);
    return plain.find('=') != std::string::npos || beginsWith(plain, "[");
}

// The value begins after the "=" at that place.
std::optional<Harm> harmToValue(std::string_view code, size_t equals) {
    std::string_view value = code.substr(equals + 1);
    const size_t begin = value.find_first_not_of(" \t\"");
    value = value.substr(std::min(begin, value.size()));
    value = value.substr(0, value.find_last_not_of(" \t\r\";") + 1);
    const Lookalike found = findLookalike(value);
    return harmIf(found.size != 0 && harms(value, found),
                  static_cast<size_t>(value.data() - code.data()) + found.at, "value");
}

// What the first lookalike of the line that does harm does it to; nothing for a sound line.
std::optional<Harm> harmTo(FileFormat format, const ReadLine& read) {
    const bool isList = format == FileFormat::COUNTRY_LIST || format == FileFormat::LANGUAGE_LIST;
    const std::string_view code = isList ? read.text : read.text.substr(0, read.text.find('#'));
    const Lookalike first = findLookalike(code);
    if (first.size == 0) {
        return std::nullopt;
    }
    if (isList) {
        return harmIf(harmsListed(format, code.substr(0, code.find(',')), first), first.at, "name");
    }
    if (format == FileFormat::CHANNEL_PLAN) {
        return Harm{first.at, "line"};
    }
    if (read.use == LineUse::SECTION) {
        return harmIf(harmsName(code, first), first.at, "section's name");
    }
    const size_t equals = code.find('=');
    if (equals == std::string_view::npos) {
        return harmIf(isMeantForOne(code), first.at, "line");
    }
    // The keyword of an identity file counts anywhere: what stands around it does no harm.
    if (first.at < equals && !isIdentity(format)) {
        return harmIf(harmsName(code.substr(0, equals), first), first.at, "key");
    }
    return harmToValue(code, equals);
}

bool hasHarmful(FileFormat format, const ReadLine& read) {
    return read.column != 0 && read.use != LineUse::NOTHING && !isAscii(read.text) &&
           !looksLikeComment(read.text) &&
           (isIdentity(format) || !beginsWith(read.text, kByteOrderMark)) &&
           harmTo(format, read).has_value();
}

void checkLookalikes(const ProductLine& line, Reporter& reporter) {
    const std::vector<bool> harmful = contentsThat(line, hasHarmful);
    if (std::find(harmful.begin(), harmful.end(), true) == harmful.end()) {
        return;
    }
    for (const auto& [path, file] : line.files()) {
        for (const ReadLine* const read : linesThat(*file, harmful)) {
            const Harm harm = harmTo(file->format(), *read).value();
            const Lookalike found = findLookalike(read->text, harm.at);
            Place place = placeOf(line, *file, *read);
            place.column = read->column + found.at;
            const std::string like(found.looksLike == '\0' ? 0 : 1, found.looksLike);
            reporter.reportSpoilt(place, {read->number, read->number},
                                  describe(read->text, found) + " becomes part of the " +
                                          harm.part +
                                          (like.empty()   ? "; delete it"
                                           : like == " "  ? "; type a blank instead"
                                           : like == "\"" ? "; type a plain quote instead"
                                                          : "; type " + quoted(like) + " instead"));
        }
    }
}

constexpr size_t kNone = std::string_view::npos;

// True for several lines that end in a carriage return alone: to the service they are one.
bool hasInnerReturn(std::string_view text) {
    const size_t end = text.find('\r');
    return end != kNone && text.find_first_not_of('\r', end) != kNone;
}

// True if the file has a line of its format, be it misspelt.
bool hasContent(const FileLines& file) {
    const bool isList = file.format() == FileFormat::LANGUAGE_LIST;
    return std::any_of(file.lines().begin(), file.lines().end(), [&](const ReadLine& read) {
        const std::string_view start = trimmed(read.text);
        const bool isComment = start.empty() || start.front() == '#' || start.front() == ';';
        const bool isMarkup = beginsWith(start, "<") && !beginsWith(start, "<<");
        return isList ? read.use == LineUse::ITEM
                      : !isComment && !isMarkup && read.text.find('=') != kNone &&
                                !hasInnerReturn(read.text);
    });
}

void checkEmptyFiles(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        const bool isOfItems = file->format() == FileFormat::PROJECT ||
                               file->format() == FileFormat::AUXILIARY ||
                               file->format() == FileFormat::TV_FEATURES ||
                               file->format() == FileFormat::LANGUAGE_LIST;
        if (!isOfItems || !file->exists() || file->isUnreadable() || hasContent(*file)) {
            continue;
        }
        const std::string_view first =
                file->lines().empty() ? std::string_view() : file->lines().front().text;
        if (isUtf16(line.sources().line(path, 1))) {
            continue;
        }
        std::string message =
                "the service finds nothing in this " + std::string(nameOf(file->format()));
        if (hasInnerReturn(first)) {
            message += ": its lines end in a carriage return alone; end them in a line feed";
        } else if (!file->lines().empty()) {
            message += "; is it another file?";
        }
        reporter.reportSpoilt(placeOf(*file), kWholeFile, std::move(message));
    }
}

constexpr Rule kRules[] = {
        {"utf-16", Severity::ERROR, "a text file is UTF-16",
         "The service reads bytes. Of a file with two bytes a character it understands nothing: a "
         "model has no items, a list no country. Some editors save this way unasked.",
         "<FF FE>[<00>P<00>A<00>N<00>E<00>L<00>]<00>", "[PANEL]", checkUtf16},
        {"merge-conflict", Severity::ERROR, "a merge conflict is not resolved",
         "The service reads the marks and both sides: items stand twice, countries are unknown, "
         "and XML is not read at all.",
         "<<<<<<< HEAD\nTHERMAL_WARN = 95\n=======\nTHERMAL_WARN = 92\n>>>>>>> topic",
         "THERMAL_WARN = 92", checkConflicts},
        {"lookalike", Severity::ERROR, "a character only looks like one that counts, or like none",
         "Word processors and chats write other quotes, dashes and spaces than keyboards do. To "
         "the service they are letters of a key, a path or a number.",
         "COUNTRY_PATH = \xE2\x80\x9C/tvconfigs/country/eu.txt\xE2\x80\x9D",
         "COUNTRY_PATH = \"/tvconfigs/country/eu.txt\"", checkLookalikes},
        {"empty-file", Severity::WARNING, "a file has nothing that the service looks for in it",
         "The file is empty, or has another format than its name says. The set works as if the "
         "file were missing.",
         "tvconfigs/model/second.ini      (0 bytes)", "a file that has its items", checkEmptyFiles},
};

}  // namespace

RuleFamily readingSpoilt() {
    return {"spoilt", "Files and lines that are spoilt", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
