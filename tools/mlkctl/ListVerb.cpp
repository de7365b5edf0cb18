#include <CLI/CLI.hpp>

#include "tools/common/Json.h"
#include "tools/common/Table.h"
#include "tools/common/Text.h"
#include "tools/mlkctl/HostFolders.h"
#include "tools/mlkctl/Registry.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl list - what is registered

Usage: mlkctl list [--json]

Lists every name that is registered: its interface with the package, its instance, the process it
lives in and how many threads that process has now. Where there is no process id, its column says
why:

  hangs   the service gives no answer within one second after the names are known, or two seconds
          after the beginning
  untold  it answers, but does not tell its process. On a device these are the rows of the runtime
          itself, and services whose runtime tells it on debuggable builds only
  absent  there is a name, but no service is given for it: it has gone, or this user may not have it
  refused its process closes each new connection, because other clients hold too many; a message
          names that process, and its log names the client that has the most

Options:
  --json      one JSON array of objects instead of a table
  -h, --help  this text

Output:
  INTERFACE                                           INSTANCE  PID   THREADS
  vendor.morlak.mlkconfigs@1.0::IMlkFrameworkConfigs  default   4711  3

  With --json, one line:
  [{"interface":"...","instance":"default","state":"told","pid":4711,"threads":3}]
  where state is told, hangs, untold, absent or refused; pid and threads are null when not known.

Exit status:
  0  done
  1  nothing is registered, or the service manager cannot be reached
  2  the command line is wrong

Examples:
  mlkctl list
  mlkctl list --json | jq -r '.[].pid'
)";

const char* nameOf(Answering answering) {
    switch (answering) {
        case Answering::TOLD:
            return "told";
        case Answering::UNTOLD:
            return "untold";
        case Answering::ABSENT:
            return "absent";
        case Answering::REFUSED:
            return "refused";
        case Answering::HANGS:
            break;
    }
    return "hangs";
}

std::string numberOr(const std::optional<int>& number, const char* otherwise) {
    return number ? std::to_string(*number) : otherwise;
}

void writeJson(const std::vector<Registration>& rows, Output& output) {
    std::vector<std::string> objects;
    objects.reserve(rows.size());
    for (const Registration& row : rows) {
        objects.push_back(JsonObject()
                                  .text("interface", row.interface)
                                  .text("instance", row.instance)
                                  .text("state", nameOf(row.answering))
                                  .json("pid", numberOr(row.pid, "null"))
                                  .json("threads", numberOr(row.threads, "null"))
                                  .str());
    }
    output.line(jsonArray(objects));
}

void writeTable(const std::vector<Registration>& rows, Output& output) {
    Table table;
    table.push_back({"INTERFACE", "INSTANCE", "PID", "THREADS"});
    for (const Registration& row : rows) {
        table.push_back(
                {printable(row.interface), printable(row.instance),
                 row.answering == Answering::TOLD ? numberOr(row.pid, "") : nameOf(row.answering),
                 numberOr(row.threads, "-")});
    }
    output.write(aligned(table));
}

class ListVerb : public Verb {
  public:
    std::string_view name() const override { return "list"; }
    std::string help() const override { return kHelp; }
    void addOptions(CLI::App& app) override { app.add_flag("--json", mJson); }

    ExitStatus run(const std::vector<std::string>&, Environment& environment) override {
        const auto rows = registrations(std::chrono::seconds(2));
        if (mJson) {
            writeJson(rows, environment.output);
        } else if (!rows.empty()) {
            writeTable(rows, environment.output);
        }
        for (const Registration& row : rows) {
            if (row.answering == Answering::REFUSED) {
                environment.note(row.interface + '/' + row.instance + ": " +
                                 aboutRefusal(row.pid.value_or(0)));
            }
        }
        if (rows.empty()) {
            environment.note("nothing is registered" + aboutSockets());
            return ExitStatus::UNREACHABLE;
        }
        return ExitStatus::ANSWERED;
    }

  private:
    bool mJson = false;
};

}  // namespace

std::unique_ptr<Verb> makeListVerb() {
    return std::make_unique<ListVerb>();
}

}  // namespace mlk::ctl
