// Rules about values of which the readers remove a part.

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/LineRemarks.h"

namespace mlk::tree {

namespace {

bool hasEquals(const ReadLine& read) {
    return read.use == LineUse::ITEM && read.text.find('=') != std::string_view::npos;
}

// The text after the "=", without blanks and carriage returns at its ends.
std::string_view rawValue(const ReadLine& read) {
    std::string_view value = read.text.substr(read.text.find('=') + 1);
    while (!value.empty() && value.back() == '\r') {
        value.remove_suffix(1);
    }
    return trimmed(value);
}

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// The text without quotes and semicolons at its ends, where they do no harm.
std::string_view withoutOuterSymbols(std::string_view text) {
    constexpr std::string_view kOuter = "\"; \t";
    const size_t begin = text.find_first_not_of(kOuter);
    return begin == std::string_view::npos
                   ? std::string_view()
                   : text.substr(begin, text.find_last_not_of(kOuter) - begin + 1);
}

std::optional<Remark> cutValue(FileFormat /* format */, const ReadLine& read) {
    const size_t hash =
            hasEquals(read) ? read.text.find('#', read.text.find('=') + 1) : std::string_view::npos;
    if (hash == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view before = read.text.substr(0, hash);
    const char last = before.back();
    const bool isAttached =
            last != ' ' && last != '\t' && last != ';' && last != '"' && last != '=';
    const bool isInQuotes = std::count(before.begin(), before.end(), '"') % 2 != 0;
    if (!isAttached && !isInQuotes) {
        return std::nullopt;
    }
    return Remark{hash + 1,
                  "the \"#\" cuts the value: " + quoted(read.key) + " is " + quoted(read.value)};
}

std::optional<Remark> vanishingSymbol(FileFormat /* format */, const ReadLine& read) {
    if (!hasEquals(read) || beginsWith(trimmed(read.text), ";")) {
        return std::nullopt;  // the latter is meant as a comment
    }
    const std::string_view raw = rawValue(read);
    const std::string_view inner = withoutOuterSymbols(raw.substr(0, raw.find('#')));
    const size_t at = inner.find_first_of("\";");
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const size_t semicolon = inner.find(';');
    const bool isLikeComment = semicolon != std::string_view::npos &&
                               isBlank(inner[semicolon - 1]) &&
                               inner.find(';', semicolon + 1) == std::string_view::npos;
    if (isLikeComment) {
        return Remark{columnOf(read, inner.substr(semicolon)),
                      "\";\" begins no comment and is removed: " + quoted(read.key) + " is " +
                              quoted(read.value) + "; a comment begins with \"#\"",
                      true};
    }
    const bool isSemicolon = inner[at] == ';';
    return Remark{columnOf(read, inner.substr(at, 1)),
                  (isSemicolon ? "semicolons are" : "quotes are") +
                          std::string(" removed everywhere: ") + quoted(read.key) + " is " +
                          quoted(read.value) + (isSemicolon ? "; separate a list by commas" : "")};
}

// Where the reader of auxiliary files finds the value in a line: it skips "=" before the key and
// further ones before the value, and one in the value ends it.
struct ValuePlace {
    size_t skipped;  // an "=" that is skipped, or npos
    size_t begin;
    size_t end;
};

ValuePlace placeOfValue(std::string_view line) {
    constexpr size_t kNone = std::string_view::npos;
    const size_t key = line.find_first_not_of('=');
    const size_t equals = line.find('=', key);
    const size_t begin = line.find_first_not_of('=', equals);
    const size_t skipped = key > 0 ? 0 : begin > equals + 1 ? equals + 1 : kNone;
    return {skipped, begin, line.find('=', begin)};
}

std::optional<Remark> takenFollowers(FileFormat /* format */, const ReadLine& read) {
    if (!hasEquals(read)) {
        return std::nullopt;
    }
    const ValuePlace place = placeOfValue(read.text);
    std::string_view raw = read.text.substr(place.begin, place.end - place.begin);
    raw = trimmed(raw.substr(0, raw.find('#')));
    constexpr std::string_view kSymbols = "\";\r";
    std::string expected(raw);
    expected.erase(std::remove_if(expected.begin(), expected.end(),
                                  [&](char c) { return kSymbols.find(c) != kSymbols.npos; }),
                   expected.end());
    if (trimmed(read.value) == trimmed(expected)) {
        return std::nullopt;
    }
    const std::string_view inner = withoutOuterSymbols(raw);
    const size_t at = inner.find_first_of(kSymbols);
    const std::string_view symbol =
            at != std::string_view::npos ? inner.substr(at, 1) : raw.substr(0, 1);
    const char* const name = symbol == ";"    ? "semicolon"
                             : symbol == "\r" ? "carriage return"
                                              : "quote";
    return Remark{columnOf(read, symbol),
                  std::string("a ") + name + " removes as many characters as stand before it: " +
                          quoted(read.key) + " is " + quoted(read.value)};
}

// In an auxiliary file.
std::optional<Remark> equalsBesideAValue(const ReadLine& read) {
    const ValuePlace place = placeOfValue(read.text);
    const std::string is = quoted(read.key) + " is " + quoted(read.value);
    if (place.skipped != std::string_view::npos) {
        return Remark{columnOf(read, read.text.substr(place.skipped, 1)),
                      "a further \"=\" is skipped: " + is};
    }
    if (place.end < read.text.find('#', place.begin)) {
        return Remark{columnOf(read, read.text.substr(place.end, 1)),
                      "a second \"=\" ends the value: " + is};
    }
    return std::nullopt;
}

std::optional<Remark> secondEquals(FileFormat format, const ReadLine& read) {
    if (!hasEquals(read)) {
        return std::nullopt;
    }
    if (format == FileFormat::TV_FEATURES) {
        return read.key.find('=') == std::string_view::npos
                       ? std::nullopt
                       : std::optional(Remark{columnOf(read, "="),
                                              "the last \"=\" counts: the key is " +
                                                      quoted(read.key) + " and the value " +
                                                      quoted(read.value)});
    }
    if (format == FileFormat::AUXILIARY) {
        return equalsBesideAValue(read);
    }
    // Elsewhere in the value of a model or board file it is a part like others.
    const std::string_view raw = rawValue(read);
    const bool isAtBeginning = beginsWith(raw, "=") || beginsWith(raw, ">");
    return isAtBeginning ? std::optional(Remark{columnOf(read, raw.substr(0, 1)),
                                                "the first \"=\" counts: " + quoted(read.key) +
                                                        " is " + quoted(read.value),
                                                true})
                         : std::nullopt;
}

std::optional<Remark> missingValue(FileFormat /* format */, const ReadLine& read) {
    const std::string_view text = trimmed(read.text);
    if (read.use != LineUse::IGNORED || text.empty() || text.back() == ']') {
        return std::nullopt;
    }
    return Remark{columnOf(read, text),
                  looksLikeComment(text)
                          ? "no comment, and no value: a comment begins with \"#\" or \";\" in "
                            "the first column; the service skips the line"
                          : "no value: the service skips the line"};
}

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("+-0123456789") == std::string_view::npos;
}

// In a TV feature file, where the whole comment belongs to the value.
std::optional<Remark> remarkInFeature(const ReadLine& read) {
    const size_t hash = read.value.find('#');
    if (hash == std::string_view::npos || beginsWith(trimmed(read.key), "#")) {
        return std::nullopt;
    }
    return Remark{columnOf(read, read.value.substr(hash)),
                  "the comment belongs to the value " + quoted(read.value) +
                          "; a comment needs a line of its own"};
}

// In a model or board file: a comment of another language, which is part of the value.
std::optional<Remark> foreignRemark(const ReadLine& read) {
    const std::string_view raw = rawValue(read);
    const std::string_view code = raw.substr(0, raw.find('#'));
    for (const std::string_view begin : {"//", "/*"}) {
        const size_t at = code.find(begin);
        if (at != std::string_view::npos && at > 0 && isBlank(code[at - 1])) {
            return Remark{columnOf(read, code.substr(at)),
                          quoted(begin) + " begins no comment: " + quoted(read.key) + " is " +
                                  quoted(read.value),
                          true};
        }
    }
    return std::nullopt;
}

std::optional<Remark> remarkInValue(FileFormat format, const ReadLine& read) {
    if (!hasEquals(read)) {
        return std::nullopt;
    }
    if (format == FileFormat::PROJECT) {
        return foreignRemark(read);
    }
    if (format == FileFormat::TV_FEATURES) {
        return remarkInFeature(read);
    }
    const bool endsInBlank = !read.value.empty() && read.value.back() == ' ';
    const size_t hash = read.text.find('#', read.text.find('='));
    if (!endsInBlank || hash == std::string_view::npos || isNumber(trimmed(read.value))) {
        return std::nullopt;
    }
    return Remark{hash + 1,
                  "the blank before this comment stays in the value " + quoted(read.value)};
}

// Apostrophes at both ends of a value, where somebody took them for quotes.
std::optional<Remark> apostrophes(FileFormat /* format */, const ReadLine& read) {
    const std::string_view value = trimmed(read.value);
    const bool isInApostrophes = value.size() > 1 && value.front() == '\'' && value.back() == '\'';
    // Rules about paths and numbers say more.
    const bool isOther = isInApostrophes && (value[1] == '/' || isNumber(value.substr(1, 1)));
    if (read.use != LineUse::ITEM || !isInApostrophes || isOther) {
        return std::nullopt;
    }
    return Remark{columnOf(read, value), "apostrophes are no quotes: " + quoted(read.key) + " is " +
                                                 quoted(read.value) + " with them"};
}

constexpr Rule kRules[] = {
        {"cut-value", Severity::ERROR, "a \"#\" in a value ends it",
         "Everything from the first \"#\" of a line on is a comment, in quotes as well.",
         "m_pPanelName = LC#400      (the panel is LC)", "m_pPanelName = LC400",
         checkLines<cutValue, FileFormat::PROJECT, FileFormat::CUSTOMER, FileFormat::SYSTEM,
                    FileFormat::AUXILIARY>},
        {"vanishing-symbol", Severity::WARNING,
         "a quote or semicolon vanishes from the middle of a value",
         "Model and board files lose all double quotes and semicolons, so the parts of a list "
         "become "
         "one word.",
         "INPUTS = hdmi1;hdmi2      (the value is hdmi1hdmi2)", "INPUTS = hdmi1,hdmi2",
         checkLines<vanishingSymbol, FileFormat::PROJECT>},
        {"apostrophe", Severity::WARNING, "a value stands in apostrophes",
         "Readers remove double quotes alone: apostrophes belong to the value.",
         "m_pPanelName = 'LC430-A'", "m_pPanelName = \"LC430-A\"",
         checkLines<apostrophes, FileFormat::PROJECT, FileFormat::AUXILIARY>},
        {"taken-followers", Severity::ERROR,
         "a quote or semicolon of an audio, karaoke, key or DDC/CI file takes other characters "
         "along",
         "A quote or semicolon at position n of a value removes the n characters after it, too. "
         "Only at the two ends of a value this is harmless.",
         "NAME = ab\"cdef      (the value is abef)", "NAME = \"abcdef\"",
         checkLines<takenFollowers, FileFormat::AUXILIARY>},
        {"second-equals", Severity::WARNING, "a second \"=\" stands in a line",
         "In audio, karaoke, key and DDC/CI files a second one ends the value, and further ones "
         "before key or value are skipped; in TV feature files the "
         "last \"=\" counts, so that the key is another one. In model and board files a value may "
         "have one, but does not begin with it.",
         "RATIO = 16=9      (the value is 16)", "RATIO = 16:9",
         checkLines<secondEquals, FileFormat::PROJECT, FileFormat::AUXILIARY,
                    FileFormat::TV_FEATURES>},
        {"no-value", Severity::WARNING,
         "a line of an audio, karaoke, key or DDC/CI file has no value",
         "The service skips the line, so the item does not exist.",
         "HDMI_DELAY =", "HDMI_DELAY = 0", checkLines<missingValue, FileFormat::AUXILIARY>},
        {"remark-in-value", Severity::WARNING, "a comment after a value changes the value",
         "In audio, karaoke, key and DDC/CI files the blank before the comment stays in the value. "
         "In TV feature files the whole comment does, so that a feature is off. In model and board "
         "files only a \"#\" begins a comment, not \"//\".",
         "persist.vendor.mlk.tv.enable_ci=true # for now",
         "# for now\npersist.vendor.mlk.tv.enable_ci=true",
         checkLines<remarkInValue, FileFormat::PROJECT, FileFormat::AUXILIARY,
                    FileFormat::TV_FEATURES>},
};

}  // namespace

RuleFamily readingValues() {
    return {"values", "Values that lose a part", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
