#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Command.h"
#include "tools/mlktree/Tree.h"
#include "tools/mlktree/completion/CompletionScripts.h"

namespace mlk::tree {

namespace {

ExitStatus run(const Arguments& arguments, Environment& environment) {
    const std::string given = arguments.words().empty() ? "" : arguments.words().front();
    std::vector<std::string_view> names;
    for (const ShellScript& shell : completionScripts()) {
        if (shell.name == given) {
            environment.output.write(shell.script);
            return ExitStatus::NOTHING_FOUND;
        }
        names.push_back(shell.name);
    }
    throw UsageError(
            "completion takes the name of a shell: bash, zsh or fish" +
            (given.empty() ? "" : ", not " + excerpt(given) + didYouMean(given, names, "")));
}

std::vector<Completion> shellWord(const std::vector<std::string>& /* before */) {
    return {Completion::SHELL};
}

}  // namespace

Command completionCommand() {
    Command command;
    command.name = "completion";
    command.words = {"bash|zsh|fish"};
    command.summary = "prints the script that completes command lines in a shell";
    command.description =
            "The script completes commands, options and their values, rules, files and folders, "
            "and "
            "what the tree of the command line has: models, boards, customers, countries, "
            "properties, sections and keys. For these it starts mlktree, which reads the tree.\n\n"
            "In zsh it is loaded like in bash, in fish by: mlktree completion fish | source";
    command.statuses = {{0, "done"}, {2, "the command line is wrong"}};
    command.examples = {
            {". <(mlktree completion bash)", "for this bash"},
            {"mlktree completion bash >> ~/.bash_completion", "for every bash"},
    };
    command.mostWords = 1;
    command.nextWord = shellWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
