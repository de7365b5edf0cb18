#include <CLI/CLI.hpp>

#include <algorithm>

#include "tools/common/Text.h"
#include "tools/mlkctl/Items.h"
#include "tools/mlkctl/TimeLimit.h"
#include "tools/mlkctl/Verb.h"

namespace mlk::ctl {

namespace {

constexpr const char* kHelp = R"(mlkctl get - an item of the selected project

Usage: mlkctl get [--plain] [--timeout SECONDS] SECTION [KEY] [--plain]

Shows an item of the selected project, or all items of a section. It asks IMlkProjectConfigs, with
getConfig or getConfigsByCategory.

SECTION may be written with its brackets or without them. Without, the section of exactly this name
is meant if there is one, else the one with brackets. Words after the options are taken as they are,
but for a last word --plain; after `get --` that is a KEY, too.

Options:
  --plain            the bare value, as a script wants it
  --timeout SECONDS  how long the service may take to be found, and how long to answer: 0 to 86400,
                     fractions allowed; default 30
  -h, --help         this text

Output:
  With KEY, {"success":true,"value":"..."}: the value is empty if there is no such item.
  Without KEY, [{"key":"...","value":"..."}], in ascending order of the keys.
  With --plain the value and a newline; without KEY a line KEY=VALUE for each item. On a terminal
  control characters are escaped; a program gets the bytes.
  If there is no such section or key, a message names the one that is probably meant.

Exit status:
  0  answered; with --plain, there is such an item, though its value may be empty
  1  with --plain: the item does not exist; or the service cannot be reached
  2  the command line is wrong
  3  the service gave no answer

Examples:
  mlkctl get LiveTV TvConfig
  mlkctl get --plain PANEL m_pPanelName
  mlkctl get HDMI_EDID_1
)";

class GetVerb : public Verb {
  public:
    std::string_view name() const override { return "get"; }
    std::string help() const override { return kHelp; }
    void addOptions(CLI::App& app) override {
        app.add_flag("--plain", mPlain);
        addTimeout(app, &mSeconds);
    }
    bool hasValue(std::string_view option) const override { return option == "--timeout"; }
    bool takesWords() const override { return true; }
    Candidates candidates(const Completing& at) override {
        return argumentCandidates(projectInterface().method("getConfig"), at.before, at);
    }

    void endOptions() override { mMayEndPlain = false; }

    ExitStatus run(const std::vector<std::string>& given, Environment& environment) override {
        std::vector<std::string> words = given;
        if (mMayEndPlain && words.size() > 1 && words.back() == "--plain") {
            mPlain = true;
            words.pop_back();
        }
        if (words.empty() || words.size() > 2) {
            throw usage("get takes SECTION and maybe KEY");
        }
        environment.services.setLimit(limitOf(mSeconds));
        const std::string section =
                sectionMeant(environment.services, withoutByteEscapes(words[0]));
        std::optional<std::string> key;
        if (words.size() == 2) {
            key = withoutByteEscapes(words[1]);
        }
        std::vector<V1_0::ConfigKeyValue> items = itemsOf(environment.services, section);
        if (key) {
            items.erase(std::remove_if(items.begin(), items.end(),
                                       [&](const auto& item) { return item.key != *key; }),
                        items.end());
        }
        mPlain ? writePlain(items, key.has_value(), environment.output)
               : writeAnswer(section, key, environment);
        if (!items.empty()) {
            return ExitStatus::ANSWERED;
        }
        environment.note(whyMissing(section, key, environment.services));
        return mPlain ? ExitStatus::UNREACHABLE : ExitStatus::ANSWERED;
    }

  private:
    static void writePlain(const std::vector<V1_0::ConfigKeyValue>& items, bool valueOnly,
                           Output& output) {
        for (const V1_0::ConfigKeyValue& item : items) {
            const std::string value(item.value.c_str(), item.value.size());
            const std::string key(item.key.c_str(), item.key.size());
            std::string line = value;
            if (!valueOnly) {
                line.insert(0, key + '=');
            }
            output.line(output.isTerminal() ? printable(line) : line);
        }
    }

    static void writeAnswer(const std::string& section, const std::optional<std::string>& key,
                            Environment& environment) {
        std::vector<Argument> arguments = {Argument::ofText(section)};
        if (key) {
            arguments.push_back(Argument::ofText(*key));
        }
        const Interface& interface = projectInterface();
        const Method& method = interface.method(key ? "getConfig" : "getConfigsByCategory");
        environment.output.line(
                environment.services.call(interface, method, arguments, Form::JSON));
    }

    static std::string whyMissing(const std::string& section, const std::optional<std::string>& key,
                                  Services& services) {
        std::string why;
        try {
            why = missingItem(parseDump(dumpOf(services)).items, section, key);
        } catch (const Failure&) {
            // A service that gives no dump names nothing that may be meant.
        }
        if (!why.empty()) {
            return why;
        }
        return "there is no item " + section + (key ? ' ' + *key : "");
    }

    bool mMayEndPlain = true;
    bool mPlain = false;
    std::string mSeconds = kDefaultTimeout;
};

}  // namespace

std::unique_ptr<Verb> makeGetVerb() {
    return std::make_unique<GetVerb>();
}

}  // namespace mlk::ctl
