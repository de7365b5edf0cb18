// Partition trees: an input is a list of files that are laid over the sound tree tests/rules/base.
// The first line of each file of the input is its path, relative to the tree; a file of the path
// alone removes the base's.

#include <tinyxml2.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/testing/TempDir.h"
#include "host/testing/fuzz/Fuzzing.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/Fixes.h"
#include "tools/mlktree/Formats.h"
#include "tools/mlktree/tests/fuzz/OpenedTree.h"
#include "tools/mlktree/tests/fuzz/OverlaidTree.h"

using namespace mlk::tree;
namespace fuzzing = mlk::fuzzing;

namespace {

std::string printed(Format format, const CheckReport& report, const LineOf& lineOf) {
    const FormatContext context{
            lineOf, ruleFamilies(),  Severity::WARNING,
            false,  "file:///tree/", [](const std::string& path) { return path; }};
    std::string text;
    format(report, context, [&](std::string_view piece) { text += piece; });
    return text;
}

void checkPlace(const OpenedTree& opened, const Place& place) {
    const bool isRead = opened.line.find(place.file) != nullptr;
    fuzzing::require(isRead || std::filesystem::exists(opened.tree.host(place.file)),
                     "a finding stands in a file: " + fuzzing::printable(place.file));
    fuzzing::require(place.line != 0 || place.column == 0, "a column stands in a line");
    if (place.line == 0 || opened.settings.keys.size() + opened.settings.rules.size() > 0) {
        return;
    }
    const auto& lines = opened.line.sources().lines(place.file);
    const std::string shown = fuzzing::printable(place.file) + ":" + std::to_string(place.line) +
                              ":" + std::to_string(place.column);
    fuzzing::require(place.line <= lines.size(), "the line of a finding exists: " + shown);
    fuzzing::require(place.column <= lines[place.line - 1].size() + 1,
                     "the column of a finding exists: " + shown);
}

void checkFindings(const OpenedTree& opened, const CheckReport& report) {
    const std::vector<Finding>& findings = report.findings;
    for (size_t i = 1; i < findings.size(); ++i) {
        fuzzing::require(findings[i - 1] < findings[i], "findings are in order, each once");
    }
    for (const Finding& finding : findings) {
        fuzzing::require(findRule(finding.rule) != nullptr, "a finding has a rule");
        fuzzing::require(!finding.message.empty(), "a finding has a message");
        fuzzing::require(finding.message.find_first_of("\n\r\033") == std::string::npos,
                         "a message is one line: " + fuzzing::printable(finding.message));
        checkPlace(opened, finding.place);
        for (const Related& related : finding.related) {
            checkPlace(opened, related.place);
        }
    }
}

// Programs can read their formats, and no byte of a file is a command to a terminal.
void checkFormats(const CheckReport& report, const LineOf& lineOf) {
    using Json = nlohmann::json;
    // A byte that is no UTF-8 is a lone surrogate, which this parser refuses.
    std::string lines = printed(formatJson, report, lineOf);
    for (size_t at = lines.find("\\udc"); at != std::string::npos; at = lines.find("\\udc", at)) {
        lines.replace(at, 4, "\\u00");
    }
    const Json json = Json::parse(lines, nullptr, false);
    fuzzing::require(!json.is_discarded() && json["findings"].size() == report.findings.size(),
                     "the JSON has all findings");
    const Json sarif = Json::parse(printed(formatSarif, report, lineOf), nullptr, false);
    fuzzing::require(
            !sarif.is_discarded() && sarif["runs"][0]["results"].size() ==
                                             report.findings.size() + report.allowed.size(),
            "the SARIF has all findings");
    tinyxml2::XMLDocument xml;
    fuzzing::require(
            xml.Parse(printed(formatJunit, report, lineOf).c_str()) == tinyxml2::XML_SUCCESS,
            "the test report is XML");
    const std::string annotations = printed(formatGithub, report, lineOf);
    fuzzing::require(static_cast<size_t>(std::count(annotations.begin(), annotations.end(),
                                                    '\n')) == report.findings.size() + 1,
                     "an annotation is one line");
    for (const std::string& text : {printed(formatText, report, lineOf), annotations}) {
        const bool isPlain = std::all_of(text.begin(), text.end(), [](unsigned char c) {
            return c == '\n' || (c >= 0x20 && c != 0x7f);
        });
        fuzzing::require(isPlain, "no control byte is printed: " + fuzzing::printable(text));
    }
}

// A mended file is its former lines, of which those that were mended are replaced.
void checkMended(const MendedFile& file, const std::vector<std::string_view>& former,
                 bool isEnded) {
    std::vector<std::string> lines(former.begin(), former.end());
    for (const MendedLine& line : file.lines) {
        fuzzing::requireEqual("a mended line", line.before, lines.at(line.number - 1));
        lines[line.number - 1] = line.after;
    }
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    const bool hasLastEnd = (isEnded || file.endsLastLine) && !file.dropsLastEnd;
    if (!hasLastEnd && !text.empty()) {
        text.pop_back();
    }
    fuzzing::requireEqual("a mended file", file.text, text);
    const std::string diff = diffOf(file, former);
    const auto count = [&](std::string_view start) {
        size_t found = 0;
        for (size_t at = diff.find(start); at != std::string::npos; at = diff.find(start, at + 1)) {
            ++found;
        }
        return found;
    };
    fuzzing::require(count("\n+") >= file.lines.size(), "a diff has all mended lines");
}

void checkFix(const OverlaidTree& tree, const OpenedTree& opened) {
    const std::vector<MendedFile> files = mend(opened.line);
    for (const MendedFile& file : files) {
        checkMended(file, opened.line.sources().lines(file.path),
                    opened.line.sources().endsInLineFeed(file.path));
    }
    if (files.empty() || !std::all_of(files.begin(), files.end(), [&](const MendedFile& file) {
            return tree.has(file.path);
        })) {
        return;
    }
    for (const MendedFile& file : files) {
        fuzzing::writeFile(opened.tree.host(file.path), file.text);
    }
    const OpenedTree again(tree.path());
    for (const MendedFile& more : mend(again.line)) {
        const auto same = std::find_if(files.begin(), files.end(), [&](const MendedFile& file) {
            return file.path == more.path;
        });
        const bool isSame = same != files.end() && again.line.find(more.path)->format() ==
                                                           opened.line.find(more.path)->format();
        fuzzing::require(!isSame, "a mended file has nothing more to mend: " +
                                          fuzzing::printable(diffOf(
                                                  more, again.line.sources().lines(more.path))));
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const mlk::testing::TempDir dir;
    OverlaidTree tree(dir.path(), MLK_BASE_TREE);
    tree.layOver({reinterpret_cast<const char*>(data), size});
    try {
        const OpenedTree opened(tree.path());
        const CheckReport report = examine(opened.line, true);
        const LineOf lineOf = linesOf(opened.line);
        checkFindings(opened, report);
        checkFormats(report, lineOf);
        const OpenedTree second(tree.path());
        fuzzing::requireEqual("a second check",
                              printed(formatJson, examine(second.line, true), lineOf),
                              printed(formatJson, report, lineOf));
        checkFix(tree, opened);
    } catch (const UsageError&) {
        // Settings that are no settings.
    }
    return 0;
}
