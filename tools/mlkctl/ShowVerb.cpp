#include <CLI/CLI.hpp>

#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <cctype>
#include <cstdlib>
#include <map>
#include <ostream>
#include <set>
#include <string>

#include "tools/common/Text.h"
#include "tools/common/Wrap.h"
#include "tools/mlkctl/Ask.h"
#include "tools/mlkctl/Dump.h"
#include "tools/mlkctl/Overloaded.h"
#include "tools/mlkctl/ShowTable.h"
#include "tools/mlkctl/TimeLimit.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl show - what this set is

Usage: mlkctl show [--json] [--timeout SECONDS]

Shows, for a person to read, what the service makes of the partitions: which project is selected
and which there are, board, panel, sound, HDMI, inputs and tuners, the country and what it decides,
languages, power, remote control, and where the partitions are. Use mlkctl call for a
single value. Paths are shown as the partitions' files have them, /tvconfigs/...; the last lines are the
mount points. A path that does not exist is marked (missing).

The country is the saved one, with its TV system, its TV configuration file and the number of
channels in each of its plans. The features are those of the file that the service has started on:
after a change of the country they follow at the next start.

Options:
  --json             one JSON object of objects instead of the table
  --timeout SECONDS  how long the service may take to be found, and for each fact, 0 to 86400,
                     fractions allowed; default 5
  -h, --help         this text

Output:
  Lines of at most 60 columns under headings. "-" stands for an empty value. If there is no value,
  the reason stands in brackets: (refused) by the service, (no answer) to this call,
  (not reachable); no country (none saved), one without a name (unknown), its maps (not readable).
  A first line says so if the set has no model. On a terminal headings are bold, what is off or
  empty is faint, and what is missing is red; not so if NO_COLOR is set.

  With --json, one line: {"project":{"name":"...","index":1,...},"picture":{...},...}, with null for
  a missing value and paths as the service answers them; "missing":[...] lists those that do not
  exist.

Exit status:
  0  shown
  1  an interface of the service cannot be reached; what the others say, if there are any, is shown

Examples:
  mlkctl show
  mlkctl show --json | jq -r .project.name
)";

using Answers = std::vector<ShowValue>;

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

// Which of the paths do not exist, as far as the service tells.
std::set<std::string> missingOf(const std::set<std::string>& paths, Services& services) {
    try {
        return services.ask(projectInterface(), [paths](IBase& object) {
            std::set<std::string> missing;
            for (const std::string& path : paths) {
                const auto exists =
                        ask(object, &V1_0::IMlkProjectConfigs::isFileExist, hidl_string(path));
                if (exists.success && exists.value == 0) {
                    missing.insert(path);
                }
            }
            return missing;
        });
    } catch (const Failure&) {
        return {};
    }
}

ShowFrame frameOf(const Answers& answers, Services& services) {
    ShowFrame frame;
    try {
        frame.mounts = mountsOf(services);
        frame.missing = missingOf(pathsIn(answers), services);
    } catch (const Failure&) {
        // Paths are shown as the service has them.
    }
    return frame;
}

// Says that the set has no model, if the service says so.
std::string modelLine(const Mounts& mounts, Services& services) {
    DumpedSet set;
    std::string dump;
    try {
        dump = dumpOf(services);
    } catch (const Failure&) {
        return {};
    }
    set = parseDump(dump);
    if (dump.find("Project ini file:") == std::string::npos || !set.projectFile.empty()) {
        return {};
    }
    return "This set has no model: " +
           (set.systemFile.empty()
                    ? "there is no system file that lists models."
                    : printable(mounts.asWritten(set.systemFile)) + " has none of index " +
                              printable(set.projectId) + '.');
}

// Colours for a person who wants them.
bool wantsStyles(const Output& output) {
    const char* noColour = getenv("NO_COLOR");
    const char* terminal = getenv("TERM");
    return output.isTerminal() && (noColour == nullptr || *noColour == '\0') &&
           (terminal == nullptr || std::string_view(terminal) != "dumb");
}

std::string arrayOf(const std::vector<std::string>& list) {
    std::string array;
    for (const std::string& text : list) {
        array += (array.empty() ? "" : ",") + jsonString(text);
    }
    return '[' + array + ']';
}

std::string jsonOf(const ShowValue& value) {
    return std::visit(Overloaded{[](const NoValue&) { return std::string("null"); },
                                 [](const std::string& text) { return jsonString(text); },
                                 [](int32_t number) { return std::to_string(number); },
                                 [](bool flag) { return std::string(flag ? "true" : "false"); },
                                 [](const std::vector<std::string>& list) { return arrayOf(list); },
                                 [](const Names& names) { return arrayOf(names.list); },
                                 [](const Files& files) {
                                     std::string object;
                                     for (const auto& [what, path] : files) {
                                         object += (object.empty() ? "" : ",") + jsonString(what) +
                                                   ':' + jsonString(path);
                                     }
                                     return '{' + object + '}';
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

// Turns a heading into a key.
std::string keyOf(std::string group) {
    // HDMI is written in capitals.
    const bool isWord = group.size() > 1 && islower(group[1]) != 0;
    for (size_t i = 0; i < (isWord ? 1 : group.size()); ++i) {
        group[i] = static_cast<char>(tolower(group[i]));
    }
    return group;
}

std::string objectOf(const Answers& answers, const std::set<std::string>& missing) {
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
    return text + "},\"missing\":" + arrayOf({missing.begin(), missing.end()}) + "}\n";
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
            write(answers, environment);
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
    void write(const Answers& answers, Environment& environment) const {
        ShowFrame frame = frameOf(answers, environment.services);
        if (mJson) {
            environment.output.write(objectOf(answers, frame.missing));
            return;
        }
        const std::string noModel = modelLine(frame.mounts, environment.services);
        if (!noModel.empty()) {
            environment.output.write(paragraph("", noModel, 0, 60) + '\n');
        }
        frame.styled = wantsStyles(environment.output);
        environment.output.write(showTable(answers, frame));
    }

    bool mJson = false;
    std::string mSeconds = "5";
};

}  // namespace

std::unique_ptr<Verb> makeShowVerb() {
    return std::make_unique<ShowVerb>();
}

}  // namespace mlk::ctl
