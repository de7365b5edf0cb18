#include <CLI/CLI.hpp>

#include <cstddef>

#include "tools/common/Table.h"
#include "tools/common/Text.h"
#include "tools/mlkctl/Describe.h"
#include "tools/mlkctl/Hints.h"
#include "tools/mlkctl/Plain.h"
#include "tools/mlkctl/TimeLimit.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl call - call one method

Usage: mlkctl call [OPTION]... [INTERFACE] METHOD [ARGUMENT]...
       mlkctl call INTERFACE --help
       mlkctl call [INTERFACE] METHOD --help

INTERFACE is IMlkProjectConfigs, IMlkTvConfigs or IMlkFrameworkConfigs, or project, tv or framework.
It may be left out if only one interface has the METHOD. With --help as METHOD, the methods of the
interface are listed with what they take. With --help as the only word after METHOD, the method is
described as by mlkctl describe; after `call --` it is an argument.

Arguments stand in the order that the interface declares. Words after METHOD are arguments,
never options: -3 and --foo are values, and so is an empty word.

  number        decimal, or hexadecimal with 0x: 21, -3, 0x1f
  true, false   a switch
  enumerator    its name, or any number of 32 bits: HBBTV, 19, 0x13, -1
  country       its name as the country lists have it, or its number: GERMANY, 14
  text          its bytes as they are. \udc80 to \udcff (six characters) stand for the bytes 80 to
                ff, as answers print what is not UTF-8; no other character is special. (A text that
                has such six characters of its own can be given in a batch: "\\udc80".)
  item          two words, category and key: '[LiveTV]' TvConfig. The category's brackets may be
                left out: LiveTV is asked for first, and [LiveTV] if that has no answer

Options:
  --raw       print the bytes of an answer as they are; on a terminal, with control characters
              but newline and tab escaped
  --plain     print the bare value, as a script wants it: a text's bytes, a number, true or false;
              of a list a line for each, of an item KEY=VALUE, of a channel its fields with tabs
              After all arguments of METHOD, --raw (of a method that answers bytes) or --plain is
              also allowed as the last word.
  --timeout SECONDS
              how long the service may take to be found, and how long to answer: 0 to 86400,
              fractions allowed; default 30
  -h, --help  this text

Output:
  The answer as one line of JSON:
  a value          {"success":true,"value":"..."}; value is a text, a number, true or false, and
                   means nothing when success is false
  a list           ["...","..."], [1,2], [{"key":"...","value":"..."}],
                   [{"channel":21,"frequency":474000,"bandwidth":8000000,"label":"E21",
                   "modulation":18}]
  bytes, memory    {"size":3,"base64":"..."}
  A byte XX of a text that is no part of valid UTF-8 is printed as \udcXX, a control character
  as its escape.

  A line on standard error says what may be wrong although there is an answer: an argument out of
  its range; or, if the answer is empty, 0 or false, a section or key of a near name, a path that
  begins with a partition's name and not with its mount point, and no allocator of shared memory.

Exit status:
  0  answered (also with success false)
  1  the service cannot be reached, died during the call, or gave no answer in time; with --plain,
     there is no value: no success, an empty text or list
  2  the command line is wrong; nothing was called
  3  the method gave no answer: an argument it does not serve, or too much data

Examples:
  mlkctl call IMlkProjectConfigs getPanelName
  mlkctl call --plain getPanelName
  mlkctl call IMlkProjectConfigs getConfig '[LiveTV]' TvConfig
  mlkctl call IMlkProjectConfigs getHDMIEdidPath 0 EDID_2P0
  mlkctl call IMlkProjectConfigs getFreqTableList USA DTV_CABLE HRC
  mlkctl call --raw getTvFile "$(mlkctl call --plain getTvconfigsPath)/customer.ini"
)";

std::string methodsHelp(const Interface& interface) {
    Table table;
    for (const Method& method : interface.methods) {
        table.push_back({"  " + std::string(method.name), synopsis(method), limits(method)});
    }
    return "Methods of " + std::string(interface.name) + " and their arguments:\n" + aligned(table);
}

class CallVerb : public Verb {
  public:
    std::string_view name() const override { return "call"; }
    std::string help() const override { return kHelp; }
    void addOptions(CLI::App& app) override {
        app.add_flag("--raw", mRaw);
        app.add_flag("--plain", mPlain);
        addTimeout(app, &mSeconds);
    }
    bool hasValue(std::string_view option) const override { return option == "--timeout"; }
    bool takesWords() const override { return true; }
    Candidates candidates(const Completing& at) override {
        if (at.before.empty()) {
            return interfaceCandidates(at.current);
        }
        const Interface* interface = findInterface(at.before[0]);
        if (interface != nullptr && at.before.size() == 1) {
            Candidates methods = methodCandidates(*interface);
            methods.push_back({"--help", "the methods and what they take"});
            return methods;
        }
        // The place of the method among the words.
        const size_t place = interface == nullptr ? 0 : 1;
        for (const MethodOf& each : methodsNamed(at.before[place])) {
            if (interface == nullptr || each.interface == interface) {
                const std::vector<std::string> before(
                        at.before.begin() + static_cast<std::ptrdiff_t>(place) + 1,
                        at.before.end());
                return argumentCandidates(*each.method, before, at);
            }
        }
        return {};
    }
    void endOptions() override { mMayAskForHelp = false; }

    ExitStatus run(const std::vector<std::string>& words, Environment& environment) override {
        if (words.empty()) {
            throw usage("INTERFACE and METHOD are missing; see mlkctl call --help");
        }
        const Interface* named = findInterface(words[0]);
        if (named != nullptr && words.size() > 1 && (words[1] == "--help" || words[1] == "-h")) {
            environment.output.write(methodsHelp(*named));
            return ExitStatus::ANSWERED;
        }
        size_t used = 0;
        const MethodOf target = methodFrom(words, name(), &used);
        const Interface& interface = *target.interface;
        const Method& method = *target.method;
        if (mMayAskForHelp && words.size() == used + 1 && words.back() == "--help") {
            environment.output.write(describe(interface, method));
            return ExitStatus::ANSWERED;
        }
        std::vector<Argument> arguments;
        for (size_t i = used; i < words.size(); ++i) {
            arguments.push_back(Argument::ofCommandLine(words[i]));
        }
        // There is one word more than arguments, so the last one is not an argument.
        const bool isOneMore = arguments.size() == method.call.words.size() + 1;
        if (isOneMore && words.back() == (method.call.hasBytes ? "--raw" : "--plain")) {
            (method.call.hasBytes ? mRaw : mPlain) = true;
            arguments.pop_back();
        }
        if (mPlain && (mRaw || method.call.hasBytes)) {
            throw about(interface, method,
                        usage(mRaw ? "--plain and --raw are two forms; one is possible"
                                   : "it answers bytes; --raw prints them"));
        }
        environment.services.setLimit(limitOf(mSeconds));
        const Form form = mRaw ? Form::RAW : Form::JSON;
        const std::string answer =
                callWithSection(environment.services, interface, method, &arguments, form);
        const bool hasValue = write(answer, environment.output);
        hint(method, arguments, answer, form, environment);
        return hasValue ? ExitStatus::ANSWERED : ExitStatus::UNREACHABLE;
    }

  private:
    // Returns whether there is a value, which only a plain answer may lack.
    bool write(const std::string& answer, Output& output) const {
        if (!mPlain) {
            if (mRaw) {
                output.bytes(answer);
            } else {
                output.line(answer);
            }
            return true;
        }
        const auto plain = plainOf(answer);
        if (plain) {
            output.line(output.isTerminal() ? forTerminal(*plain) : *plain);
        }
        return plain.has_value();
    }

    bool mMayAskForHelp = true;
    bool mPlain = false;
    bool mRaw = false;
    std::string mSeconds = kDefaultTimeout;
};

}  // namespace

std::unique_ptr<Verb> makeCallVerb() {
    return std::make_unique<CallVerb>();
}

}  // namespace mlk::ctl
