// Rules about bytes that do not belong into text files.

#include <iterator>

#include "common/FileFormat.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Texts.h"

namespace mlk::tree {

namespace {

// Calls check(file, line) for each line of each text file, plans and XML files apart.
template <typename Check>
void forEachTextLine(const ProductLine& line, const Check& check) {
    for (const auto& [path, file] : line.files()) {
        for (const ReadLine& read : file->lines()) {
            if (read.column != 0) {
                check(*file, read);
            }
        }
    }
}

void checkLongLines(const ProductLine& line, Reporter& reporter) {
    forEachTextLine(line, [&](const FileLines& file, const ReadLine& read) {
        // The rest of a plan's line is a matter of the plan's rules.
        if (!read.isCut || file.format() == FileFormat::CHANNEL_PLAN) {
            return;
        }
        Place place = placeOf(line, file, read);
        place.column = read.text.size() + 1;
        const bool endsFile = file.format() == FileFormat::TV_FEATURES;
        reporter.report(place,
                        "a line of a " + std::string(nameOf(file.format())) + " has at most " +
                                std::to_string(read.text.size() - (endsFile ? 1 : 0)) + " bytes; " +
                                (endsFile ? "the service reads nothing of the file from "
                                            "this line on"
                                          : "what follows here is not read"));
    });
}

void checkNulBytes(const ProductLine& line, Reporter& reporter) {
    forEachTextLine(line, [&](const FileLines& file, const ReadLine& read) {
        // What it does to a plan is a matter of the plan's rules.
        if (!read.hasNul || file.format() == FileFormat::CHANNEL_PLAN) {
            return;
        }
        Place place = placeOf(line, file, read);
        place.column = read.column + read.text.size();
        const bool endsFile = file.format() == FileFormat::TV_FEATURES;
        reporter.report(place, std::string("a NUL byte: the service reads nothing of the ") +
                                       (endsFile ? "file" : "line") + " from here on");
    });
}

void checkByteOrderMarks(const ProductLine& line, Reporter& reporter) {
    forEachTextLine(line, [&](const FileLines& file, const ReadLine& read) {
        if (read.number != 1 || read.column != 1 || !beginsWith(read.text, kByteOrderMark)) {
            return;
        }
        reporter.report(placeOf(line, file, read),
                        "a byte order mark: the service takes its three bytes for the beginning of "
                        "the first line; save the file as UTF-8 without it");
    });
}

void checkEncoding(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        for (const ReadLine& read : file->lines()) {
            const size_t at = read.column == 0 ? std::string_view::npos : invalidUtf8At(read.text);
            if (at != std::string_view::npos) {
                Place place = placeOf(line, *file, read);
                place.column = read.column + at;
                reporter.report(place,
                                "no valid UTF-8; the service hands out these bytes as they are, "
                                "and programs that expect UTF-8 refuse them");
                break;  // one finding a file
            }
        }
    }
}

// Whether a carriage return at the end of a line stays where somebody sees it.
bool keepsCarriageReturn(const FileLines& file, const ReadLine& read) {
    if (read.use != LineUse::ITEM) {
        return false;
    }
    const bool isInItem = read.key.find('\r') != std::string_view::npos ||
                          read.value.find('\r') != std::string_view::npos;
    // The list of models answers the rest of the line.
    const bool isInList =
            file.format() == FileFormat::SYSTEM && read.text.find('\r') != std::string_view::npos;
    return isInItem || isInList;
}

void checkCarriageReturns(const ProductLine& line, Reporter& reporter) {
    for (const auto& [path, file] : line.files()) {
        const ReadLine* first = nullptr;
        size_t count = 0;
        // A country whose name ends in one is unknown: the rule for countries says so.
        // In a file of the identity, it does no harm but to one word of board_id.bin.
        const bool isText = file->format() != FileFormat::COUNTRY_LIST &&
                            file->format() != FileFormat::PROJECT_ID &&
                            file->format() != FileFormat::BOARD_ID &&
                            file->format() != FileFormat::COUNTRY_ID;
        for (const ReadLine& read : file->lines()) {
            if (isText && read.column != 0 && keepsCarriageReturn(*file, read)) {
                first = first == nullptr ? &read : first;
                ++count;
            }
        }
        if (first == nullptr) {
            continue;
        }
        Place place = placeOf(line, *file, *first, "\r");
        std::string message = "a carriage return becomes part of ";
        message += file->format() == FileFormat::SYSTEM ? "what the list of models answers"
                   : first->key.find('\r') != std::string_view::npos
                           ? "the name " + quoted(first->key)
                           : "the value " + quoted(first->value);
        message += "; end lines in a line feed alone";
        if (count > 1) {
            message += " (" + counted(count, "line", "lines") + ")";
        }
        reporter.report(place, message);
    }
}

void checkTabs(const ProductLine& line, Reporter& reporter) {
    forEachTextLine(line, [&](const FileLines& file, const ReadLine& read) {
        const bool hasItems = file.format() == FileFormat::PROJECT ||
                              file.format() == FileFormat::AUXILIARY ||
                              file.format() == FileFormat::TV_FEATURES;
        if (!hasItems || read.use != LineUse::ITEM) {
            return;
        }
        if (read.key.find('\t') != std::string_view::npos) {
            reporter.report(
                    placeOf(line, file, read, "\t"),
                    "a tab becomes part of the key " + quoted(read.key) + "; align with blanks");
        } else if (!read.value.empty() &&
                   (read.value.front() == '\t' || read.value.back() == '\t')) {
            reporter.report(placeOf(line, file, read, read.value),
                            "a tab becomes part of the value " + quoted(read.value) +
                                    "; align with blanks");
        }
    });
}

constexpr Rule kRules[] = {
        {"long-line", Severity::ERROR, "a line is longer than its format allows",
         "The service cuts the line at the limit and skips the rest; a TV feature file ends there "
         "altogether. A path that is cut leads nowhere, a value that is cut is another value.",
         "CUSTOMER_ID = 17      (and 250 blanks before a remark)", "CUSTOMER_ID = 17",
         checkLongLines},
        {"nul-byte", Severity::ERROR, "a NUL byte ends a line early",
         "The service reads texts up to their first NUL byte. Editors hide it, so that the line "
         "looks whole.",
         "m_pPanelName = LC\\0430-A      (the value is LC)", "m_pPanelName = LC430-A",
         checkNulBytes},
        {"byte-order-mark", Severity::ERROR, "a text file begins with a byte order mark",
         "The mark belongs to the first line: a comment becomes an item, a section is not "
         "recognised, and the first country of a list is unknown. Some editors write it unasked.",
         "<EF BB BF>[PANEL]      (an item without a section)", "[PANEL]", checkByteOrderMarks},
        {"not-utf8", Severity::WARNING, "a text is not UTF-8",
         "The service hands out bytes as they are. Java clients replace what is not UTF-8 by "
         "question marks or refuse the text.",
         "PROJECT_NAME = K<FC>che      (ISO 8859-1)",
         "PROJECT_NAME = K\xC3\xBC"
         "che      (UTF-8)",
         checkEncoding},
        {"carriage-return", Severity::ERROR, "a carriage return becomes part of a name or a value",
         "Most formats drop a carriage return at the end of a line. Lists of countries and "
         "languages keep it, so that every country is unknown, and the list of models shows it.",
         "GERMANY<CR><LF>      (an unknown country, taken for ANDORRA)", "GERMANY<LF>",
         checkCarriageReturns},
        {"tab", Severity::ERROR, "a tab becomes part of a key or a value",
         "Only blanks are removed around \"=\". A key with a tab at its end is another key, which "
         "nobody asks for.",
         "m_pPanelName<TAB>= LC430-A", "m_pPanelName = LC430-A", checkTabs},
};

}  // namespace

RuleFamily readingBytes() {
    return {"bytes", "Bytes that do not belong into text files", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
