// Findings as the result of tests, for servers that show these: each rule is a test case, which
// fails if it has findings at or above the threshold.

#include <algorithm>
#include <map>

#include "tools/mlktree/Formats.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/XmlText.h"

namespace mlk::tree {

namespace {

std::string lineOf(const Finding& finding) {
    std::string text = finding.place.file;
    if (finding.place.line != 0) {
        text += ":" + std::to_string(finding.place.line);
    }
    if (finding.place.line != 0 && finding.place.column != 0) {
        text += ":" + std::to_string(finding.place.column);
    }
    return text + ": " + std::string(nameOf(finding.severity)) + ": " + finding.message;
}

struct Findings {
    std::vector<const Finding*> failed;
    std::vector<const Finding*> other;
};

std::string linesOf(const std::vector<const Finding*>& findings) {
    std::string text;
    for (const Finding* finding : findings) {
        text += "\n" + xmlText(lineOf(*finding));
        for (const Related& related : finding->related) {
            text += "\n    " + xmlText(related.place.file + ":" +
                                       std::to_string(related.place.line) + ": " + related.message);
        }
    }
    return text + "\n";
}

std::string caseOf(const RuleFamily& family, const Rule& rule, const Findings& findings) {
    std::string text = "    <testcase classname=\"mlktree." + xmlText(family.name) + "\" name=\"" +
                       xmlText(rule.name) + "\"";
    if (findings.failed.empty() && findings.other.empty()) {
        return text + "/>\n";
    }
    text += ">\n";
    if (!findings.failed.empty()) {
        const auto worst = std::max_element(findings.failed.begin(), findings.failed.end(),
                                            [](const Finding* one, const Finding* other) {
                                                return one->severity < other->severity;
                                            });
        text += "      <failure message=\"" +
                xmlText(counted(findings.failed.size(), "finding") + ": " +
                        std::string(rule.summary)) +
                "\" type=\"" + std::string(nameOf((*worst)->severity)) + "\">" +
                linesOf(findings.failed) + "</failure>\n";
    }
    if (!findings.other.empty()) {
        text += "      <system-out>" + linesOf(findings.other) + "</system-out>\n";
    }
    return text + "    </testcase>\n";
}

}  // namespace

void formatJunit(const CheckReport& report, const FormatContext& context, const TextSink& sink) {
    std::map<std::string_view, Findings> byRule;
    for (const Finding& finding : report.findings) {
        Findings& findings = byRule[finding.rule];
        (finding.severity >= context.threshold ? findings.failed : findings.other)
                .push_back(&finding);
    }
    size_t rules = 0;
    for (const RuleFamily& family : context.families) {
        rules += family.count;
    }
    const auto failures =
            static_cast<size_t>(std::count_if(byRule.begin(), byRule.end(), [](const auto& row) {
                return !row.second.failed.empty();
            }));
    const std::string numbers = "name=\"mlktree\" tests=\"" + std::to_string(rules) +
                                "\" failures=\"" + std::to_string(failures) + "\" errors=\"0\"";
    sink("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites " + numbers + ">\n  <testsuite " +
         numbers + ">\n");
    for (const RuleFamily& family : context.families) {
        for (size_t i = 0; i < family.count; ++i) {
            sink(caseOf(family, family.rules[i], byRule[family.rules[i].name]));
        }
    }
    sink("    <system-out>" + xmlText(summaryOf(report)) +
         "</system-out>\n  </testsuite>\n</testsuites>\n");
}

}  // namespace mlk::tree
