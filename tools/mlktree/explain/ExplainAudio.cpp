// `mlktree explain audio SECTION KEY`: sound delays.

#include <algorithm>

#include "common/FileLimits.h"
#include "projectconfigs/SoundDelays.h"
#include "tools/common/Json.h"
#include "tools/common/Table.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/explain/Explain.h"
#include "tools/mlktree/set/SetDelays.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

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

NotFound missing(const SetDelays::Names& items, const Question& question) {
    std::vector<std::string_view> sections;
    std::vector<std::string_view> keys;
    for (const auto& [section, key] : items) {
        sections.push_back(section);
        if (section == question.section) {
            keys.push_back(key);
        }
    }
    if (keys.empty()) {
        return NotFound("no audio file of this set has a section " + question.section +
                        suggestionOf(question.section, sections));
    }
    return NotFound("no audio file of this set has an item " + question.section + " " +
                    question.key + ": its delay is 0" + suggestionOf(question.key, keys));
}

void checkOptions(const Arguments& arguments) {
    if (arguments.has("--avr-vendor") != arguments.has("--avr-name")) {
        throw UsageError("--avr-vendor and --avr-name name an AVR together; give both");
    }
    if (arguments.has("--avr-name") && !arguments.has("--arc")) {
        throw UsageError("an AVR counts with --arc only");
    }
}

// Name of the file of the AVR that the options name; empty for none.
std::string avrFileOf(const Arguments& arguments, const DelayPaths& paths) {
    const std::string vendor = arguments.value("--avr-vendor");
    const std::string name = arguments.value("--avr-name");
    if (vendor.empty() || name.empty()) {
        return "";
    }
    std::string file = product::kAvrAudioPrefix + vendor + "_" + name + product::kAudioFileEnd;
    if (std::max(vendor.size(), name.size()) > product::kFileNameSize ||
        SetDelays::isRefused(paths, file)) {
        throw UsageError(
                "--avr-vendor and --avr-name: the service refuses an AVR whose file has "
                "a name of more than " +
                std::to_string(product::kFileNameSize) + " bytes or a path of more than " +
                std::to_string(product::kAvrPathSize - 1));
    }
    return file;
}

}  // namespace

Explanation explainAudio(const SetModel& set, const Request& request) {
    const Arguments& arguments = request.arguments;
    const Question& question = request.question;
    checkOptions(arguments);
    const bool isArc = arguments.has("--arc");
    const DelayPaths paths = delayPathsOf(set);
    const SetDelays delays(set.line(), paths, avrFileOf(arguments, paths));
    const SetDelays::Names items = delays.items(isArc);
    std::vector<std::string> json;
    Table table;
    for (const auto& [section, key] : items) {
        if ((!question.section.empty() && section != question.section) ||
            (!question.key.empty() && key != question.key)) {
            continue;
        }
        const Delay delay{section, key, isArc, delays.delay(section, key, isArc),
                          delays.summands(section, key, isArc)};
        if (!question.key.empty()) {
            return {textOf(delay), jsonOf(delay) + "\n"};
        }
        json.push_back(jsonOf(delay));
        table.push_back(
                {shownText(section), shownText(key), std::to_string(delay.sum), lineOf(delay)});
    }
    if (!question.section.empty() && json.empty()) {
        throw missing(items, question);
    }
    return {aligned(table), jsonLines(json) + "\n"};
}

}  // namespace mlk::tree
