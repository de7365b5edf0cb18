// Findings for programs: one JSON object, one finding a line.

#include "tools/common/Json.h"
#include "tools/mlktree/Formats.h"

namespace mlk::tree {

namespace {

std::string jsonOf(const Related& related) {
    return JsonObject()
            .text("file", related.place.file)
            .number("line", static_cast<int64_t>(related.place.line))
            .text("message", related.message)
            .str();
}

std::string jsonOf(const Finding& finding) {
    std::vector<std::string> related;
    related.reserve(finding.related.size());
    for (const Related& each : finding.related) {
        related.push_back(jsonOf(each));
    }
    return JsonObject()
            .text("rule", finding.rule)
            .text("severity", nameOf(finding.severity))
            .text("file", finding.place.file)
            .number("line", static_cast<int64_t>(finding.place.line))
            .number("column", static_cast<int64_t>(finding.place.column))
            .text("message", finding.message)
            .json("sets", jsonTexts(finding.sets))
            .json("related", jsonArray(related))
            .str();
}

}  // namespace

void formatJson(const CheckReport& report, const FormatContext& /* context */,
                const TextSink& sink) {
    JsonLines findings(JsonObject()
                               .text("tree", report.tree)
                               .number("sets", static_cast<int64_t>(report.sets))
                               .number("files", static_cast<int64_t>(report.files)),
                       "findings", sink);
    for (const Finding& finding : report.findings) {
        findings.add(jsonOf(finding));
    }
    findings.end();
}

}  // namespace mlk::tree
