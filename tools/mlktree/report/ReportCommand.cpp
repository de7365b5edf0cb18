#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/Examination.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/Progress.h"
#include "tools/mlktree/WrittenFile.h"
#include "tools/mlktree/report/Packed.h"
#include "tools/mlktree/report/PageText.h"
#include "tools/mlktree/report/ReportData.h"

namespace mlk::tree {

namespace {

// A report is of all models, boards and countries.
Option customerOption() {
    for (const Option& option : setOptions().options) {
        if (option.name == "--customer") {
            return option;
        }
    }
    return {};
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    const std::string path = arguments.value("--output");
    if (path.empty()) {
        throw UsageError("--output FILE names the page to write; \"-\" stands for standard output");
    }
    const std::string word = arguments.words().empty() ? "" : arguments.words().front();
    Progress progress(environment.errors, environment.isErrorTerminal);
    progress.now("reading the tree");
    Selection selection;
    selection.customers = arguments.values("--customer");
    const OpenTree tree(arguments, word, environment, selection);
    progress.now("checking the tree");
    const CheckReport report = examine(tree.line(), selection.customers.empty());
    progress.now("collecting the report");
    const ReportData data = reportDataOf(tree.line(), report);
    const std::string summary = inScript(data.summary);
    const std::string compressed = packed(data.data);
    progress.stop();
    const auto write = [&](const auto& sink) {
        for (const std::string_view piece : {kPageBegin, std::string_view(summary), kPageMiddle,
                                             std::string_view(compressed), kPageEnd}) {
            sink(piece);
        }
    };
    if (path == "-") {
        write([&](std::string_view text) { environment.output.write(text); });
        return ExitStatus::NOTHING_FOUND;
    }
    WrittenFile file(path);
    write([&](std::string_view text) { file.write(text); });
    file.finish();
    return ExitStatus::NOTHING_FOUND;
}

}  // namespace

Command reportCommand() {
    Command command;
    command.name = "report";
    command.words = {"[TREE]"};
    command.summary = "shows a whole product line on one page";
    command.description =
            "Writes one HTML file that a browser shows without a network and without other files, "
            "so that it can be sent by mail or kept beside a release: what the line has, what "
            "check finds, with the lines around it, a matrix of models and items, each set with "
            "the chain of its files, countries with their channel plans drawn as a spectrum, sound "
            "delays and TV features.\n\n"
            "The same tree gives the same bytes. The page holds the text of the files that the "
            "service reads; it runs nothing that stands in them.";
    command.groups = {
            {"Options",
             {{"--output", 'o', "FILE",
               "write the page to this file; \"-\" for standard output; must be given",
               Completion::FILE}}},
            treeOptions(),
            {"Which sets", {customerOption()}},
    };
    command.statuses = {{0, "written, whatever check finds"},
                        {2,
                         "the command line or the tree is wrong, or the file cannot be written; "
                         "the message says what would be right"}};
    command.examples = {
            {"mlktree report samples/partitions -o line.html", "the whole line"},
            {"mlktree report -o - | gzip -9 > line.html.gz", "for an archive"},
    };
    command.mostWords = 1;
    command.nextWord = treeWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
