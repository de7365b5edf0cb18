// Findings as annotations of a workflow of GitHub: they appear at their lines in a change.

#include "tools/mlktree/Formats.h"
#include "tools/mlktree/ShownLine.h"

namespace mlk::tree {

namespace {

// The signs that end a part of an annotation.
std::string escaped(std::string_view text, std::string_view signs) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string out;
    for (const char sign : text) {
        if (signs.find(sign) == std::string_view::npos) {
            out += sign;
        } else {
            const auto byte = static_cast<unsigned char>(sign);
            out += '%';
            out += kDigits[byte >> 4U];
            out += kDigits[byte & 0xfU];
        }
    }
    return out;
}

std::string property(std::string_view text) {
    return escaped(text, "%\r\n:,");
}

std::string textData(std::string_view text) {
    return escaped(text, "%\r\n");
}

std::string_view commandOf(Severity severity) {
    return severity == Severity::NOTE ? "notice" : nameOf(severity);
}

std::string textOf(const Finding& finding, const FormatContext& context) {
    std::string text = shownText(finding.message);
    for (const Related& related : finding.related) {
        text += "\n" + shownText(context.fromHere(related.place.file));
        if (related.place.line != 0) {
            text += ":" + std::to_string(related.place.line);
        }
        text += ": " + shownText(related.message);
    }
    const std::string sets = setsInWords(finding);
    return sets.empty() ? text : text + "\n" + sets;
}

}  // namespace

void formatGithub(const CheckReport& report, const FormatContext& context, const TextSink& sink) {
    for (const Finding& finding : report.findings) {
        std::string line = "::" + std::string(commandOf(finding.severity)) +
                           " file=" + property(shownText(context.fromHere(finding.place.file)));
        if (finding.place.line != 0) {
            line += ",line=" + std::to_string(finding.place.line);
        }
        if (finding.place.line != 0 && finding.place.column != 0) {
            line += ",col=" + std::to_string(finding.place.column);
        }
        sink(line + ",title=" + property(finding.rule) + "::" + textData(textOf(finding, context)) +
             "\n");
    }
    sink(summaryOf(report) + "\n");
}

}  // namespace mlk::tree
