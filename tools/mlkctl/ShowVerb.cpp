#include <CLI/CLI.hpp>

#include <cctype>
#include <map>
#include <ostream>
#include <string>

#include "tools/mlkctl/ShowRows.h"
#include "tools/mlkctl/Table.h"
#include "tools/mlkctl/Text.h"
#include "tools/mlkctl/TimeLimit.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl show - what this set is

Usage: mlkctl show [--json] [--timeout SECONDS]

Shows, for a person to read, what the service makes of the partitions: which project is selected
and which there are, panel, sound, inputs and tuners, the country and what it decides, power, remote
control, and where the partitions are. Use mlkctl call for a single value.

The country is the saved one, with its TV system, its TV configuration file and the number of
channels in each of its plans. The features are those of the file that the service has started on:
after a change of the country they follow at the next start.

Options:
  --json             one JSON object of objects instead of the table
  --timeout SECONDS  how long the service may take to be found, and for each fact, 0 to 86400,
                     fractions allowed; default 5
  -h, --help         this text

Output:
  Lines under headings. "-" stands for an empty value. A reason in brackets stands for a missing
  one: (refused) by the service, (no answer) to this call, (not reachable); no country
  (none saved), one without a name (unknown), its maps (not readable).

  With --json, one line: {"project":{"name":"...","index":1,...},"picture":{...},...}, where null
  stands for a missing value.

Exit status:
  0  shown
  1  an interface of the service cannot be reached; what the others say, if there are any, is shown

Examples:
  mlkctl show
  mlkctl show --json | jq -r .project.name
)";

using Answers = std::vector<ShowValue>;

template <typename... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

// The reasons why interfaces cannot be reached.
using Unreachable = std::map<const Interface*, Failure>;

// Asks every row. An interface that cannot be reached is not asked again.
Answers askAll(Services& services, Unreachable* unreachable) {
    Answers answers;
    for (const ShowRow& row : showRows()) {
        const Interface* interface = row.question.interface;
        ShowValue value = NoValue{"(not reachable)"};
        try {
            if (unreachable->count(interface) == 0) {
                value = services.ask(*interface, row.question.ask);
            }
        } catch (const Failure& failure) {
            if (failure.status() == ExitStatus::UNREACHABLE) {
                unreachable->emplace(interface, about(*interface, failure));
            } else {
                value = NoValue{"(no answer)"};
            }
        }
        answers.push_back(std::move(value));
    }
    return answers;
}

std::string shown(const std::string& text) {
    return text.empty() ? "-" : printable(text);
}

// The lines of a value, at least one.
std::vector<std::string> linesOf(const ShowValue& value) {
    using Lines = std::vector<std::string>;
    return std::visit(Overloaded{[](const NoValue& none) { return Lines{none.why}; },
                                 [](const std::string& text) { return Lines{shown(text)}; },
                                 [](int32_t number) { return Lines{std::to_string(number)}; },
                                 [](bool flag) { return Lines{flag ? "on" : "off"}; },
                                 [](const Lines& list) {
                                     Lines lines;
                                     for (const std::string& text : list) {
                                         lines.push_back(shown(text));
                                     }
                                     return list.empty() ? Lines{"-"} : lines;
                                 },
                                 [](const Counts& counts) {
                                     Lines lines;
                                     for (const auto& [what, count] : counts) {
                                         lines.push_back(what + ": " + std::to_string(count));
                                     }
                                     return counts.empty() ? Lines{"-"} : lines;
                                 }},
                      value);
}

std::string jsonOf(const ShowValue& value) {
    return std::visit(Overloaded{[](const NoValue&) { return std::string("null"); },
                                 [](const std::string& text) { return jsonString(text); },
                                 [](int32_t number) { return std::to_string(number); },
                                 [](bool flag) { return std::string(flag ? "true" : "false"); },
                                 [](const std::vector<std::string>& list) {
                                     std::string array;
                                     for (const std::string& text : list) {
                                         array += (array.empty() ? "" : ",") + jsonString(text);
                                     }
                                     return '[' + array + ']';
                                 },
                                 [](const Counts& counts) {
                                     std::string object;
                                     for (const auto& [what, count] : counts) {
                                         object += (object.empty() ? "" : ",") + jsonString(what) +
                                                   ':' + std::to_string(count);
                                     }
                                     return '{' + object + '}';
                                 }},
                      value);
}

std::string tableOf(const Answers& answers) {
    Table table;
    for (size_t i = 0; i < answers.size(); ++i) {
        const ShowRow& row = showRows()[i];
        if (i == 0 || row.group != showRows()[i - 1].group) {
            if (i != 0) {
                table.push_back({""});
            }
            table.push_back({row.group});
        }
        std::string label = "  " + row.label;
        for (const std::string& line : linesOf(answers[i])) {
            table.push_back({label, line});
            label.clear();
        }
    }
    return aligned(table);
}

// Turns a heading into a key.
std::string keyOf(std::string group) {
    group[0] = static_cast<char>(tolower(group[0]));
    return group;
}

std::string objectOf(const Answers& answers) {
    std::string text = "{";
    for (size_t i = 0; i < answers.size(); ++i) {
        const ShowRow& row = showRows()[i];
        if (i == 0 || row.group != showRows()[i - 1].group) {
            text += (i == 0 ? "" : "},") + jsonString(keyOf(row.group)) + ":{";
        } else {
            text += ',';
        }
        text += jsonString(row.key) + ':' + jsonOf(answers[i]);
    }
    return text + "}}\n";
}

class ShowVerb : public Verb {
  public:
    std::string_view name() const override { return "show"; }
    std::string help() const override { return kHelp; }
    void addOptions(CLI::App& app) override {
        app.add_flag("--json", mJson);
        addTimeout(app, &mSeconds);
    }

    ExitStatus run(const std::vector<std::string>&, Environment& environment) override {
        environment.services.setLimit(limitOf(mSeconds));
        Unreachable unreachable = environment.services.findAll();
        if (unreachable.size() < interfaces().size()) {
            const Answers answers = askAll(environment.services, &unreachable);
            environment.output.write(mJson ? objectOf(answers) : tableOf(answers));
        }
        if (unreachable.empty()) {
            return ExitStatus::ANSWERED;
        }
        environment.output.flush();
        for (const Interface* interface : interfaces()) {
            const auto failure = unreachable.find(interface);
            if (failure == unreachable.end()) {
                continue;
            }
            environment.errors << "mlkctl: " << printable(failure->second.what()) << std::endl;
        }
        return ExitStatus::UNREACHABLE;
    }

  private:
    bool mJson = false;
    std::string mSeconds = "5";
};

}  // namespace

std::unique_ptr<Verb> makeShowVerb() {
    return std::make_unique<ShowVerb>();
}

}  // namespace mlk::ctl
