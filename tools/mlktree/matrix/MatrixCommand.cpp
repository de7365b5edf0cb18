#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <ostream>

#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/WrittenFile.h"
#include "tools/mlktree/matrix/MatrixFormats.h"

namespace mlk::tree {

namespace {

// A narrower terminal, or none.
constexpr size_t kUsualWidth = 100;
constexpr size_t kLeastWidth = 20;

size_t widthFor(const Arguments& arguments, const Environment& environment) {
    if (arguments.has("--width")) {
        const std::string text = arguments.value("--width");
        size_t width = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), width);
        if (error != std::errc() || end != text.data() + text.size() || width < kLeastWidth) {
            throw UsageError("--width takes a number of columns from " +
                             std::to_string(kLeastWidth) + ", not " + excerpt(text));
        }
        return width;
    }
    winsize size{};
    const bool isKnown = environment.output.isTerminal() &&
                         ioctl(environment.output.descriptor(), TIOCGWINSZ, &size) == 0;
    return isKnown && size.ws_col >= kLeastWidth ? size.ws_col : kUsualWidth;
}

bool isWild(const std::string& word) {
    return word.find_first_of("[]*?") != std::string::npos;
}

// The first word is the tree if it can be one, and then the patterns follow.
std::string treeOf(std::vector<std::string>& words, const Arguments& arguments) {
    const bool hasTree = !words.empty() && !arguments.has("--tree") && !isWild(words.front()) &&
                         looksLikeTree(words.front());
    if (!hasTree) {
        return "";
    }
    std::string tree = words.front();
    words.erase(words.begin());
    return tree;
}

// "; TREE comes first" for a message about a pattern that is a folder with tvconfigs/ or a path.
std::string treeHint(const std::string& pattern, const Arguments& arguments) {
    return !arguments.has("--tree") && !isWild(pattern) && looksLikeTree(pattern)
                   ? "; if " + excerpt(pattern) + " is the tree, it comes first"
                   : "";
}

// Somebody may have meant the first word as the tree, so a message on the tree says what it is.
std::unique_ptr<const OpenTree> opened(const Arguments& arguments, const std::string& tree,
                                       const std::vector<std::string>& patterns,
                                       const Environment& environment) {
    try {
        return std::make_unique<const OpenTree>(arguments, tree, environment,
                                                selectionOf(arguments));
    } catch (const UsageError& error) {
        const bool isDefault = tree.empty() && !patterns.empty() && !arguments.has("--tree");
        if (!isDefault || !beginsWith(error.what(), "no partition tree")) {
            throw;
        }
        for (const std::string& pattern : patterns) {
            const std::string hint = treeHint(pattern, arguments);
            if (!hint.empty()) {
                throw UsageError(error.what() + hint);
            }
        }
        throw UsageError(std::string(error.what()) + "; " + excerpt(patterns.front()) +
                         " is no such folder and counts as a PATTERN");
    }
}

// A section without its brackets.
std::string bare(std::string_view section) {
    return std::string(section.substr(section.empty() ? 0 : 1, section.find(']') - 1));
}

// Throws if a pattern fits no row.
void requireRows(const LineAnswers& line, const std::vector<std::string>& patterns,
                 const Arguments& arguments) {
    const std::vector<MatrixRow> rows = rowsOf(line);
    for (const std::string& pattern : patterns) {
        const bool fits = std::any_of(rows.begin(), rows.end(), [&pattern](const MatrixRow& row) {
            return isChosen(row, pattern);
        });
        if (fits) {
            continue;
        }
        const std::string hint = treeHint(pattern, arguments);
        if (!hint.empty()) {
            throw NotFound("no item, feature or plan fits " + excerpt(pattern) + hint);
        }
        std::vector<std::string> names;
        for (const MatrixRow& row : rows) {
            for (const std::string& name : {row.name(), bare(row.section), std::string(row.key)}) {
                if (!name.empty()) {
                    names.push_back(name);
                }
            }
        }
        throw NotFound("no item, feature or plan fits " + excerpt(pattern) +
                       didYouMean(pattern, {names.begin(), names.end()}, ""));
    }
}

void note(const Matrix& matrix, Environment& environment) {
    if (!matrix.rows().empty()) {
        return;
    }
    environment.errors << "mlktree: "
                       << (matrix.setCount() == 0
                                   ? "there are no sets"
                                   : "nothing differs: " +
                                             counted(matrix.sameRows(), "row is", "rows are") +
                                             " the same in all sets; --all shows them")
                       << std::endl;
}

MatrixLayout layoutOf(const Arguments& arguments) {
    const std::string layout = arguments.value("--layout", "auto");
    return layout == "table"  ? MatrixLayout::TABLE
           : layout == "list" ? MatrixLayout::LIST
                              : MatrixLayout::AUTO;
}

MatrixFormat formatOf(const Arguments& arguments) {
    const std::string format = arguments.value("--format");
    for (const auto& [name, print] : matrixFormats()) {
        if (name == format) {
            return print;
        }
    }
    return matrixFormats().front().second;
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    std::vector<std::string> words = arguments.words();
    const std::string tree = treeOf(words, arguments);
    const size_t width = widthFor(arguments, environment);
    const auto open = opened(arguments, tree, words, environment);
    const auto answers = answersOf(open->line());
    requireRows(*answers, words, arguments);
    const Matrix matrix(*answers, {words, arguments.has("--all")});
    const std::string path = arguments.value("--output", "-");
    MatrixStyle style;
    style.layout = layoutOf(arguments);
    style.width = width;
    style.isColoured =
            isColoured(arguments, environment, path == "-" && environment.output.isTerminal());
    note(matrix, environment);
    const MatrixFormat print = formatOf(arguments);
    if (path == "-") {
        print(matrix, style, [&](std::string_view text) { environment.output.write(text); });
        return ExitStatus::NOTHING_FOUND;
    }
    WrittenFile file(path);
    print(matrix, style, [&](std::string_view text) { file.write(text); });
    file.finish();
    return ExitStatus::NOTHING_FOUND;
}

std::vector<Completion> matrixWord(const std::vector<std::string>& before) {
    return before.empty() ? std::vector<Completion>{Completion::FOLDER, Completion::ROW}
                          : std::vector<Completion>{Completion::ROW};
}

std::vector<std::string_view> formatNames() {
    std::vector<std::string_view> names;
    for (const auto& [name, format] : matrixFormats()) {
        names.push_back(name);
    }
    return names;
}

}  // namespace

Command matrixCommand() {
    Command command;
    command.name = "matrix";
    command.words = {"[TREE] [PATTERN]..."};
    command.summary = "shows what differs between the sets of a line, as a table";
    command.description =
            "A row for each item, TV feature (\"feature\"), framework switch (\"framework\") and "
            "kind of channel plan (\"plan\") that is not the same in all sets; a column for sets "
            "that are the same in all these rows. If the columns are too many for a table, each "
            "row is a list of its values with the sets that have them. It looks at all sets that "
            "the tree has: all models, boards, customers and countries. The options below choose "
            "some.\n\n"
            "PATTERN chooses rows by their names: \"*\" stands for any characters, \"?\" for one. "
            "The name of a section, a key or a getter stands for itself; a section needs no "
            "brackets. The words feature, framework and plan stand for all of that kind.\n\n"
            "\"-\" stands for an item that a set does not have, \"\" for an empty value; a channel "
            "plan is shown as its file and the number of its channels. In JSON, each row has its "
            "values with their sets: a group of sets lists its models, boards and countries, "
            "without what all sets have.";
    command.groups = {
            {"Options",
             {{"--all", 0, "", "show rows that are the same in all sets, too"},
              formatOption(formatNames()),
              outputOption("print to this file; \"-\" for standard output"),
              {"--layout",
               0,
               "LAYOUT",
               "the text as a table or as lists; auto: a table if its columns are few",
               Completion::CHOICE,
               {"auto", "table", "list"},
               "auto"},
              {"--width", 0, "N",
               "the columns of the text; default: those of the terminal, or 100"},
              colorOption()}},
            treeOptions(),
            setOptions(),
    };
    command.statuses = statusesOf("shown", "a PATTERN fits nothing");
    command.examples = {
            {"mlktree matrix SSC", "what a section differs in"},
            {"mlktree matrix '*PanelName' 'feature dtv*'", "rows by name"},
            {"mlktree matrix AQ --country GERMANY --format csv", "for a spreadsheet"},
    };
    command.mostWords = 1000;
    command.nextWord = matrixWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
