#include "tools/mlktree/completion/Complete.h"
#include "tools/mlktree/completion/TreeNames.h"

namespace mlk::tree {

namespace {

ExitStatus run(const Arguments& arguments, Environment& environment) {
    ReadTreeNames names(environment);
    std::vector<std::string> words = arguments.words();
    if (words.empty()) {
        words.emplace_back();
    }
    environment.output.write(shownCandidates(candidatesFor(words, names), words.back()));
    return ExitStatus::NOTHING_FOUND;
}

}  // namespace

Command completeCommand() {
    Command command;
    command.name = "complete";
    command.words = {"-- [WORD]..."};
    command.summary = "prints what a shell may offer for the last word";
    command.description =
            "The scripts of mlktree completion run it. A line has a word and after a tab what it "
            "is; a line :files or :folders asks the shell for its own.";
    command.statuses = {{0, "done"}};
    command.examples = {{"mlktree complete -- check --mo", "prints --model"}};
    command.mostWords = 10000;
    command.run = run;
    command.isHidden = true;
    return command;
}

}  // namespace mlk::tree
