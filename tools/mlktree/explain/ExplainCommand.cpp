#include <sys/stat.h>

#include <optional>
#include <ostream>

#include "tools/common/Text.h"
#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/explain/Explain.h"
#include "tools/mlktree/explain/ExplainCommand.h"
#include "tools/mlktree/rules/Regional.h"

namespace mlk::tree {

namespace {

/** What can be explained, by the first word; the last row is for every other word. */
struct Topic {
    std::string_view name;
    size_t mostWords;
    Explanation (*explain)(const SetModel& set, const Question& question);
    std::vector<Completion> completions; /**< of the words after the topic's name */
};

const std::vector<Topic>& topics() {
    static const std::vector<Topic> kTopics = {
            {"feature", 1, explainFeature, {Completion::FEATURE}},
            {"audio", 2, explainAudio, {Completion::SOUND_SECTION, Completion::SOUND_KEY}},
            {"country", 1, explainCountry, {Completion::COUNTRY}},
            {"file", 1, nullptr, {Completion::FILE}},
            {"", 2, explainItems, {Completion::SECTION, Completion::KEY}},
    };
    return kTopics;
}

const Topic& topicOf(const std::vector<std::string>& words) {
    for (const Topic& topic : topics()) {
        if (!words.empty() && topic.name == words.front()) {
            return topic;
        }
    }
    return topics().back();
}

bool isTree(const std::string& word) {
    struct stat info {};
    return stat((word + "/tvconfigs").c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Removes TREE from the end of the words: a folder with tvconfigs/, or what is too much for a word
// of the topic.
std::string takeTree(std::vector<std::string>& words, const Topic& topic) {
    std::string tree;
    if (!words.empty() && (words.size() > topic.mostWords || isTree(words.back()))) {
        tree = words.back();
        words.pop_back();
    }
    if (words.size() > topic.mostWords) {
        throw UsageError(excerpt(words[topic.mostWords]) +
                         " is too much (see mlktree explain "
                         "--help)");
    }
    return tree;
}

Selection selectionFor(const Topic& topic, const Arguments& arguments,
                       const std::vector<std::string>& words) {
    if (topic.explain == nullptr) {
        return selectionOf(arguments);
    }
    Selection selection = selectionOfSet(arguments);
    if (topic.explain == explainCountry && !words.empty()) {
        const std::string& name = words.front();
        if (!selection.country.empty() && selection.country != name) {
            throw UsageError("there are two countries, " + excerpt(name) + " and --country " +
                             excerpt(selection.country) + "; leave one of them out");
        }
        const std::optional<_tv_country> country = countryOf(name);
        if (!country || *country == kNoCountry) {
            const std::string_view other = countryMeantBy(name);
            throw NotFound("the service knows no country " + excerpt(name) +
                           (other.empty() ? "" : "; did you mean " + std::string(other) + "?"));
        }
        selection.country = name;
    }
    return selection;
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    std::vector<std::string> words = arguments.words();
    const Topic& topic = topicOf(words);
    if (!topic.name.empty()) {
        words.erase(words.begin());
    }
    const std::string tree = takeTree(words, topic);
    const Question question{words, arguments,
                            isColoured(arguments, environment, environment.output.isTerminal())};
    try {
        const OpenTree open(arguments, tree, environment, selectionFor(topic, arguments, words));
        const Explanation found =
                topic.explain != nullptr
                        ? topic.explain(SetModel(open.line(), onlySetOf(open.line())), question)
                        : explainFile(open.line(), question);
        const bool isJson = arguments.value("--format") == "json";
        environment.output.write(isJson ? found.json : found.text);
    } catch (const NotFound& error) {
        environment.errors << "mlktree: " << printable(error.what()) << std::endl;
        return ExitStatus::FOUND;
    }
    return ExitStatus::NOTHING_FOUND;
}

std::vector<Completion> nextWord(const std::vector<std::string>& before) {
    if (before.empty()) {
        return {Completion::EXPLAINED, Completion::SECTION, Completion::FOLDER};
    }
    const Topic& topic = topicOf(before);
    const size_t at = before.size() - (topic.name.empty() ? 0 : 1);
    std::vector<Completion> next;
    if (at < topic.completions.size()) {
        next.push_back(topic.completions[at]);
    }
    if (topic.name != "file" || at > 0) {
        next.push_back(Completion::FOLDER);
    }
    return next;
}

}  // namespace

Command explainCommand() {
    Command command;
    command.name = "explain";
    command.words = {"[SECTION [KEY]] [TREE]", "feature [NAME] [TREE]",
                     "audio [SECTION [KEY]] [TREE]", "country [NAME] [TREE]", "file PATH [TREE]"};
    command.summary = "tells where a value comes from";
    command.description =
            "Of an item: its value, the file and line that it comes from, each value that this one "
            "replaces and why, and what reads it. SECTION may be given without its brackets; alone "
            "it stands for all its items. A word of one of the topics below is a section only with "
            "its brackets.\n\n"
            "Of a TV feature or a framework switch: whether the TV feature file, a system property "
            "or the default decides, and what switches it off. NAME is the getter, the property, "
            "or a short name such as pvr.\n\n"
            "Of a sound delay: each value that it is the sum of. Of a country: its TV system, the "
            "items that it brings and what they replace, and its channel plans. Of a file: the "
            "lines that name it, and the sets that use it.\n\n"
            "Everything but a file is explained for one set: the one that the impdata and tvdata "
            "partitions select, unless options name another. Without a saved country, its country "
            "is the first of the country map, as after the first start.";
    command.groups = {
            {"Options",
             {
                     {"--arc", 0, "", "of a delay: on the audio return channel"},
                     {"--avr-vendor", 0, "ID",
                      "of a delay with --arc: the vendor id of the AVR in use"},
                     {"--avr-name", 0, "NAME", "its OSD name"},
                     formatOption({"text", "json"}),
                     colorOption(),
             }},
            treeOptions(),
            setOptions(),
    };
    command.statuses = {{0, "explained"},
                        {1, "there is no such item, feature, delay, country or file"},
                        {2,
                         "the command line or the tree is wrong; the message says what would "
                         "be right"}};
    command.examples = {
            {"mlktree explain SSC m_pSSCName samples/partitions", "one item"},
            {"mlktree explain LiveTV --country SWEDEN", "a section, in another country"},
            {"mlktree explain feature pvrEnabled", "what decides a TV feature"},
            {"mlktree explain audio ARC HDMI_DELAY --arc --avr-vendor 0EC0DE --avr-name Orlan900",
             "a sound delay, with the AVR that adds to it"},
            {"mlktree explain country GERMANY --format json", "what a country brings"},
            {"mlktree explain file /tvconfigs/board/skerry_b2.ini", "who names a file"},
    };
    command.mostWords = 4;
    command.nextWord = nextWord;
    command.run = run;
    return command;
}

std::vector<std::string_view> explainTopics() {
    std::vector<std::string_view> names;
    for (const Topic& topic : topics()) {
        if (!topic.name.empty()) {
            names.push_back(topic.name);
        }
    }
    return names;
}

}  // namespace mlk::tree
