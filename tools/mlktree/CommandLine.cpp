#include "tools/mlktree/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <new>
#include <ostream>
#include <system_error>

#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Help.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

namespace {

constexpr const char* kVersion = "mlktree 1.0\n";

std::vector<const Option*> optionsOf(const Command& command) {
    std::vector<const Option*> options;
    for (const OptionGroup& group : command.groups) {
        for (const Option& option : group.options) {
            options.push_back(&option);
        }
    }
    options.push_back(&helpOption());
    return options;
}

std::string joinedNames(const std::vector<std::string_view>& names) {
    return joined(std::vector<std::string>(names.begin(), names.end()));
}

UsageError unknownOption(const Command& command, const std::string& word) {
    std::vector<std::string_view> names;
    for (const Option* option : optionsOf(command)) {
        names.push_back(option->name);
    }
    const std::string name = word.substr(0, word.find('='));
    return UsageError("there is no option " + excerpt(name) +
                      didYouMean(name, names, "; there are " + joinedNames(names)));
}

// Takes the values of one option, and checks them.
void take(const Option& option, const std::vector<std::string>& values, Arguments& arguments) {
    const std::string name(option.name);
    if (values.size() > 1 && !option.repeats) {
        throw UsageError(name + " is given " + std::to_string(values.size()) +
                         " times; once is enough");
    }
    for (const std::string& value : values) {
        const auto& choices = option.choices;
        if (!choices.empty() && std::find(choices.begin(), choices.end(), value) == choices.end()) {
            throw UsageError(name + " takes " + joinedNames(choices) + ", not " + excerpt(value) +
                             didYouMean(value, choices, ""));
        }
        arguments.add(option.name, value);
    }
}

// The option parser's error in our words.
UsageError inOurWords(const CLI::ParseError& error, const std::vector<const Option*>& options) {
    const std::string what = error.what();
    for (const Option* option : options) {
        if (what.find(option->name) != std::string::npos) {
            return UsageError(std::string(option->name) +
                              (option->value.empty()
                                       ? " takes no value"
                                       : " takes a value: " + std::string(option->value)));
        }
    }
    return UsageError(what);
}

std::string namesOf(const Option& option) {
    return (option.letter != 0 ? std::string{'-', option.letter, ','} : "") +
           std::string(option.name);
}

const Command& commandOf(const std::string& word) {
    std::vector<std::string_view> names;
    for (const Command& command : commands()) {
        if (command.name == word) {
            return command;
        }
        if (!command.isHidden) {
            names.push_back(command.name);
        }
    }
    if (beginsWith(word, "-")) {
        const std::string name = word.substr(0, word.find('='));
        const bool isKnown =
                std::any_of(commands().begin(), commands().end(),
                            [&](const Command& command) { return command.find(name) != nullptr; });
        throw UsageError(isKnown ? "the command comes before the option " + excerpt(name) +
                                           ": mlktree COMMAND " + name + " ..."
                                 : "there is no option " + excerpt(name) +
                                           "; there are --help, --version");
    }
    throw UsageError("there is no command " + excerpt(word) +
                     didYouMean(word, names, "; there are " + joinedNames(names)));
}

ExitStatus run(const std::vector<std::string>& words, Environment& environment) {
    if (words.empty()) {
        throw UsageError("which command? mlktree --help lists them");
    }
    if (words.front() == "--help" || words.front() == "-h") {
        environment.output.write(generalHelp());
        return ExitStatus::NOTHING_FOUND;
    }
    if (words.front() == "--version") {
        environment.output.write(kVersion);
        return ExitStatus::NOTHING_FOUND;
    }
    const Command& command = commandOf(words.front());
    const std::string hint = " (see mlktree " + std::string(command.name) + " --help)";
    Arguments arguments;
    try {
        arguments = parse(command, {words.begin() + 1, words.end()});
    } catch (const UsageError& error) {
        throw UsageError(error.what() + hint);
    }
    if (arguments.has("--help")) {
        environment.output.write(helpOf(command));
        return ExitStatus::NOTHING_FOUND;
    }
    return command.run(arguments, environment);
}

void complain(Environment& environment, std::string_view message) {
    environment.errors << "mlktree: " << printable(message) << std::endl;
}

}  // namespace

Arguments parse(const Command& command, const std::vector<std::string>& words) {
    const auto end = std::find(words.begin(), words.end(), "--");
    const std::vector<const Option*> options = optionsOf(command);
    std::vector<std::vector<std::string>> values(options.size());
    std::vector<int64_t> counts(options.size());
    CLI::App app;
    app.set_help_flag();
    app.allow_extras();
    for (size_t i = 0; i < options.size(); ++i) {
        if (options[i]->value.empty()) {
            app.add_flag(namesOf(*options[i]), counts[i]);
        } else {
            app.add_option(namesOf(*options[i]), values[i])
                    ->expected(1)
                    ->take_all()
                    ->allow_extra_args(false);
        }
    }
    try {
        // The parser takes the words from the end.
        app.parse(std::vector<std::string>(std::make_reverse_iterator(end), words.rend()));
    } catch (const CLI::ParseError& error) {
        throw inOurWords(error, options);
    }
    Arguments arguments;
    if (counts.back() > 0) {
        arguments.add("--help", "");
        return arguments;
    }
    for (const std::string& word : app.remaining()) {
        if (word.size() > 1 && word.front() == '-') {
            throw unknownOption(command, word);
        }
        arguments.addWord(word);
    }
    for (auto word = end; word != words.end() && ++word != words.end();) {
        arguments.addWord(*word);
    }
    for (size_t i = 0; i < options.size(); ++i) {
        take(*options[i], values[i], arguments);
        if (counts[i] > 0) {
            arguments.add(options[i]->name, "");
        }
    }
    if (arguments.words().size() > command.mostWords) {
        throw UsageError(std::string(command.name) + " takes " +
                         (command.mostWords == 0 ? "no word"
                          : command.mostWords == 1
                                  ? "one word"
                                  : "at most " + std::to_string(command.mostWords) + " words") +
                         " besides its options; " + excerpt(arguments.words()[command.mostWords]) +
                         " is too much");
    }
    return arguments;
}

ExitStatus runCommandLine(const std::vector<std::string>& words, Environment& environment) {
    ExitStatus status = ExitStatus::USAGE;
    try {
        try {
            status = run(words, environment);
        } catch (const NotFound& error) {
            complain(environment, error.what());
            status = ExitStatus::FOUND;
        } catch (const UsageError& error) {
            complain(environment, error.what());
        }
        // Output from before a failure is kept.
        environment.output.flush();
    } catch (const std::system_error& error) {
        // Nobody reads any more. That is the reader's choice, not an error.
        if (error.code() != std::errc::broken_pipe) {
            complain(environment, error.what());
        }
        return ExitStatus::USAGE;
    } catch (const std::bad_alloc&) {
        complain(environment, "not enough memory");
        return ExitStatus::USAGE;
    } catch (const std::exception& error) {
        complain(environment, error.what());
        return ExitStatus::USAGE;
    }
    return status;
}

}  // namespace mlk::tree
