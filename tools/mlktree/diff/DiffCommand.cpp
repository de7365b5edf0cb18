#include <utility>

#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/Progress.h"
#include "tools/mlktree/WrittenFile.h"
#include "tools/mlktree/diff/DiffFormats.h"
#include "tools/mlktree/diff/LineDiff.h"
#include "tools/mlktree/diff/Operand.h"
#include "tools/mlktree/diff/SetFilter.h"

namespace mlk::tree {

namespace {

// A snapshot may be of a board or a country that its tree does not name, since options can name
// any. The same options mean the same in a tree that is compared, if the other side has such sets,
// or if that is a tree, too.
void addChosenSets(OpenOperand& a, OpenOperand& b, const Arguments& arguments) {
    const Selection all = selectionOf(arguments);
    Selection board;
    board.board = all.board;
    Selection country;
    country.country = all.country;
    const auto added = [&](const OpenOperand& one, const OpenOperand& other) {
        const auto lacks = [&](const auto& has) {
            return !one.isSnapshot() && !has(one.answers()) &&
                   has(other.answers()) == other.isSnapshot();
        };
        Selection selection;
        selection.customers = all.customers;
        selection.hasAllCountries = true;
        if (lacks([&](const LineAnswers& line) { return SetFilter(board).fitsSomeBoard(line); })) {
            selection.board = all.board;
        }
        if (lacks([&](const LineAnswers& line) {
                return SetFilter(country).fitsSomeCountry(line);
            })) {
            selection.country = all.country;
        }
        return selection;
    };
    const Selection ofA = added(a, b);
    const Selection ofB = added(b, a);
    for (const auto& [side, selection] : {std::pair(&a, &ofA), std::pair(&b, &ofB)}) {
        if (!selection->board.empty() || !selection->country.empty()) {
            side->addSets(*selection);
        }
    }
}

Difference compare(const Operand& a, const Operand& b, const Arguments& arguments,
                   const Environment& environment) {
    const bool isOfSets = a.namesSet() || b.namesSet();
    const SetFilter filter(isOfSets ? Selection() : selectionOf(arguments));
    OpenOperand openA(a, isOfSets, arguments, environment);
    OpenOperand openB(b, isOfSets, arguments, environment);
    if (!isOfSets) {
        addChosenSets(openA, openB, arguments);
    }
    filter.mustFitSomeOf(openA.answers(), openB.answers());
    Difference difference =
            isOfSets ? diffSets(openA.answers(), openA.set(), openB.answers(), openB.set())
                     : diffLines(openA.answers(), openB.answers(), filter);
    difference.a = a.text;
    difference.b = b.text;
    return difference;
}

void print(const Difference& difference, const Arguments& arguments, bool isColoured,
           const TextSink& sink) {
    const std::string format = arguments.value("--format");
    if (format == "json") {
        writeDiffJson(difference, sink);
    } else if (format == "markdown") {
        writeDiffMarkdown(difference, sink);
    } else {
        writeDiffText(difference, isColoured, sink);
    }
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    if (arguments.words().size() != 2) {
        throw UsageError(
                "diff takes two operands, what was and what is: each is a folder with tvconfigs/, "
                "the file of a snapshot, rev:REVISION, or a set such as "
                "model=6,board=FILE,country=NAME,tree=DIR");
    }
    Operand a = parseOperand(arguments.words()[0]);
    Operand b = parseOperand(arguments.words()[1]);
    // An operand that names no set means the one that the other names.
    if (a.namesSet() && !b.namesSet()) {
        b.set = a.set;
    } else if (b.namesSet() && !a.namesSet()) {
        a.set = b.set;
    }
    if (a.namesSet()) {
        addParts(a, arguments);
        addParts(b, arguments);
    }
    Progress progress(environment.errors, environment.isErrorTerminal);
    progress.now("comparing");
    const Difference difference = compare(a, b, arguments, environment);
    progress.stop();
    const std::string path = arguments.value("--output", "-");
    const bool isOnTerminal = path == "-" && environment.output.isTerminal();
    const bool isColouredNow = isColoured(arguments, environment, isOnTerminal);
    if (path == "-") {
        print(difference, arguments, isColouredNow,
              [&](std::string_view text) { environment.output.write(text); });
    } else {
        WrittenFile file(path);
        print(difference, arguments, isColouredNow,
              [&](std::string_view text) { file.write(text); });
        file.finish();
    }
    return difference.changes.empty() ? ExitStatus::NOTHING_FOUND : ExitStatus::FOUND;
}

std::vector<Completion> nextWord(const std::vector<std::string>& before) {
    return before.size() < 2 ? std::vector<Completion>{Completion::OPERAND}
                             : std::vector<Completion>();
}

}  // namespace

Command diffCommand() {
    Command command;
    command.name = "diff";
    command.words = {"A B"};
    command.summary = "tells what differs in effect between two sets or two trees";
    command.description =
            "Compares what sets answer, not what files say: comments, order and formatting of "
            "lines are no difference. A and B are what was and what is. Each is one of these:\n\n"
            "the folder of a tree, or the file that mlktree snapshot has written: all sets are "
            "compared, each with the one of the same model, board, customer and country. Each "
            "difference is told once, with the sets that it reaches;\n\n"
            "rev:REVISION, the tree as that revision of its Git repository has it: the tree that "
            "--tree names, or MLK_ROOT, or the current folder;\n\n"
            "a set, model=N,board=FILE,customer=FILE,country=NAME,tree=DIR: two sets are compared. "
            "Parts may be left out: the tree is then that of --tree, and the others are what the "
            "tree's impdata and tvdata partitions say. tree= may also name a snapshot or "
            "rev:REVISION. If only one of A and B names a set, the other means the same set.\n\n"
            "The options that say which sets compare only these of two trees: \"all sets\" then "
            "means all of them. They mean the same sets of a snapshot that was taken with them. "
            "To two sets they add the parts that neither names.\n\n"
            "A value has the line that gives it, except in a snapshot, which has no lines. Neither "
            "tree is written to.";
    command.groups = {
            {"Options",
             {
                     formatOption({"text", "json", "markdown"}),
                     outputOption("print to this file; \"-\" for standard output"),
                     colorOption(),
                     {"--tree", 0, "DIR", "the tree of an operand that names none",
                      Completion::FOLDER},
                     {"--prop",
                      0,
                      "KEY=VALUE",
                      "a system property of both sides, in place of the one in data/property; may "
                      "be repeated",
                      Completion::PROPERTY,
                      {},
                      "",
                      true},
             }},
            setOptions(),
    };
    command.statuses = {{0, "both are the same"},
                        {1, "they differ"},
                        {2,
                         "the command line or a tree is wrong, or a file cannot be written; the "
                         "message says what would be right"}};
    command.examples = {
            {"mlktree diff model=6 model=7", "two models"},
            {"mlktree diff country=IRELAND country=FIJI", "two countries"},
            {"mlktree diff model=6 model=7 --format markdown", "for a review"},
            {"mlktree diff model=6 model=7 --country IRELAND", "two models in a country"},
    };
    command.mostWords = 2;
    command.nextWord = nextWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
