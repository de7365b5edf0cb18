#include <chrono>
#include <thread>

#include "tools/common/Text.h"
#include "tools/mlkctl/HostFolders.h"
#include "tools/mlkctl/Pending.h"
#include "tools/mlkctl/TimeLimit.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl wait - wait until the service answers

Usage: mlkctl wait [--timeout SECONDS]

Returns as soon as all three interfaces, IMlkProjectConfigs, IMlkTvConfigs and
IMlkFrameworkConfigs, are registered and answer a ping.

Options:
  --timeout SECONDS  give up after that time, 0 to 86400, fractions allowed; default 10. With 0
                     each interface is asked once. A service that is there has a second to
                     answer, even if the time is shorter.
  -h, --help         this text

Output:
  None. When the time is over, a message says which interfaces do not answer.

Exit status:
  0  all three answer
  1  the time is over
  2  the command line is wrong

Examples:
  mlkctl wait
  mlkctl wait --timeout 0.5 || echo "still starting"
)";

using Clock = Pending<bool>::Clock;

// Asks until there is an answer. Not every platform can wait for a registration, so this polls;
// each attempt costs a refused connection.
bool answersUntil(const Services::Finder& find, const Interface& interface,
                  Clock::time_point deadline) {
    constexpr auto kPause = std::chrono::milliseconds(20);
    while (true) {
        const auto object = find(interface);
        if (object != nullptr && object->ping().isOk()) {
            return true;
        }
        const auto now = Clock::now();
        if (now >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::min<Clock::duration>(kPause, deadline - now));
    }
}

// The names of the interfaces that do not answer in time.
std::vector<std::string> missingAt(Clock::time_point deadline, const Services::Finder& find) {
    // A service that is there needs time to answer, however short the limit is.
    constexpr auto kForAnAnswer = std::chrono::seconds(1);
    const auto end = std::max(deadline, Clock::now() + kForAnAnswer);
    std::vector<Pending<bool>> questions;
    for (const Interface* interface : interfaces()) {
        questions.emplace_back(
                [find, interface, deadline] { return answersUntil(find, *interface, deadline); });
    }
    std::vector<std::string> missing;
    for (size_t i = 0; i < questions.size(); ++i) {
        if (!questions[i].waitUntil(end).value_or(false)) {
            missing.emplace_back(interfaces()[i]->name);
        }
    }
    return missing;
}

// If a process refuses connections, which one and what to do, for the end of a message.
std::string refusalOf(const std::vector<std::string>& missing) {
    for (const std::string& interface : missing) {
        if (const auto process = processRefusing(socketOf(interface))) {
            return "; " + aboutRefusal(*process);
        }
    }
    return {};
}

class WaitVerb : public Verb {
  public:
    std::string_view name() const override { return "wait"; }
    std::string help() const override { return kHelp; }
    void addOptions(CLI::App& app) override { addTimeout(app, &mSeconds); }

    ExitStatus run(const std::vector<std::string>&, Environment& environment) override {
        const auto limit = limitOf(mSeconds);
        const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(limit);
        const auto missing = missingAt(deadline, environment.services.finder());
        if (missing.empty()) {
            return ExitStatus::ANSWERED;
        }
        throw Failure(ExitStatus::UNREACHABLE, "no answer within " + mSeconds + " s from " +
                                                       joined(missing) + aboutSockets() +
                                                       refusalOf(missing));
    }

  private:
    std::string mSeconds = "10";
};

}  // namespace

std::unique_ptr<Verb> makeWaitVerb() {
    return std::make_unique<WaitVerb>();
}

}  // namespace mlk::ctl
