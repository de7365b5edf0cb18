// Findings for programs: one JSON object, one finding a line.

#include "tools/common/Text.h"
#include "tools/mlktree/Formats.h"

namespace mlk::tree {

namespace {

void append(std::string& out, std::string_view name, std::string_view value) {
    appendJsonString(out += ",\"" + std::string(name) + "\":", value);
}

std::string jsonOf(const Related& related) {
    std::string out = "{\"file\":" + jsonString(related.place.file) +
                      ",\"line\":" + std::to_string(related.place.line);
    append(out, "message", related.message);
    return out + "}";
}

std::string jsonOf(const Finding& finding) {
    std::string out = "{\"rule\":" + jsonString(finding.rule);
    append(out, "severity", nameOf(finding.severity));
    append(out, "file", finding.place.file);
    out += ",\"line\":" + std::to_string(finding.place.line);
    out += ",\"column\":" + std::to_string(finding.place.column);
    append(out, "message", finding.message);
    out += ",\"sets\":[";
    for (const std::string& set : finding.sets) {
        out += (out.back() == '[' ? "" : ",") + jsonString(set);
    }
    out += "],\"related\":[";
    for (const Related& related : finding.related) {
        out += (out.back() == '[' ? "" : ",") + jsonOf(related);
    }
    return out + "]}";
}

}  // namespace

void formatJson(const CheckReport& report, const FormatContext& /* context */, const Sink& sink) {
    sink("{\"tree\":" + jsonString(report.tree) + ",\"sets\":" + std::to_string(report.sets) +
         ",\"files\":" + std::to_string(report.files) + ",\"findings\":[");
    const char* lead = "\n";
    for (const Finding& finding : report.findings) {
        sink(lead + jsonOf(finding));
        lead = ",\n";
    }
    sink(report.findings.empty() ? "]}\n" : "\n]}\n");
}

}  // namespace mlk::tree
