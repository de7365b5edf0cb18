// Rules about bytes that do not belong into text files.

#include <iterator>
#include <optional>

#include "common/FileFormat.h"
#include "host/text/Utf8.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/LineRemarks.h"

namespace mlk::tree {

namespace {

std::optional<Remark> longLine(FileFormat format, const ReadLine& read) {
    // The rest of a plan's line is a matter of the plan's rules.
    if (!read.isCut || format == FileFormat::CHANNEL_PLAN) {
        return std::nullopt;
    }
    const bool endsFile = format == FileFormat::TV_FEATURES;
    return Remark{read.text.size() + 1,
                  "a line of a " + std::string(nameOf(format)) + " has at most " +
                          std::to_string(read.text.size() - (endsFile ? 1 : 0)) + " bytes; " +
                          (endsFile ? "the service reads nothing of the file from "
                                      "this line on"
                                    : "what follows here is not read")};
}

std::optional<Remark> nulByte(FileFormat format, const ReadLine& read) {
    // What it does to a plan is a matter of the plan's rules.
    if (!read.hasNul || format == FileFormat::CHANNEL_PLAN) {
        return std::nullopt;
    }
    const bool endsFile = format == FileFormat::TV_FEATURES;
    return Remark{read.column + read.text.size(),
                  std::string("a NUL byte: the service reads nothing of the ") +
                          (endsFile ? "file" : "line") + " from here on"};
}

void checkByteOrderMarks(const ProductLine& line, Reporter& reporter) {
    const std::vector<bool> marked =
            contentsThat(line, [](FileFormat format, const ReadLine& read) {
                // Before the keyword of an identity file it does no harm.
                return beginsWith(read.text, kByteOrderMark) && !isIdentity(format);
            });
    for (const auto& [path, file] : line.files()) {
        for (const ReadLine* const read : linesThat(*file, marked)) {
            // Further down, where somebody has joined two files, it harms what the service uses.
            if (read->number == 1 || read->use != LineUse::NOTHING) {
                reporter.reportSpoilt(
                        placeOf(line, *file, *read), {read->number, read->number},
                        "a byte order mark: the service takes its three bytes for the beginning "
                        "of the " +
                                std::string(read->number == 1 ? "first " : "") +
                                "line; save the file as UTF-8 without it");
            }
        }
    }
}

void checkEncoding(const ProductLine& line, Reporter& reporter) {
    const std::vector<bool> wrong =
            contentsThat(line, [](FileFormat /* format */, const ReadLine& read) {
                return invalidUtf8At(read.text) != std::string_view::npos;
            });
    for (const auto& [path, file] : line.files()) {
        const std::vector<const ReadLine*> lines = linesThat(*file, wrong);
        if (!lines.empty()) {  // one finding a file
            const ReadLine& first = *lines.front();
            reporter.report({path, first.number, first.column + invalidUtf8At(first.text)},
                            "no valid UTF-8; the service hands out these bytes as they are, "
                            "and programs that expect UTF-8 refuse them");
        }
    }
}

// Whether a carriage return at the end of a line stays where somebody sees it.
bool keepsCarriageReturn(FileFormat format, const ReadLine& read) {
    // A country whose name ends in one is unknown: the rule for countries says so.
    // In a file of the identity, it does no harm but to one word of board_id.bin.
    const bool isText = format != FileFormat::COUNTRY_LIST && !isIdentity(format);
    const bool isInItem = read.key.find('\r') != std::string_view::npos ||
                          read.value.find('\r') != std::string_view::npos;
    // The list of models answers the rest of the line.
    const bool isInList =
            format == FileFormat::SYSTEM && read.text.find('\r') != std::string_view::npos;
    return isText && read.use == LineUse::ITEM && (isInItem || isInList);
}

void checkCarriageReturns(const ProductLine& line, Reporter& reporter) {
    const std::vector<bool> keeping = contentsThat(line, keepsCarriageReturn);
    for (const auto& [path, file] : line.files()) {
        const std::vector<const ReadLine*> lines = linesThat(*file, keeping);
        if (lines.empty()) {
            continue;
        }
        const ReadLine& first = *lines.front();
        std::string message = "a carriage return becomes part of ";
        message += file->format() == FileFormat::SYSTEM ? "what the list of models answers"
                   : first.key.find('\r') != std::string_view::npos
                           ? "the name " + quoted(first.key)
                           : "the value " + quoted(first.value);
        message += "; end lines in a line feed alone";
        if (lines.size() > 1) {
            message += " (" + counted(lines.size(), "line", "lines") + ")";
        }
        reporter.report(placeOf(line, *file, first, "\r"), message);
    }
}

std::optional<Remark> tab(FileFormat /* format */, const ReadLine& read) {
    if (read.use != LineUse::ITEM) {
        return std::nullopt;
    }
    if (read.key.find('\t') != std::string_view::npos) {
        return Remark{columnOf(read, "\t"),
                      "a tab becomes part of the key " + quoted(read.key) + "; align with blanks"};
    }
    if (!read.value.empty() && (read.value.front() == '\t' || read.value.back() == '\t')) {
        return Remark{
                columnOf(read, read.value),
                "a tab becomes part of the value " + quoted(read.value) + "; align with blanks"};
    }
    return std::nullopt;
}

constexpr Rule kRules[] = {
        {"long-line", Severity::ERROR, "a line is longer than its format allows",
         "The service cuts the line at the limit and skips the rest; a TV feature file ends there "
         "altogether. A path that is cut leads nowhere, a value that is cut is another value.",
         "CUSTOMER_ID = 17      (and 250 blanks before a remark)", "CUSTOMER_ID = 17",
         checkLines<longLine>},
        {"nul-byte", Severity::ERROR, "a NUL byte ends a line early",
         "The service reads texts up to their first NUL byte. Editors hide it, so that the line "
         "looks whole.",
         "m_pPanelName = LC\\0430-A      (the value is LC)", "m_pPanelName = LC430-A",
         checkLines<nulByte>},
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
         "m_pPanelName<TAB>= LC430-A", "m_pPanelName = LC430-A",
         checkLines<tab, FileFormat::PROJECT, FileFormat::AUXILIARY, FileFormat::TV_FEATURES>},
};

}  // namespace

RuleFamily readingBytes() {
    return {"bytes", "Bytes that do not belong into text files", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
