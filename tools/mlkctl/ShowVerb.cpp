#include <CLI/CLI.hpp>

#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>

#include "tools/common/FactTable.h"
#include "tools/common/Text.h"
#include "tools/common/Wrap.h"
#include "tools/mlkctl/Ask.h"
#include "tools/mlkctl/Dump.h"
#include "tools/mlkctl/Mounts.h"
#include "tools/mlkctl/ShowRows.h"
#include "tools/mlkctl/TimeLimit.h"
#include "tools/mlkctl/TreeView.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl show - what this set is

Usage: mlkctl show [--json] [--timeout SECONDS]

Shows, for a person to read, what the service makes of the partitions: which project is selected
and which there are, board, panel, sound, HDMI, inputs and tuners, the country and what it decides,
languages, power, remote control, and where the partitions are. Use mlkctl call for a single value.
Paths are shown as the partitions' files have them, /tvconfigs/...; the last lines are the mount
points. A path that does not exist is marked (missing).

If the partitions are readable here and mlktree lies beside mlkctl or on PATH, it is asked what it
makes of them: a value that the board file or the country has put in the place of the model's is
then marked (board) or (country), and a last line counts what mlktree check finds in this set.

The country is the saved one, with its TV system, its TV feature file and the number of
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
  2  the command line is wrong

Examples:
  mlkctl show
  mlkctl show --json | jq -r .project.name
)";

using Answers = std::vector<Fact>;

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
                unreachable->emplace(interface, failure);
            } else {
                value = NoValue{"(no answer)"};
            }
        }
        answers.push_back({{row.group, row.label, row.key}, std::move(value)});
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

// The mount points are set, and must outlive the frame.
FactFrame frameOf(const Answers& answers, Services& services, Mounts* mounts) {
    FactFrame frame;
    try {
        *mounts = mountsOf(services);
        frame.asWritten = [mounts](const std::string& path) { return mounts->asWritten(path); };
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
            Answers answers = askAll(environment.services, &unreachable);
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
    void write(Answers& answers, Environment& environment) const {
        Mounts mounts({});
        FactFrame frame = frameOf(answers, environment.services, &mounts);
        if (mJson) {
            environment.output.line(factsJson(answers, frame.missing).str());
            return;
        }
        const std::string noModel = modelLine(mounts, environment.services);
        if (!noModel.empty()) {
            environment.output.write(paragraph("", noModel, 0, kFactWidth) + '\n');
        }
        frame.styled = wantsStyles(environment.output);
        const std::optional<TreeView> view =
                askMlktree(mounts, limitOf(mSeconds), environment.errors);
        if (view) {
            addNotes(*view, answers);
        }
        environment.output.write(factTable(answers, frame));
        const std::string findings = view ? findingsLine(*view) : "";
        if (!findings.empty()) {
            environment.output.write('\n' + findings + '\n');
        }
    }

    bool mJson = false;
    std::string mSeconds = "5";
};

}  // namespace

std::unique_ptr<Verb> makeShowVerb() {
    return std::make_unique<ShowVerb>();
}

}  // namespace mlk::ctl
