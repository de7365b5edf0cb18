#include "tools/mlktree/report/Findings.h"

#include <set>

#include "tools/common/Json.h"
#include "tools/mlktree/Rule.h"

namespace mlk::tree {

namespace {

std::string_view wordsOf(AllowedBy by) {
    switch (by) {
        case AllowedBy::COMMENT:
            return "a comment";
        case AllowedBy::SETTINGS:
            return "mlktree.toml";
        case AllowedBy::BASELINE:
            break;
    }
    return "the baseline";
}

// Names texts and files by their numbers.
class Writer {
  public:
    Writer(const FileTable& files, TextTable& texts) : mFiles(files), mTexts(texts) {}

    JsonObject objectOf(const Finding& finding) {
        JsonObject object;
        number(object, "rule", finding.rule);
        number(object, "severity", nameOf(finding.severity));
        object.number("file", static_cast<int64_t>(mFiles.idOf(finding.place.file)))
                .number("line", static_cast<int64_t>(finding.place.line))
                .number("column", static_cast<int64_t>(finding.place.column));
        number(object, "message", finding.message);
        NumberList sets;
        for (const std::string& group : finding.sets) {
            sets.add(mTexts.idOf(group));
        }
        object.json("sets", sets.json());
        NumberList related;  // file, line and message in turns
        for (const Related& other : finding.related) {
            related.add(mFiles.idOf(other.place.file))
                    .add(other.place.line)
                    .add(mTexts.idOf(other.message));
        }
        object.json("related", related.json());
        return object;
    }

    void number(JsonObject& object, std::string_view name, std::string_view text) {
        object.number(name, static_cast<int64_t>(mTexts.idOf(text)));
    }

  private:
    const FileTable& mFiles;
    TextTable& mTexts;
};

}  // namespace

std::vector<std::string> filesOf(const CheckReport& report) {
    std::set<std::string> paths;
    const auto add = [&paths](const Finding& finding) {
        paths.insert(finding.place.file);
        for (const Related& related : finding.related) {
            paths.insert(related.place.file);
        }
    };
    for (const Finding& finding : report.findings) {
        add(finding);
    }
    for (const Allowed& allowed : report.allowed) {
        add(allowed.finding);
    }
    paths.erase("");
    return {paths.begin(), paths.end()};
}

std::string findingsJson(const CheckReport& report, const FileTable& files, TextTable& texts) {
    Writer writer(files, texts);
    std::vector<std::string> all;
    for (const Finding& finding : report.findings) {
        all.push_back(writer.objectOf(finding).str());
    }
    for (const Allowed& allowed : report.allowed) {
        JsonObject object = writer.objectOf(allowed.finding);
        writer.number(object, "allowedBy", wordsOf(allowed.by));
        writer.number(object, "reason", allowed.reason);
        all.push_back(object.str());
    }
    return jsonArray(all);
}

std::string rulesJson() {
    std::vector<std::string> all;
    for (const RuleFamily& family : ruleFamilies()) {
        for (size_t i = 0; i < family.count; ++i) {
            const Rule& rule = family.rules[i];
            all.push_back(JsonObject()
                                  .text("name", rule.name)
                                  .text("family", family.title)
                                  .text("severity", nameOf(rule.severity))
                                  .text("summary", rule.summary)
                                  .text("why", rule.why)
                                  .text("bad", rule.bad)
                                  .text("good", rule.good)
                                  .str());
        }
    }
    return jsonArray(all);
}

}  // namespace mlk::tree
