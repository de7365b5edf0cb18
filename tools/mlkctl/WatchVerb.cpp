#include <CLI/CLI.hpp>

#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <system_error>

#include "tools/common/Text.h"
#include "tools/mlkctl/Ask.h"
#include "tools/mlkctl/CountryRows.h"
#include "tools/mlkctl/Interrupts.h"
#include "tools/mlkctl/PropertyList.h"
#include "tools/mlkctl/TimeLimit.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

using V1_0::ConfigType;
using V1_0::IMlkProjectConfigs;
using V1_0::IMlkTvConfigs;

constexpr const char* kHelp = R"(mlkctl watch - what changes, as it changes

Usage: mlkctl watch [--interval SECONDS] [--count N] [--timeout SECONDS]

Shows changes of the selected model, the saved country, the TV systems and features, and the system
properties, until it is interrupted or the service goes.

Neither the service nor the property store tells of changes, so they are asked at an interval. Of
a value that changes several times within it, only the last change is shown.

Options:
  --interval SECONDS  time between two looks, 0.01 to 86400, fractions allowed; default 1
  --count N           end after N changes, 1 or more
  --timeout SECONDS   how long the service may take for an answer, 0 to 86400, fractions allowed;
                      default 5
  -h, --help          this text

Output:
  A line that says what is watched, then a line for each change, in this order within a look:
  country: GERMANY -> FRANCE
  feature HBBTV: on -> off
  model: 2 TRQ43-M2 -> 1 TRQ32-S1
  property persist.vendor.mlk.enable_wow: none -> "1"
  system DTV: 1 -> 2
  "none" stands for what does not exist, (no answer) for a value that the service does not tell.

Exit status:
  0  interrupted (SIGINT, SIGTERM), or there were N changes
  1  the service cannot be reached, or has gone
  2  the command line is wrong

Examples:
  mlkctl watch
  mlkctl watch --interval 0.2 --count 1
)";

// What is watched, and its value as it is shown. In the order of the lines.
using Facts = std::map<std::string, std::string>;

constexpr const char* kNoAnswer = "(no answer)";

std::string numberOf(const V1_0::OptionalInt32& answer) {
    return std::to_string(answer.value);
}

std::string textOf(const hidl_string& text) {
    return printable({text.c_str(), text.size()});
}

std::string modelOf(IBase& object) {
    std::string model = numberOf(ask(object, &IMlkProjectConfigs::getProjectId));
    const std::string name = textOf(ask(object, &IMlkProjectConfigs::getProjectName).value);
    return name.empty() ? model : model + ' ' + name;
}

std::string shown(const ShowValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return printable(*text);
    }
    const auto* none = std::get_if<NoValue>(&value);
    return none == nullptr ? std::string() : none->why;
}

// A fact that the service tells; throws Failure UNREACHABLE if there is no service.
template <typename Question>
std::string told(Services& services, const Interface& interface, const Question& question) {
    try {
        return services.ask(interface, question);
    } catch (const Failure& failure) {
        if (failure.status() == ExitStatus::UNREACHABLE) {
            throw;
        }
        return kNoAnswer;
    }
}

Facts look(Services& services, const Interrupts& interrupts) {
    const Interrupts::Question question(interrupts, static_cast<int>(ExitStatus::ANSWERED));
    Facts facts;
    facts["model"] = told(services, projectInterface(), modelOf);
    facts["country"] = told(services, projectInterface(), [country = countryName()](IBase& object) {
        return shown(country.ask(object));
    });
    facts["system ATV"] = told(services, tvInterface(), [](IBase& object) {
        return numberOf(ask(object, &IMlkTvConfigs::getAtvSystem));
    });
    facts["system DTV"] = told(services, tvInterface(), [](IBase& object) {
        return numberOf(ask(object, &IMlkTvConfigs::getDtvSystem));
    });
    for (const auto feature : ::android::hardware::hidl_enum_range<ConfigType>()) {
        facts["feature " + toString(feature)] =
                told(services, tvInterface(), [feature](IBase& object) -> std::string {
                    return ask(object, &IMlkTvConfigs::getFlag, feature).value ? "on" : "off";
                });
    }
    for (const auto& [key, value] : allProperties()) {
        facts["property " + printable(key)] = jsonString(value);
    }
    return facts;
}

std::string summaryOf(const Facts& facts) {
    const auto count = [&facts](const std::string& kind, const std::string& value) {
        return std::to_string(std::count_if(facts.begin(), facts.end(), [&](const auto& fact) {
            return fact.first.rfind(kind, 0) == 0 && (value.empty() || fact.second == value);
        }));
    };
    return "watching: model " + facts.at("model") + ", country " + facts.at("country") + ", " +
           count("feature ", "on") + " features on, " + count("property ", "") + " properties";
}

// The lines of what differs.
std::vector<std::string> changes(const Facts& before, const Facts& now) {
    const auto valueIn = [](const Facts& facts, const std::string& name) {
        const auto found = facts.find(name);
        return found == facts.end() ? "none" : found->second;
    };
    Facts all = before;
    all.insert(now.begin(), now.end());
    std::vector<std::string> lines;
    for (const auto& fact : all) {
        const std::string former = valueIn(before, fact.first);
        const std::string latter = valueIn(now, fact.first);
        if (former != latter) {
            std::string line = fact.first;
            line.append(": ").append(former).append(" -> ").append(latter);
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

class WatchVerb : public Verb {
  public:
    std::string_view name() const override { return "watch"; }
    std::string help() const override { return kHelp; }
    void addOptions(CLI::App& app) override {
        app.add_option("--interval", mInterval)
                ->type_name("SECONDS")
                ->check([](const std::string& text) {
                    return secondsFrom(text).value_or(0) >= 0.01
                                   ? std::string()
                                   : "SECONDS is a number from 0.01 to 86400, not " + excerpt(text);
                });
        app.add_option("--count", mCount)->type_name("N")->check([](const std::string& text) {
            return numberFrom(text).value_or(0) >= 1
                           ? std::string()
                           : "N is a number, 1 or more, not " + excerpt(text);
        });
        addTimeout(app, &mSeconds);
    }

    ExitStatus run(const std::vector<std::string>&, Environment& environment) override {
        const Interrupts interrupts;
        Services& services = environment.services;
        Output& output = environment.output;
        services.setLimit(limitOf(mSeconds));
        Facts facts = look(services, interrupts);
        output.line(summaryOf(facts));
        output.flush();
        // Without --count there is no end.
        int64_t left = mCount.empty() ? -1 : *numberFrom(mCount);
        while (true) {
            switch (interrupts.wait(limitOf(mInterval), output.descriptor())) {
                case Interrupts::Pause::INTERRUPTED:
                    return ExitStatus::ANSWERED;
                case Interrupts::Pause::NO_READER:
                    throw std::system_error(EPIPE, std::generic_category(), "standard output");
                case Interrupts::Pause::OVER:
                    break;
            }
            Facts now = look(services, interrupts);
            for (const std::string& line : changes(facts, now)) {
                output.line(line);
                if (--left == 0) {
                    return ExitStatus::ANSWERED;
                }
            }
            output.flush();
            facts = std::move(now);
        }
    }

  private:
    std::string mInterval = "1";
    std::string mCount;
    std::string mSeconds = "5";
};

}  // namespace

std::unique_ptr<Verb> makeWatchVerb() {
    return std::make_unique<WatchVerb>();
}

}  // namespace mlk::ctl
