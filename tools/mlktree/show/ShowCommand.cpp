#include <algorithm>

#include "tools/common/FactTable.h"
#include "tools/common/Json.h"
#include "tools/common/Wrap.h"
#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/show/SetFacts.h"

namespace mlk::tree {

namespace {

size_t countOf(const CheckReport& report, Severity severity) {
    return static_cast<size_t>(std::count_if(
            report.findings.begin(), report.findings.end(),
            [severity](const Finding& finding) { return finding.severity == severity; }));
}

// "2 errors, 1 warning: mlktree check"; empty if there are neither.
std::string findingsLine(size_t errors, size_t warnings) {
    std::string line = errors == 0 ? "" : counted(errors, "error", "errors");
    if (warnings != 0) {
        line += (line.empty() ? "" : ", ") + counted(warnings, "warning", "warnings");
    }
    return line.empty() ? "" : "\n" + line + ": `mlktree check`\n";
}

// Says that the set has no model.
std::string modelLine(const SetModel& set) {
    const std::string why = whyNoModel(set);
    return why.empty() ? ""
                       : paragraph("", "This set has no model: " + why + ".", 0, kFactWidth) + "\n";
}

std::string replacedJson(const std::vector<Fact>& facts) {
    std::vector<std::string> replaced;
    for (const Fact& fact : facts) {
        for (size_t i = 0; i < fact.notes.size(); ++i) {
            if (!fact.notes[i].empty()) {
                replaced.push_back(JsonObject()
                                           .text("group", fact.name.group)
                                           .text("key", fact.name.key)
                                           .number("line", static_cast<int64_t>(i))
                                           .text("layer", fact.notes[i])
                                           .str());
            }
        }
    }
    return jsonArray(replaced);
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    const std::string word = arguments.words().empty() ? "" : arguments.words().front();
    const OpenTree open(arguments, word, environment, selectionOfSet(arguments));
    const SetModel set(open.line(), onlySetOf(open.line()));
    const std::vector<Fact> facts = factsOf(set);
    FactFrame frame;
    frame.missing = missingOf(set, facts);
    const CheckReport report = examine(open.line(), false);
    const size_t errors = countOf(report, Severity::ERROR);
    const size_t warnings = countOf(report, Severity::WARNING);
    if (arguments.value("--format") == "json") {
        const std::string findings = JsonObject()
                                             .number("errors", static_cast<int64_t>(errors))
                                             .number("warnings", static_cast<int64_t>(warnings))
                                             .str();
        environment.output.line(factsJson(facts, frame.missing)
                                        .json("replaced", replacedJson(facts))
                                        .json("findings", findings)
                                        .str());
        return ExitStatus::NOTHING_FOUND;
    }
    frame.styled = isColoured(arguments, environment, environment.output.isTerminal());
    environment.output.write(modelLine(set) + factTable(facts, frame) +
                             findingsLine(errors, warnings));
    return ExitStatus::NOTHING_FOUND;
}

}  // namespace

Command showCommand() {
    Command command;
    command.name = "show";
    command.words = {"[TREE]"};
    command.summary = "shows what a set is";
    command.description =
            "Shows the set that the impdata and tvdata partitions select, or the one that the "
            "options name: its model and board, picture, sound, HDMI, reception, its country and "
            "what that decides, power and remote control. mlkctl show tells the same of a set that "
            "runs.\n\n"
            "Paths are shown as the partitions' files have them. A file that does not exist is "
            "marked \"(missing)\"; a value that the board file or the country has put in the place "
            "of the model's is marked \"(board)\" or \"(country)\". \"-\" stands for an empty "
            "value. The last line counts what check finds in this set.";
    command.groups = {
            {"Options", {formatOption({"text", "json"}), colorOption()}},
            treeOptions(),
            setOptions(),
    };
    command.statuses = {{0, "shown"},
                        {2,
                         "the command line or the tree is wrong; the message says what would "
                         "be right"}};
    command.examples = {
            {"mlktree show samples/partitions", "the set as it starts"},
            {"mlktree show --model 6", "another model"},
            {"mlktree show --format json", "for a program"},
    };
    command.mostWords = 1;
    command.nextWord = treeWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
