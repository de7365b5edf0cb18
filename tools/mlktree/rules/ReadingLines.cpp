// Rules about lines that the service takes for something else than their author.

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

#include "host/text/Utf8.h"
#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/LineRemarks.h"
#include "tools/mlktree/rules/Meaning.h"

namespace mlk::tree {

namespace {

std::optional<Remark> commentedKeyword(FileFormat /* format */, const ReadLine& read) {
    if (read.use != LineUse::ITEM || !looksLikeComment(read.text)) {
        return std::nullopt;
    }
    return Remark{columnOf(read, read.key),
                  "this comment counts: the service looks for " + quoted(read.key) +
                          " anywhere in a line; remove the line, or spell the word "
                          "differently"};
}

std::optional<Remark> indentedComment(FileFormat /* format */, const ReadLine& read) {
    const std::string_view start = trimmed(read.text);
    const bool isIndented = !read.text.empty() && start.data() != read.text.data();
    if (read.use != LineUse::ITEM || !isIndented || !beginsWith(start, "#")) {
        return std::nullopt;
    }
    return Remark{columnOf(read, "#"), "no comment but an item with the key " + quoted(read.key) +
                                               "; a comment begins in the first column"};
}

std::optional<Remark> semicolonComment(FileFormat /* format */, const ReadLine& read) {
    if (read.use != LineUse::ITEM || !beginsWith(trimmed(read.text), ";")) {
        return std::nullopt;
    }
    return Remark{columnOf(read, ";"),
                  "no comment but an item with the key " + quoted(read.key) +
                          "; in model and board files a comment begins with \"#\""};
}

// In a model or board file.
std::optional<Remark> itemWithoutEquals(const ReadLine& read) {
    const std::string_view code = read.text.substr(0, read.text.find('#'));
    const std::string_view start = trimmed(read.text);
    const bool isMark = beginsWith(read.text, kByteOrderMark);
    const bool isBroken =
            isMark || code.find(']') != std::string_view::npos || beginsWith(start, "[");
    if (read.use != LineUse::ITEM || code.find('=') != std::string_view::npos ||
        trimmed(code).empty() || beginsWith(start, ";") || isBroken ||
        !sectionMeantBy(trimmed(code)).empty()) {
        return std::nullopt;
    }
    return Remark{columnOf(read, start),
                  "no \"=\": the line is an item whose key and value are both " + quoted(read.key)};
}

std::optional<Remark> missingEquals(FileFormat format, const ReadLine& read) {
    if (format == FileFormat::PROJECT) {
        return itemWithoutEquals(read);
    }
    if (read.use != LineUse::IGNORED) {
        return std::nullopt;
    }
    return Remark{columnOf(read, trimmed(read.text)), "no \"=\": the service skips the line"};
}

// A section line that lacks its first or last bracket, or does not begin in the first column.
std::optional<Remark> brokenSection(FileFormat /* format */, const ReadLine& read) {
    const std::string_view code = trimmed(read.text.substr(0, read.text.find('#')));
    const std::string_view start = trimmed(read.text);
    if (read.use == LineUse::SECTION && read.text.find(']') == std::string_view::npos) {
        return Remark{columnOf(read, start), "the section is not closed: its name is " +
                                                     quoted(read.section) + ", without a \"]\""};
    }
    if (read.use == LineUse::SECTION && !read.section.empty() &&
        trimmed(read.section.substr(1, read.section.find(']') - 1)).empty()) {
        return Remark{columnOf(read, start), "the section has no name between its brackets"};
    }
    if (read.use == LineUse::SECTION &&
        std::count(read.section.begin(), read.section.end(), '[') > 1) {
        return Remark{columnOf(read, start),
                      "a section has one pair of brackets: the name of this one is " +
                              quoted(read.section)};
    }
    const std::string_view meant =
            read.use == LineUse::SECTION || code.find('=') != std::string_view::npos
                    ? std::string_view()
                    : sectionMeantBy(code);
    if (!meant.empty() && !beginsWith(code, "[") && code.back() != ']') {
        return Remark{columnOf(read, start),
                      "no section but an item, and what follows belongs to the section above; "
                      "write " +
                              quoted(meant)};
    }
    const bool isIndented = beginsWith(code, "[") && code.find(']') != code.npos;
    const bool lacksBracket =
            !code.empty() && code.back() == ']' && code.find_first_of("=[") == code.npos;
    const bool isItem = read.use == LineUse::ITEM || read.use == LineUse::IGNORED;
    if (!isItem || (!isIndented && !lacksBracket)) {
        return std::nullopt;
    }
    return Remark{
            columnOf(read, start),
            std::string("no section but an item, and what follows belongs to ") +
                    "the section above: " +
                    (isIndented ? "a section begins in the first column" : "the \"[\" is missing")};
}

std::optional<Remark> textAfterSection(FileFormat /* format */, const ReadLine& read) {
    const size_t end = read.section.rfind(']');
    if (read.use != LineUse::SECTION || end == std::string_view::npos ||
        end + 1 == read.section.size()) {
        return std::nullopt;
    }
    return Remark{read.text.find(']') + 2,
                  "what follows the \"]\" belongs to the section's name, which is " +
                          quoted(read.section)};
}

std::optional<Remark> unendedLine(FileFormat /* format */, const ReadLine& read) {
    const bool isComment = beginsWith(read.text, "#");
    if (read.use != LineUse::LOST || read.isCut || read.hasNul || isComment) {
        return std::nullopt;
    }
    return Remark{read.text.size() + 1,
                  "the last line has no line end, so the service does not read it"};
}

std::optional<Remark> featureBlanks(FileFormat /* format */, const ReadLine& read) {
    if (read.use != LineUse::ITEM || looksLikeComment(read.text)) {
        return std::nullopt;
    }
    const std::string_view key = trimmed(read.key);
    const std::string_view value = trimmed(read.value);
    const std::string right = "; write " + quoted(std::string(key) + "=" + std::string(value));
    if (key != read.key && !key.empty()) {
        return Remark{columnOf(read, key), "the blanks belong to the key " + quoted(read.key) +
                                                   ", which nobody asks for" + right};
    }
    if (value != read.value && value.find('#') == std::string_view::npos) {
        return Remark{columnOf(read, "="),
                      "the blanks belong to the value " + quoted(read.value) + right};
    }
    return std::nullopt;
}

constexpr Rule kRules[] = {
        {"commented-keyword", Severity::WARNING,
         "a comment of a customer, system or identity file counts",
         "The service looks for CUSTOMER_ID, SYS_INI, Model_, PROJECT_ID and BOARD_ID anywhere in "
         "a "
         "line. A model that is commented out still raises the highest index, stands in the menu "
         "and can be selected.",
         "#Model_7 = /tvconfigs/model/seven.ini", "# The seventh model is not sold any more.",
         checkLines<commentedKeyword, FileFormat::CUSTOMER, FileFormat::SYSTEM,
                    FileFormat::PROJECT_ID, FileFormat::BOARD_ID, FileFormat::COUNTRY_ID>},
        {"indented-comment", Severity::WARNING, "a comment does not begin in the first column",
         "The line becomes an item. In a model file its name is empty, and it stands in every dump "
         "of the section.",
         "   # 43 inch", "# 43 inch",
         checkLines<indentedComment, FileFormat::PROJECT, FileFormat::AUXILIARY,
                    FileFormat::TV_FEATURES>},
        {"semicolon-comment", Severity::WARNING,
         "a line of a model or board file begins with a semicolon",
         "Semicolons are removed from model and board files, and the rest is an item. Only audio, "
         "karaoke, key and DDC/CI files have comments with a semicolon.",
         "; m_pPanelName = LC430-B      (the panel is LC430-B)", "# m_pPanelName = LC430-B",
         checkLines<semicolonComment, FileFormat::PROJECT>},
        {"no-equals", Severity::ERROR, "a line has no \"=\"",
         "In a model or board file the line becomes an item whose value is its own name; elsewhere "
         "it is skipped.",
         "m_pPanelName LC430-A", "m_pPanelName = LC430-A",
         checkLines<missingEquals, FileFormat::PROJECT, FileFormat::CUSTOMER, FileFormat::SYSTEM,
                    FileFormat::TV_FEATURES>},
        {"broken-section", Severity::ERROR, "a section line lacks a bracket or is indented",
         "The items that follow belong to another section, where nobody asks for them.",
         "PANEL]\nm_pPanelName = LC430-A", "[PANEL]\nm_pPanelName = LC430-A",
         checkLines<brokenSection, FileFormat::PROJECT, FileFormat::AUXILIARY>},
        {"text-after-section", Severity::ERROR, "a text follows the \"]\" of a section",
         "It belongs to the name of the section, which nobody asks for then. In model and board "
         "files a comment with \"#\" may follow; in audio, karaoke, key and DDC/CI files the blank "
         "before the comment already belongs to the name.",
         "[SPEAKER] # built in      (of an audio file)", "# built in\n[SPEAKER]",
         checkLines<textAfterSection, FileFormat::PROJECT, FileFormat::AUXILIARY>},
        {"unended-line", Severity::ERROR, "the last line of a TV feature file has no line end",
         "The service reads a line of this file when it meets the line's end, so the last feature "
         "is lost.",
         "persist.vendor.mlk.tv.enable_dtv=true<end of file>",
         "persist.vendor.mlk.tv.enable_dtv=true<line feed>",
         checkLines<unendedLine, FileFormat::TV_FEATURES>},
        {"feature-blanks", Severity::ERROR, "a TV feature has blanks around its \"=\"",
         "TV feature files are read as they are: a blank belongs to the key or to the value. The "
         "feature then comes from the property, or is off.",
         "persist.vendor.mlk.tv.enable_hdmi = true", "persist.vendor.mlk.tv.enable_hdmi=true",
         checkLines<featureBlanks, FileFormat::TV_FEATURES>},
};

}  // namespace

RuleFamily readingLines() {
    return {"lines", "Lines that mean something else", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
