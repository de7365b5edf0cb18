// Findings in SARIF 2.1.0, the exchange format of static analysis. Texts are valid Unicode: bytes
// that are not UTF-8 are shown as \udcXX, in paths as %XX.

#include <map>
#include <nlohmann/json.hpp>

#include "tools/mlktree/Baseline.h"
#include "tools/mlktree/Formats.h"
#include "tools/mlktree/ShownLine.h"

namespace mlk::tree {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kBase = "TREE";  // the base of all paths

Json message(std::string_view text) {
    return {{"text", shownText(text)}};
}

// What a rule's page says, in Markdown. Examples stand in blocks of code.
std::string markdownOf(const Rule& rule) {
    const auto block = [](std::string_view text) {
        return "```\n" + std::string(text) + "\n```\n";
    };
    return std::string(rule.why) + "\n\nBreaks the rule:\n\n" + block(rule.bad) +
           "\nDoes not:\n\n" + block(rule.good);
}

Json descriptorOf(const RuleFamily& family, const Rule& rule) {
    return {{"id", rule.name},
            {"shortDescription", {{"text", rule.summary}}},
            {"fullDescription", {{"text", rule.why}}},
            {"help",
             {{"text", std::string(rule.why) + "\n\nBreaks the rule:\n" + std::string(rule.bad) +
                               "\n\nDoes not:\n" + std::string(rule.good)},
              {"markdown", markdownOf(rule)}}},
            {"defaultConfiguration", {{"level", nameOf(rule.severity)}}},
            {"properties", {{"tags", {family.name}}}}};
}

class Results {
  public:
    explicit Results(const FormatContext& context) : mContext(context) {
        for (const RuleFamily& family : context.families) {
            for (size_t i = 0; i < family.count; ++i) {
                mIndexes.emplace(family.rules[i].name, mIndexes.size());
            }
        }
    }

    Json resultOf(const Finding& finding, const std::string& fingerprint) const {
        Json result = {{"ruleId", finding.rule}};
        if (const auto found = mIndexes.find(finding.rule); found != mIndexes.end()) {
            result["ruleIndex"] = found->second;
        }
        result["level"] = finding.severity == Severity::OFF ? "none" : nameOf(finding.severity);
        result["message"] = message(finding.message);
        result["locations"] = Json::array({locationOf(finding.place)});
        if (!finding.related.empty()) {
            Json related = Json::array();
            for (const Related& one : finding.related) {
                Json location = locationOf(one.place);
                location["id"] = related.size();
                location["message"] = message(one.message);
                related.push_back(std::move(location));
            }
            result["relatedLocations"] = std::move(related);
        }
        result["partialFingerprints"] = {{"mlktree/v1", fingerprint}};
        Json sets = Json::array();
        for (const std::string& set : finding.sets) {
            sets.push_back(shownText(set));
        }
        result["properties"] = {{"sets", std::move(sets)}};
        result["suppressions"] = Json::array();
        return result;
    }

  private:
    Json locationOf(const Place& place) const {
        Json physical = {{"artifactLocation", {{"uri", uriOf(place.file)}, {"uriBaseId", kBase}}}};
        if (place.line != 0) {
            Json region = {{"startLine", place.line}};
            const std::string_view source = mContext.lineOf(place.file, place.line);
            if (place.column != 0) {
                region["startColumn"] = codePointColumn(source, place.column);
            }
            if (!source.empty()) {
                region["snippet"] = {{"text", shownText(source.substr(0, kMostSnippet))}};
            }
            physical["region"] = std::move(region);
        }
        return {{"physicalLocation", std::move(physical)}};
    }

    static constexpr size_t kMostSnippet = 1024;

    const FormatContext& mContext;
    std::map<std::string_view, size_t> mIndexes;
};

Json suppressionOf(const Allowed& allowed) {
    return {{"kind", allowed.by == AllowedBy::COMMENT ? "inSource" : "external"},
            {"status", "accepted"},
            {"justification", shownText(allowed.reason)}};
}

Json headOf(const FormatContext& context) {
    Json rules = Json::array();
    for (const RuleFamily& family : context.families) {
        for (size_t i = 0; i < family.count; ++i) {
            rules.push_back(descriptorOf(family, family.rules[i]));
        }
    }
    Json run = {
            {"tool",
             {{"driver", {{"name", "mlktree"}, {"version", "1.0"}, {"rules", std::move(rules)}}}}},
            {"columnKind", "unicodeCodePoints"},
            {"invocations", {{{"executionSuccessful", true}}}}};
    Json base = {{"description", {{"text", "the folder of the partition tree"}}}};
    if (!context.treeUri.empty()) {
        base["uri"] = context.treeUri;
    }
    run["originalUriBaseIds"] = {{kBase, std::move(base)}};
    return run;
}

}  // namespace

std::string uriOf(std::string_view path) {
    constexpr std::string_view kPlain =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string uri;
    for (const char sign : path) {
        if (kPlain.find(sign) != std::string_view::npos) {
            uri += sign;
        } else {
            const auto byte = static_cast<unsigned char>(sign);
            uri += '%';
            uri += kDigits[byte >> 4U];
            uri += kDigits[byte & 0xfU];
        }
    }
    return uri;
}

void formatSarif(const CheckReport& report, const FormatContext& context, const TextSink& sink) {
    const Results results(context);
    std::string head = headOf(context).dump();
    head.pop_back();  // the results go before its end
    sink("{\"$schema\":\"https://json.schemastore.org/sarif-2.1.0.json\",\"version\":\"2.1.0\","
         "\"runs\":[" +
         head + ",\"results\":[");
    Fingerprints fingerprints(context.lineOf);
    const char* lead = "\n";
    const auto print = [&](const Json& result) {
        sink(lead + result.dump());
        lead = ",\n";
    };
    for (const Finding& finding : report.findings) {
        Json result = results.resultOf(finding, fingerprints.next(finding));
        if (report.hasBaseline) {
            result["baselineState"] = "new";
        }
        print(result);
    }
    for (const Allowed& allowed : report.allowed) {
        Json result = results.resultOf(allowed.finding, fingerprints.next(allowed.finding));
        result["suppressions"].push_back(suppressionOf(allowed));
        if (report.hasBaseline) {
            result["baselineState"] = allowed.by == AllowedBy::BASELINE ? "unchanged" : "new";
        }
        print(result);
    }
    sink("\n]}]}\n");
}

}  // namespace mlk::tree
