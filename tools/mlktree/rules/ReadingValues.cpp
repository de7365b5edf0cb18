// Rules about values of which the readers remove a part.

#include <algorithm>
#include <iterator>
#include <string>

#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Texts.h"

namespace mlk::tree {

namespace {

template <typename Check>
void forEachItem(const ProductLine& line, FileFormat format, const Check& check) {
    for (const auto& [path, file] : line.files()) {
        if (file->format() != format) {
            continue;
        }
        for (const ReadLine& read : file->lines()) {
            if (read.use == LineUse::ITEM && read.text.find('=') != std::string_view::npos) {
                check(*file, read);
            }
        }
    }
}

// The text after the "=", without blanks and carriage returns at its ends.
std::string_view rawValue(const ReadLine& read) {
    std::string_view value = read.text.substr(read.text.find('=') + 1);
    while (!value.empty() && value.back() == '\r') {
        value.remove_suffix(1);
    }
    return trimmed(value);
}

// The text without quotes and semicolons at its ends, where they do no harm.
std::string_view withoutOuterSymbols(std::string_view text) {
    constexpr std::string_view kOuter = "\"; \t";
    const size_t begin = text.find_first_not_of(kOuter);
    return begin == std::string_view::npos
                   ? std::string_view()
                   : text.substr(begin, text.find_last_not_of(kOuter) - begin + 1);
}

void checkCutValues(const ProductLine& line, Reporter& reporter) {
    for (const FileFormat format :
         {FileFormat::PROJECT, FileFormat::CUSTOMER, FileFormat::SYSTEM, FileFormat::AUXILIARY}) {
        forEachItem(line, format, [&](const FileLines& file, const ReadLine& read) {
            const size_t hash = read.text.find('#', read.text.find('=') + 1);
            if (hash == std::string_view::npos || hash == 0) {
                return;
            }
            const std::string_view before = read.text.substr(0, hash);
            const char last = before.back();
            const bool isAttached =
                    last != ' ' && last != '\t' && last != ';' && last != '"' && last != '=';
            const bool isInQuotes = std::count(before.begin(), before.end(), '"') % 2 != 0;
            if (isAttached || isInQuotes) {
                Place place = placeOf(line, file, read);
                place.column = hash + 1;
                reporter.report(place, "the \"#\" cuts the value: " + quoted(read.key) + " is " +
                                               quoted(read.value));
            }
        });
    }
}

void checkVanishingSymbols(const ProductLine& line, Reporter& reporter) {
    forEachItem(line, FileFormat::PROJECT, [&](const FileLines& file, const ReadLine& read) {
        if (beginsWith(trimmed(read.text), ";")) {
            return;  // meant as a comment
        }
        const std::string_view raw = rawValue(read);
        const std::string_view inner = withoutOuterSymbols(raw.substr(0, raw.find('#')));
        const size_t at = inner.find_first_of("\";");
        if (at == std::string_view::npos) {
            return;
        }
        const std::string symbol(1, inner[at]);
        reporter.report(placeOf(line, file, read, inner.substr(at, 1)),
                        (symbol == ";" ? "semicolons are" : "quotes are") +
                                std::string(" removed everywhere: ") + quoted(read.key) + " is " +
                                quoted(read.value) +
                                (symbol == ";" ? "; separate a list by commas" : ""));
    });
}

void checkTakenFollowers(const ProductLine& line, Reporter& reporter) {
    forEachItem(line, FileFormat::AUXILIARY, [&](const FileLines& file, const ReadLine& read) {
        std::string_view raw = rawValue(read);
        raw = raw.substr(0, raw.find('='));
        raw = trimmed(raw.substr(0, raw.find('#')));
        std::string expected(raw);
        expected.erase(std::remove_if(expected.begin(), expected.end(),
                                      [](char c) { return c == '"' || c == ';'; }),
                       expected.end());
        if (trimmed(read.value) == trimmed(expected)) {
            return;
        }
        const std::string_view inner = withoutOuterSymbols(raw);
        const size_t at = inner.find_first_of("\";");
        const std::string_view symbol =
                at != std::string_view::npos ? inner.substr(at, 1) : raw.substr(0, 1);
        reporter.report(placeOf(line, file, read, symbol),
                        "a " + std::string(symbol == ";" ? "semicolon" : "quote") +
                                " removes as many characters as stand before it: " +
                                quoted(read.key) + " is " + quoted(read.value));
    });
}

void checkSecondEquals(const ProductLine& line, Reporter& reporter) {
    forEachItem(line, FileFormat::AUXILIARY, [&](const FileLines& file, const ReadLine& read) {
        const std::string_view raw = rawValue(read);
        const std::string_view code = raw.substr(0, raw.find('#'));
        const size_t second = code.find('=');
        if (second != std::string_view::npos) {
            reporter.report(placeOf(line, file, read, code.substr(second, 1)),
                            "a second \"=\" ends the value: " + quoted(read.key) + " is " +
                                    quoted(read.value));
        }
    });
    forEachItem(line, FileFormat::TV_FEATURES, [&](const FileLines& file, const ReadLine& read) {
        if (read.key.find('=') != std::string_view::npos) {
            reporter.report(placeOf(line, file, read, "="),
                            "the last \"=\" counts: the key is " + quoted(read.key) +
                                    " and the value " + quoted(read.value));
        }
    });
}

void checkMissingValues(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        if (file->format() != FileFormat::AUXILIARY) {
            continue;
        }
        for (const ReadLine& read : file->lines()) {
            const bool isSection = !read.text.empty() && trimmed(read.text).back() == ']';
            if (read.use == LineUse::IGNORED && !isSection) {
                reporter.report(placeOf(line, *file, read, trimmed(read.text)),
                                "no value: the service skips the line");
            }
        }
    }
}

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("+-0123456789") == std::string_view::npos;
}

void checkRemarks(const ProductLine& line, Reporter& reporter) {
    forEachItem(line, FileFormat::AUXILIARY, [&](const FileLines& file, const ReadLine& read) {
        const bool endsInBlank = !read.value.empty() && read.value.back() == ' ';
        const size_t hash = read.text.find('#', read.text.find('='));
        if (endsInBlank && hash != std::string_view::npos && !isNumber(trimmed(read.value))) {
            Place place = placeOf(line, file, read);
            place.column = hash + 1;
            reporter.report(place, "the blank before this comment stays in the value " +
                                           quoted(read.value));
        }
    });
    forEachItem(line, FileFormat::TV_FEATURES, [&](const FileLines& file, const ReadLine& read) {
        const size_t hash = read.value.find('#');
        if (hash != std::string_view::npos && !beginsWith(trimmed(read.key), "#")) {
            reporter.report(placeOf(line, file, read, read.value.substr(hash)),
                            "the comment belongs to the value " + quoted(read.value) +
                                    "; a comment needs a line of its own");
        }
    });
}

constexpr Rule kRules[] = {
        {"cut-value", Severity::ERROR, "a \"#\" in a value ends it",
         "Everything from the first \"#\" of a line on is a comment, in quotes as well.",
         "m_pPanelName = LC#400      (the panel is LC)", "m_pPanelName = LC400", checkCutValues},
        {"vanishing-symbol", Severity::WARNING,
         "a quote or semicolon vanishes from the middle of a value",
         "Model and board files lose all double quotes and semicolons, so the parts of a list "
         "become "
         "one word.",
         "INPUTS = hdmi1;hdmi2      (the value is hdmi1hdmi2)", "INPUTS = hdmi1,hdmi2",
         checkVanishingSymbols},
        {"taken-followers", Severity::ERROR,
         "a quote or semicolon of an audio, karaoke, key or DDC/CI file takes other characters "
         "along",
         "A quote or semicolon at position n of a value removes the n characters after it, too. "
         "Only at the two ends of a value this is harmless.",
         "NAME = ab\"cdef      (the value is abef)", "NAME = \"abcdef\"", checkTakenFollowers},
        {"second-equals", Severity::WARNING, "a second \"=\" stands in a line",
         "In audio, karaoke, key and DDC/CI files the value ends there; in TV feature files the "
         "last \"=\" counts, so that the key is another one.",
         "RATIO = 16=9      (the value is 16)", "RATIO = 16:9", checkSecondEquals},
        {"no-value", Severity::WARNING,
         "a line of an audio, karaoke, key or DDC/CI file has no value",
         "The service skips the line, so the item does not exist.",
         "HDMI_DELAY =", "HDMI_DELAY = 0", checkMissingValues},
        {"remark-in-value", Severity::WARNING, "a comment after a value changes the value",
         "In audio, karaoke, key and DDC/CI files the blank before the comment stays in the value. "
         "In TV feature files the whole comment does, so that a feature is off.",
         "persist.vendor.mlk.tv.enable_ci=true # for now",
         "# for now\npersist.vendor.mlk.tv.enable_ci=true", checkRemarks},
};

}  // namespace

RuleFamily readingValues() {
    return {"values", "Values that lose a part", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
