#include "tools/mlkctl/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <new>
#include <ostream>
#include <system_error>

#include "tools/common/Suggest.h"
#include "tools/common/Text.h"

namespace mlk::ctl {

namespace {

constexpr const char* kVersion = "mlkctl 1.0, for vendor.morlak.mlkconfigs@1.0\n";

constexpr const char* kHelpBegin = R"(mlkctl - talk to the configuration service of a television

Usage: mlkctl COMMAND [OPTION]... [ARGUMENT]...
       mlkctl COMMAND --help
       mlkctl --help | --version

Commands:
)";

constexpr const char* kHelpEnd = R"(
Answers stand on standard output, messages on standard error. No byte of a service, a file or a
property is a command to a terminal: JSON, tables and messages have control characters escaped
always, what is printed as bytes (dump, prop get, call --raw) on a terminal.

Exit status:
  0  answered
  1  the service cannot be reached, or the system refuses (standard output cannot be written)
  2  the command line is wrong; the message says what would be right
  3  the method gave no answer

Environment, on a host:
  MLK_RUNTIME_DIR   where the service's sockets are; default $XDG_RUNTIME_DIR/mlkconfigs,
                    else /run/mlkconfigs
  MLK_ROOT          the folder of the set, whose properties prop and watch show; default /
  NO_COLOR          show writes no colours to a terminal if it is set
  ANDROID_LOG_TAGS  which log lines of mlkctl's own go to standard error, default *:I

Examples:
  mlkctl wait && mlkctl show
  mlkctl get LiveTV TvConfig
  mlkctl describe getHDMIEdidPath
  mlkctl call IMlkProjectConfigs getPanelName
  mlkctl call IMlkTvConfigs setFlag HBBTV true
  . <(mlkctl completion bash)
)";

std::string generalHelp(const std::vector<std::unique_ptr<Verb>>& verbs) {
    std::string help = kHelpBegin;
    for (const auto& verb : verbs) {
        const std::string page = verb->help();
        const std::string first = page.substr(0, page.find('\n'));
        const std::string name(verb->name());
        help += "  " + name + std::string(12 - name.size(), ' ') +
                first.substr(first.find(" - ") + 3) + '\n';
    }
    return help + kHelpEnd;
}

// All pages, for a program that makes other forms of the manual: each ends with a form feed.
std::string manual(const std::vector<std::unique_ptr<Verb>>& verbs) {
    std::string pages = generalHelp(verbs) + '\f';
    for (const auto& verb : verbs) {
        pages += verb->help() + '\f';
    }
    return pages;
}

// The verb that the words name. Throws Failure USAGE.
Verb& verbOf(const std::vector<std::unique_ptr<Verb>>& verbs, const std::string& word) {
    std::vector<std::string_view> names;
    std::vector<std::string> list;
    for (const auto& verb : verbs) {
        if (verb->name() == word) {
            return *verb;
        }
        names.push_back(verb->name());
        list.emplace_back(verb->name());
    }
    const bool isOption = !word.empty() && word.front() == '-';
    throw usage((isOption ? "there is no option " : "there is no command ") + excerpt(word) +
                (isOption ? "; there are --help, --version"
                          : didYouMean(word, names, "; there are " + joined(list))));
}

// The position of a verb's first word, after its options. "--" ends the options and is not a word.
struct Split {
    std::vector<std::string> options;
    std::vector<std::string> words;
    bool optionsEnd = false;  // "--" stood in front of the words
};

Split split(const Verb& verb, const std::vector<std::string>& rest) {
    if (!verb.takesWords()) {
        return {rest, {}, false};
    }
    const auto isWord = [](const std::string& word) {
        return word.size() < 2 || word.front() != '-' || word == "--";
    };
    auto begin = rest.begin();
    while (begin != rest.end() && !isWord(*begin)) {
        const bool valueFollows = verb.hasValue(*begin) && begin + 1 != rest.end();
        begin += valueFollows ? 2 : 1;
    }
    Split result{{rest.begin(), begin}, {}, false};
    if (begin != rest.end() && *begin == "--") {
        result.optionsEnd = true;
        ++begin;
    }
    result.words.assign(begin, rest.end());
    return result;
}

// The option parser's error as a Failure that says what is allowed.
std::string explain(const CLI::ParseError& error, const CLI::App& app) {
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::ExtrasError)) {
        return error.what();
    }
    std::vector<std::string> options;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            options.push_back("--" + name);
        }
    }
    const std::string stranger = app.remaining().front();
    const std::vector<std::string_view> names(options.begin(), options.end());
    if (stranger.empty() || stranger.front() != '-') {
        return "it takes no argument " + excerpt(stranger) + "; its options are " + joined(options);
    }
    return "there is no option " + excerpt(stranger) +
           didYouMean(stranger, names, "; there are " + joined(options));
}

ExitStatus runVerb(Verb& verb, const std::vector<std::string>& rest, Environment& environment) {
    const Split parts = split(verb, rest);
    CLI::App app;
    app.set_help_flag("-h,--help");
    verb.addOptions(app);
    try {
        // The parser takes the words from the end.
        app.parse(std::vector<std::string>(parts.options.rbegin(), parts.options.rend()));
    } catch (const CLI::CallForHelp&) {
        environment.output.write(verb.help());
        return ExitStatus::ANSWERED;
    } catch (const CLI::ParseError& error) {
        throw usage(explain(error, app) + " (see mlkctl " + std::string(verb.name()) + " --help)");
    }
    if (parts.optionsEnd) {
        verb.endOptions();
    }
    return verb.run(parts.words, environment);
}

ExitStatus run(const std::vector<std::string>& words, Environment& environment) {
    const auto verbs = makeVerbs();
    if (words.empty()) {
        throw usage("which command? mlkctl --help lists them");
    }
    if (words.front() == "--help" || words.front() == "-h") {
        environment.output.write(generalHelp(verbs));
        return ExitStatus::ANSWERED;
    }
    if (words.front() == "--version") {
        environment.output.write(kVersion);
        return ExitStatus::ANSWERED;
    }
    const std::vector<std::string> rest(words.begin() + 1, words.end());
    if (words.front() == "complete") {
        return runVerb(*makeCompleteVerb(), rest, environment);
    }
    if (words.front() == "--manual") {
        environment.output.write(manual(verbs));
        return ExitStatus::ANSWERED;
    }
    return runVerb(verbOf(verbs, words.front()), rest, environment);
}

}  // namespace

void Environment::note(const std::string& text) {
    output.flush();
    errors << "mlkctl: " << printable(text) << std::endl;
}

std::vector<std::unique_ptr<Verb>> makeVerbs() {
    std::vector<std::unique_ptr<Verb>> verbs;
    for (const auto make :
         {makeListVerb, makeWaitVerb, makeCallVerb, makeDescribeVerb, makeGetVerb, makeBatchVerb,
          makeDumpVerb, makeShowVerb, makeWatchVerb, makePropVerb, makeCompletionVerb}) {
        verbs.push_back(make());
    }
    return verbs;
}

ExitStatus runCommandLine(const std::vector<std::string>& words, Environment& environment) {
    ExitStatus status = ExitStatus::UNREACHABLE;
    try {
        try {
            status = run(words, environment);
        } catch (const Failure& failure) {
            environment.errors << "mlkctl: " << printable(failure.what()) << std::endl;
            status = failure.status();
        }
        // Output from before the failure still counts as an answer.
        environment.output.flush();
    } catch (const std::system_error& error) {
        // Nobody reads any more. That is the reader's choice, not an error.
        if (error.code() != std::errc::broken_pipe) {
            environment.errors << "mlkctl: " << error.what() << std::endl;
        }
        return ExitStatus::UNREACHABLE;
    } catch (const std::bad_alloc&) {
        environment.errors << "mlkctl: not enough memory" << std::endl;
        return ExitStatus::UNREACHABLE;
    }
    return status;
}

}  // namespace mlk::ctl
