// `mlktree explain audio SECTION KEY`: sound delays.

#include "tools/common/Json.h"
#include "tools/common/Table.h"
#include "tools/common/Text.h"
#include "tools/mlktree/explain/Explain.h"
#include "tools/mlktree/set/SetDelays.h"

namespace mlk::tree {

namespace {

/** A delay with what it is made of. */
struct Delay {
    std::string_view section;
    std::string_view key;
    bool isArc = false;
    int32_t sum = 0;
    std::vector<Summand> summands;
};

std::string jsonOf(const Delay& delay) {
    std::vector<std::string> summands;
    for (const Summand& summand : delay.summands) {
        const bool hasLine = summand.line != nullptr;
        summands.push_back(
                JsonObject()
                        .text("role", summand.role)
                        .text("text", hasLine ? summand.line->value : "")
                        .number("value", summand.value)
                        .text("file", hasLine ? summand.file->path() : summand.path)
                        .number("line", hasLine ? static_cast<int64_t>(summand.line->number) : 0)
                        .str());
    }
    return JsonObject()
            .text("section", delay.section)
            .text("key", delay.key)
            .flag("arc", delay.isArc)
            .number("delay", delay.sum)
            .json("summands", jsonArray(summands))
            .str();
}

std::string placeOf(const Summand& summand) {
    if (summand.line != nullptr) {
        return placeText(summand.file->path(), summand.line->number);
    }
    if (summand.path.empty()) {
        return "no file is named";
    }
    return summand.path + (summand.file == nullptr ? ", which is missing or not used"
                           : summand.file->path() != summand.path
                                   ? ": " + summand.file->path() + " has its name and was first"
                                   : ", which lacks the item");
}

std::string textOf(const Delay& delay) {
    std::string text = shownText(delay.section) + " " + shownText(delay.key) + " = " +
                       std::to_string(delay.sum) + (delay.isArc ? " with ARC\n" : "\n");
    Table table;
    for (const Summand& summand : delay.summands) {
        table.push_back({"  " + summand.role,
                         summand.line != nullptr ? shownText(summand.line->value) : "-",
                         shownText(placeOf(summand))});
    }
    return text + aligned(table);
}

std::string lineOf(const Delay& delay) {
    std::string sum;
    for (const Summand& summand : delay.summands) {
        if (summand.line != nullptr) {
            sum += (sum.empty() ? "" : " + ") + summand.role + " " + std::to_string(summand.value);
        }
    }
    return sum;
}

NotFound missing(const std::vector<std::pair<std::string_view, std::string_view>>& items,
                 std::string_view section, const std::vector<std::string>& words) {
    std::vector<std::string_view> names;
    for (const auto& [one, key] : items) {
        names.push_back(section.empty() ? one : key);
        if (!section.empty() && one != section) {
            names.pop_back();
        }
    }
    if (section.empty()) {
        const bool hasBracket = !words[0].empty() && words[0].front() == '[';
        return NotFound("no audio file of this set has a section " + words[0] +
                        suggestionOf(hasBracket ? words[0] : "[" + words[0] + "]", names));
    }
    return NotFound("no audio file of this set has an item " + std::string(section) + " " +
                    words[1] + "; its delay is 0" + suggestionOf(words[1], names));
}

}  // namespace

Explanation explainAudio(const SetModel& set, const Question& question) {
    const Arguments& arguments = question.arguments;
    const bool isArc = arguments.has("--arc");
    if (arguments.has("--avr-vendor") != arguments.has("--avr-name")) {
        throw UsageError("--avr-vendor and --avr-name name an AVR together; give both");
    }
    if (arguments.has("--avr-name") && !isArc) {
        throw UsageError("an AVR counts with --arc only");
    }
    const SetDelays delays(set, arguments.value("--avr-vendor"), arguments.value("--avr-name"));
    const auto items = delays.items(isArc);
    std::string_view section;
    if (!question.words.empty()) {
        std::vector<std::string_view> sections;
        for (const auto& item : items) {
            sections.push_back(item.first);
        }
        section = sectionOf(question.words[0], sections);
        if (section.empty()) {
            throw missing(items, "", question.words);
        }
    }
    std::vector<std::string> json;
    std::string text;
    Table table;
    for (const auto& [one, key] : items) {
        if ((!question.words.empty() && one != section) ||
            (question.words.size() > 1 && key != question.words[1])) {
            continue;
        }
        const Delay delay{one, key, isArc, delays.delay(one, key, isArc),
                          delays.summands(one, key, isArc)};
        json.push_back(jsonOf(delay));
        if (question.words.size() > 1) {
            return {textOf(delay), json.front() + "\n"};
        }
        table.push_back({shownText(one), shownText(key), std::to_string(delay.sum), lineOf(delay)});
    }
    if (question.words.size() > 1) {
        throw missing(items, section, question.words);
    }
    return {aligned(table), jsonLines(json) + "\n"};
}

}  // namespace mlk::tree
