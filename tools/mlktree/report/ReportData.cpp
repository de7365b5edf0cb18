#include "tools/mlktree/report/ReportData.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "projectconfigs/KnownItems.h"
#include "projectconfigs/ProjectID.h"
#include "regional/RegionalData.h"
#include "regional/TvSysMapCfgHolder.h"
#include "tools/common/Json.h"
#include "tools/mlktree/Parallel.h"
#include "tools/mlktree/answers/LineAnswers.h"
#include "tools/mlktree/report/AnswersData.h"
#include "tools/mlktree/report/FileTable.h"
#include "tools/mlktree/report/Findings.h"
#include "tools/mlktree/report/ServiceData.h"
#include "tools/mlktree/report/TextTable.h"
#include "tools/mlktree/set/SetModel.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

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
    rows.reserve(counts.size());
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
    rows.reserve(kinds.size());
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

// The country of the tree's own set: the saved one; without it the first of the country map, as
// after a start of the service.
_tv_country countryOfSet(const ProductLine& line, int64_t index) {
    const Tree& tree = line.tree();
    product::RegionalData data([&tree] { return tree.partitions(); });
    const product::TvSysMapCfgHolder holder(tree.partitions(), line.properties(), data);
    if (const auto saved = holder.savedCountry()) {
        return *saved;
    }
    for (const Model& model : line.models()) {
        for (const Board& board : line.boards()) {
            const bool isOwn = model.counts && model.index == index && board.file != nullptr &&
                               board.file->path() == line.boardOfSet();
            const LayeredItem systems =
                    isOwn ? line.item(model, board, product::item::kTvSystems.category,
                                      product::item::kTvSystems.key)
                          : LayeredItem();
            for (const TvSystemFiles& files : line.tvSystems()) {
                if (systems &&
                    files.file->path() == tree.relative(tree.hostOfWritten(systems.line->value))) {
                    return files.systems->firstCountry();
                }
            }
        }
    }
    return kNoCountry;
}

// The set that impdata and tvdata select: the index of its model, its board file, its country. The
// page begins with it.
std::string ownSetJson(const ProductLine& line, const FileTable& files) {
    const int64_t index = product::ProjectID::read(line.tree().partitions().impdata).value_or(0);
    const size_t board = files.idOf(line.boardOfSet());
    return JsonObject()
            .number("model", index)
            .number("board", board < files.size() ? static_cast<int64_t>(board) : -1)
            .number("country", countryOfSet(line, index))
            .str();
}

// Whether the values of a file's lines are values of items.
bool hasItems(const FileLines& file) {
    return file.format() == FileFormat::PROJECT || file.format() == FileFormat::TV_SYSTEMS ||
           file.format() == FileFormat::COUNTRY_MAP;
}

// Value and file in turns: what values of items name. A line may name further files beside that of
// its value: the receivers' audio files, the map in a folder of plans.
std::string namedJson(const ProductLine& line, const FileTable& files, TextTable& texts) {
    const Tree& tree = line.tree();
    std::map<std::string_view, size_t> named;
    for (const auto& [path, namings] : line.namedPaths()) {
        for (const Naming& naming : namings) {
            if (naming.line == nullptr || naming.line->value.empty() || !hasItems(*naming.file)) {
                continue;
            }
            const auto [entry, isNew] = named.try_emplace(naming.line->value, 0);
            if (isNew) {
                const size_t own = files.idOf(tree.relative(tree.hostOfWritten(entry->first)));
                entry->second = own < files.size() ? own : files.idOf(path);
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
    JsonObject all;
    std::unique_ptr<const LineAnswers> answers;
    const auto describeFiles = [&] {
        data.summary = summaryOf(line, report, files);
        all.json("files", files.json(texts))
                .json("findings", findingsJson(report, files, texts))
                .json("rules", rulesJson())
                .json("own", ownSetJson(line, files))
                .json("named", namedJson(line, files, texts));
    };
    // Neither needs what the other one makes.
    forEachInParallel(2, [&](size_t part) {
        if (part == 0) {
            describeFiles();
        } else {
            answers = answersOf(line);
        }
    });
    all.json("answers", answersJson(line, *answers, files, texts));
    addService(all, line, files, texts);
    // At the end, since everything above adds texts.
    data.data = all.json("texts", texts.json()).str();
    return data;
}

}  // namespace mlk::tree
