#include <cerrno>
#include <cstring>
#include <ostream>

#include "common/SaveFile.h"
#include "tools/mlktree/Ansi.h"
#include "tools/mlktree/Command.h"
#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/Fixes.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/ShownLine.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

void write(const Tree& tree, const MendedFile& file) {
    const std::string host = tree.host(file.path);
    if (product::saveFile(host, file.text) != product::Saved::DONE) {
        throw UsageError(host + " cannot be written: " + std::strerror(errno));
    }
}

// A diff for a person: what no terminal shows, such as a carriage return, is escaped.
std::string shown(std::string_view diff, bool isColour) {
    std::string result;
    while (!diff.empty()) {
        const std::string_view line = diff.substr(0, diff.find('\n'));
        diff.remove_prefix(std::min(line.size() + 1, diff.size()));
        const char* const colour = !isColour               ? ""
                                   : beginsWith(line, "+") ? ansi::kGreen
                                   : beginsWith(line, "-") ? ansi::kRed
                                                           : "";
        result += colour + shownText(line) + (*colour != '\0' ? ansi::kPlain : "") + "\n";
    }
    return result;
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    const std::string word = arguments.words().empty() ? "" : arguments.words().front();
    const OpenTree tree(arguments, word, environment, selectionOf(arguments));
    const bool isWritten = arguments.has("--write");
    const bool isColour = isColoured(arguments, environment, environment.output.isTerminal());
    size_t lines = 0;
    const std::vector<MendedFile> files = mend(tree.line());
    for (const MendedFile& file : files) {
        const std::string diff = diffOf(file, tree.line().sources().lines(file.path));
        // Somebody may apply what goes to a file or a program: it has the bytes.
        environment.output.write(isColour || environment.output.isTerminal() ? shown(diff, isColour)
                                                                             : diff);
        lines += file.lines.size() + (file.endsLastLine ? 1 : 0);
    }
    environment.output.flush();
    if (files.empty()) {
        environment.errors << "mlktree: nothing to mend" << std::endl;
        return ExitStatus::NOTHING_FOUND;
    }
    for (const MendedFile& file : files) {
        if (isWritten) {
            write(tree.tree(), file);
        }
    }
    environment.errors << "mlktree: " << counted(lines, "line", "lines") << " of "
                       << counted(files.size(), "file", "files")
                       << (isWritten ? " mended" : " to mend; --write writes them") << std::endl;
    return isWritten ? ExitStatus::NOTHING_FOUND : ExitStatus::FOUND;
}

}  // namespace

Command fixCommand() {
    Command command;
    command.name = "fix";
    command.words = {"[TREE]"};
    command.summary = "mends what has only one right answer";
    command.description =
            "Shows as a unified diff what can be mended without a question, of what check "
            "finds: byte order marks, carriage returns that become part of a text, spaces that "
            "are no blanks, characters that nobody sees, blanks in the entries of lists and "
            "around the \"=\" of TV features, tabs before \"=\", indented comments, countries "
            "in the wrong case or with a blank or \"-\" in place of \"_\", the missing line end"
            " of a TV feature file, and the line end of a property, which is part of its value."
            " Nothing is written without --write.\n\n"
            "What the service reads right stays right: no mend splits a column of a channel plan, "
            "empties a name or a value, or lets a line that was not read replace another one.";
    command.groups = {
            {"Options",
             {{"--write", 0, "", "write the mended files, each in place"}, colorOption()}},
            treeOptions(),
            setOptions(),
    };
    command.statuses = statusesOf("nothing to mend, or all of it written", "something to mend");
    command.examples = {
            {"mlktree fix samples/partitions", "what would change"},
            {"mlktree fix --write mytree", "change it"},
    };
    command.mostWords = 1;
    command.nextWord = treeWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
