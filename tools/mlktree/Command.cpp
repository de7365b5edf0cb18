#include "tools/mlktree/Command.h"

namespace mlk::tree {

std::string Arguments::value(std::string_view option, std::string_view otherwise) const {
    const auto found = mOptions.find(option);
    return found != mOptions.end() && !found->second.empty() ? found->second.back()
                                                             : std::string(otherwise);
}

std::vector<std::string> Arguments::values(std::string_view option) const {
    const auto found = mOptions.find(option);
    return found != mOptions.end() ? found->second : std::vector<std::string>();
}

void Arguments::add(std::string_view option, const std::string& value) {
    mOptions[std::string(option)].push_back(value);
}

const Option* Command::find(std::string_view option) const {
    const auto isIt = [&](const Option& one) {
        return one.name == option ||
               (one.letter != 0 && option.size() == 2 && option == std::string{'-', one.letter});
    };
    for (const OptionGroup& group : groups) {
        for (const Option& one : group.options) {
            if (isIt(one)) {
                return &one;
            }
        }
    }
    return isIt(helpOption()) ? &helpOption() : nullptr;
}

const std::vector<Command>& commands() {
    static const std::vector<Command> kCommands = {
            checkCommand(),      explainCommand(), showCommand(),     planCommand(),
            matrixCommand(),     diffCommand(),    snapshotCommand(), reportCommand(),
            fixCommand(),        rulesCommand(),   settingsCommand(), newCommand(),
            completionCommand(), completeCommand()};
    return kCommands;
}

const Command* findCommand(std::string_view name) {
    for (const Command& command : commands()) {
        if (command.name == name) {
            return &command;
        }
    }
    return nullptr;
}

const Option& helpOption() {
    static const Option kHelp = {"--help", 'h', "", "print this text"};
    return kHelp;
}

}  // namespace mlk::tree
