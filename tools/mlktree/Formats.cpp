#include "tools/mlktree/Formats.h"

#include <algorithm>
#include <map>

#include "tools/mlktree/ShownLine.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

const std::vector<std::pair<std::string_view, Format>>& formats() {
    static const std::vector<std::pair<std::string_view, Format>> kFormats = {
            {"text", formatText},     {"json", formatJson},   {"sarif", formatSarif},
            {"github", formatGithub}, {"junit", formatJunit},
    };
    return kFormats;
}

std::string summaryOf(const CheckReport& report) {
    std::map<Severity, size_t> counts;
    for (const Finding& finding : report.findings) {
        ++counts[finding.severity];
    }
    std::string text;
    for (const Severity severity : {Severity::ERROR, Severity::WARNING, Severity::NOTE}) {
        if (counts[severity] != 0) {
            text += (text.empty() ? "" : ", ") + counted(counts[severity], nameOf(severity));
        }
    }
    text = (text.empty() ? "nothing found" : text) + " in " + counted(report.files, "file") + ", " +
           counted(report.sets, "set");
    std::map<AllowedBy, size_t> allowed;
    for (const Allowed& one : report.allowed) {
        ++allowed[one.by == AllowedBy::BASELINE ? AllowedBy::BASELINE : AllowedBy::COMMENT];
    }
    if (allowed[AllowedBy::COMMENT] != 0) {
        text += "; " + counted(allowed[AllowedBy::COMMENT], "finding") + " allowed";
    }
    if (report.hasBaseline) {
        text += "; " + counted(allowed[AllowedBy::BASELINE], "finding") + " known";
        if (report.gone != 0) {
            text += ", " + counted(report.gone, "known finding") + " gone";
        }
    }
    return text;
}

std::string setsInWords(const Finding& finding) {
    constexpr size_t kMost = 6;
    if (finding.sets.empty()) {
        return "no set uses this file";
    }
    if (finding.sets.front() == "all") {
        return "";
    }
    std::string text = "in ";
    for (size_t i = 0; i < finding.sets.size() && i < kMost; ++i) {
        text += (i == 0 ? "" : "; ") + finding.sets[i];
    }
    if (finding.sets.size() > kMost) {
        text += " and " + std::to_string(finding.sets.size() - kMost) + " more";
    }
    return shownText(text);
}

bool isFailed(const std::vector<Finding>& findings, Severity threshold) {
    return std::any_of(findings.begin(), findings.end(),
                       [&](const Finding& finding) { return finding.severity >= threshold; });
}

}  // namespace mlk::tree
