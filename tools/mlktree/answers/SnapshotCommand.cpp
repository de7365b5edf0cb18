#include <ostream>

#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/Progress.h"
#include "tools/mlktree/WrittenFile.h"
#include "tools/mlktree/answers/Snapshot.h"

namespace mlk::tree {

namespace {

ExitStatus run(const Arguments& arguments, Environment& environment) {
    const std::string word = arguments.words().empty() ? "" : arguments.words().front();
    Progress progress(environment.errors, environment.isErrorTerminal);
    progress.now("reading the tree");
    Selection selection = selectionOf(arguments);
    // So that mlktree diff finds the same sets in a snapshot of some of them and in the whole line.
    selection.hasAllCountries = true;
    const OpenTree tree(arguments, word, environment, selection);
    progress.now("asking all sets");
    const std::unique_ptr<const LineAnswers> answers = answersOf(tree.line());
    progress.stop();
    if (answers->sets.empty()) {
        environment.errors << "mlktree: there are no sets; mlktree check tells why" << std::endl;
    }
    const std::string path = arguments.value("--output", "-");
    if (path == "-") {
        writeSnapshot(*answers, [&](std::string_view text) { environment.output.write(text); });
        return ExitStatus::NOTHING_FOUND;
    }
    WrittenFile file(path);
    writeSnapshot(*answers, [&](std::string_view text) { file.write(text); });
    file.finish();
    return ExitStatus::NOTHING_FOUND;
}

}  // namespace

Command snapshotCommand() {
    Command command;
    command.name = "snapshot";
    command.words = {"[TREE]"};
    command.summary = "writes what every set answers to a file";
    command.description =
            "Writes every answer of every set of the tree as JSON: items, TV features, framework "
            "switches, sound delays, karaoke, keys and DDC/CI, countries, languages and channel "
            "plans, as a service answers them after its start. The options below choose some "
            "sets. Keep the file beside a release, and mlktree diff tells later what has "
            "changed.\n\n"
            "The same tree gives the same bytes. What two or more sets share is written once, "
            "under \"shared\", and others refer to it. Paths are as the partitions' files have "
            "them. A byte that is not UTF-8 is written as \\udcXX.";
    command.groups = {
            {"Options", {outputOption("write to this file; \"-\" for standard output")}},
            treeOptions(),
            setOptions(),
    };
    command.statuses = {{0, "written"},
                        {2,
                         "the command line or the tree is wrong, or the file cannot be written; "
                         "the message says what would be right"}};
    command.examples = {
            {"mlktree snapshot samples/partitions -o release-1.json", "all sets"},
            {"mlktree snapshot --model 6 --country GERMANY -o small.json", "some sets"},
    };
    command.mostWords = 1;
    command.nextWord = treeWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
