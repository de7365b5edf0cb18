#include "tools/mlktree/report/ReportData.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/common/Json.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/report/AnswersData.h"
#include "tools/mlktree/report/FileTable.h"
#include "tools/mlktree/report/Findings.h"
#include "tools/mlktree/report/ServiceData.h"
#include "tools/mlktree/report/TextTable.h"

namespace mlk::tree {

namespace {

constexpr size_t kShownUnused = 50;  // on the overview; the page's list of files has all of them

// The tree's own folder, so that the page does not depend on the place where it is made.
std::string titleOf(const Tree& tree) {
    const std::filesystem::path folder(tree.root().empty() ? tree.partitions().tvconfigs
                                                           : tree.root());
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::weakly_canonical(folder, error);
    const std::string name = (error ? folder : whole).filename().string();
    return name.empty() ? folder.string() : name;
}

int64_t countOf(const CheckReport& report, Severity severity) {
    return std::count_if(
            report.findings.begin(), report.findings.end(),
            [severity](const Finding& finding) { return finding.severity == severity; });
}

std::string severitiesJson(const CheckReport& report) {
    JsonObject object;
    for (const Severity severity : {Severity::ERROR, Severity::WARNING, Severity::NOTE}) {
        object.number(nameOf(severity), countOf(report, severity));
    }
    return object.number("allowed", static_cast<int64_t>(report.allowed.size())).str();
}

// The rules with findings: the name, the severity of the first finding, how many there are.
std::string ruleCountsJson(const CheckReport& report) {
    std::map<std::string, std::pair<Severity, int64_t>> counts;
    for (const Finding& finding : report.findings) {
        auto& [severity, count] = counts[finding.rule];
        severity = std::max(severity, finding.severity);
        ++count;
    }
    std::vector<std::string> rows;
    for (const auto& [rule, row] : counts) {
        rows.push_back(JsonObject()
                               .text("rule", rule)
                               .text("severity", nameOf(row.first))
                               .number("count", row.second)
                               .str());
    }
    return jsonArray(rows);
}

std::string kindsJson(const FileTable& files) {
    std::map<std::string, std::pair<int64_t, int64_t>> kinds;
    for (const ReportedFile& file : files.files()) {
        if (file.exists) {
            ++kinds[file.kind].first;
            kinds[file.kind].second += static_cast<int64_t>(file.bytes);
        }
    }
    std::vector<std::string> rows;
    for (const auto& [kind, sums] : kinds) {
        rows.push_back(JsonObject()
                               .text("kind", kind)
                               .number("count", sums.first)
                               .number("bytes", sums.second)
                               .str());
    }
    return jsonArray(rows);
}

std::string summaryOf(const ProductLine& line, const CheckReport& report, const FileTable& files) {
    std::vector<std::string> unused;
    int64_t unusedCount = 0;
    int64_t missing = 0;
    for (const ReportedFile& file : files.files()) {
        const bool isNamed = !line.namings(file.path).empty();
        missing += !file.exists && isNamed ? 1 : 0;
        if (file.isUnused && ++unusedCount <= static_cast<int64_t>(kShownUnused)) {
            unused.push_back(file.path);
        }
    }
    const auto models = std::count_if(line.models().begin(), line.models().end(),
                                      [](const Model& model) { return model.counts; });
    return JsonObject()
            .text("title", titleOf(line.tree()))
            .number("sets", static_cast<int64_t>(report.sets))
            .number("files", static_cast<int64_t>(report.files))
            .number("models", models)
            .number("boards", static_cast<int64_t>(line.boards().size()))
            .number("customers", static_cast<int64_t>(line.customers().size()))
            .number("countries", static_cast<int64_t>(line.countries().size()))
            .json("severities", severitiesJson(report))
            .json("rules", ruleCountsJson(report))
            .json("kinds", kindsJson(files))
            .json("unused", jsonTexts(unused))
            .number("unusedCount", unusedCount)
            .number("missing", missing)
            .str();
}

// Value and file in turns: what values of items name.
std::string namedJson(const ProductLine& line, const FileTable& files, TextTable& texts) {
    std::map<std::string_view, size_t> named;
    for (const auto& [path, namings] : line.namedPaths()) {
        for (const Naming& naming : namings) {
            if (naming.line != nullptr && !naming.line->value.empty()) {
                named.emplace(naming.line->value, files.idOf(path));
            }
        }
    }
    NumberList list;
    for (const auto& [value, file] : named) {
        list.add(texts.idOf(value)).add(file);
    }
    return list.json();
}

}  // namespace

ReportData reportDataOf(const ProductLine& line, const CheckReport& report) {
    const FileTable files(line, filesOf(report));
    TextTable texts;
    ReportData data;
    data.summary = summaryOf(line, report, files);
    JsonObject all;
    all.json("files", files.json(texts))
            .json("findings", findingsJson(report, files, texts))
            .json("rules", rulesJson())
            .json("named", namedJson(line, files, texts))
            .json("answers", answersJson(line, *answersOf(line), files, texts));
    addService(all, line, files, texts);
    // At the end, since everything above adds texts.
    data.data = all.json("texts", texts.json()).str();
    return data;
}

}  // namespace mlk::tree
