#include <optional>

#include "tools/common/Text.h"
#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/explain/Explain.h"

namespace mlk::tree {

namespace {

using Kind = Question::Kind;

Selection selectionFor(const Question& question, const Arguments& arguments) {
    if (question.kind == Kind::FILE) {
        return selectionOf(arguments);
    }
    Selection selection = selectionOfSet(arguments);
    const std::string& name = question.name;
    if (question.kind == Kind::COUNTRY && !name.empty()) {
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

Explanation explain(const ProductLine& line, const Request& request) {
    if (request.question.kind == Kind::FILE) {
        return explainFile(line, request);
    }
    const SetModel set(line, onlySetOf(line));
    switch (request.question.kind) {
        case Kind::FEATURE:
            return explainFeature(set, request);
        case Kind::AUDIO:
            return explainAudio(set, request);
        case Kind::COUNTRY:
            return explainCountry(set, request);
        default:
            return explainItems(set, request);
    }
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    const Question question = questionOf(arguments.words(), arguments.has("--tree"));
    const OpenTree open(arguments, question.tree, environment, selectionFor(question, arguments));
    const Request request{question, arguments,
                          isColoured(arguments, environment, environment.output.isTerminal())};
    const Explanation found = explain(open.line(), request);
    const bool isJson = arguments.value("--format") == "json";
    environment.output.write(isJson ? found.json : found.text);
    return ExitStatus::NOTHING_FOUND;
}

}  // namespace

Command explainCommand() {
    Command command;
    command.name = "explain";
    command.words = explainForms();
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
            {"mlktree explain SSC m_pSSCName", "one item"},
            {"mlktree explain LiveTV --country SWEDEN", "a section in Sweden"},
            {"mlktree explain feature pvrEnabled", "what decides a TV feature"},
            {"mlktree explain audio ARC --arc", "delays and their summands"},
            {"mlktree explain country GERMANY", "what a country brings"},
            {"mlktree explain file /tvconfigs/tv.config", "who names a file"},
    };
    command.mostWords = 4;
    command.nextWord = explainWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
