#include <algorithm>
#include <memory>

#include "common/Paths.h"
#include "regional/RegionalNames.h"
#include "tools/common/Suggest.h"
#include "tools/common/Text.h"
#include "tools/mlktree/CommonOptions.h"
#include "tools/mlktree/CountryNames.h"
#include "tools/mlktree/FileReading.h"
#include "tools/mlktree/OpenTree.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/WrittenFile.h"
#include "tools/mlktree/plan/PlanPicture.h"
#include "tools/mlktree/plan/PlanText.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

using ::android::hardware::hidl_enum_range;

namespace {

template <typename Enum>
std::vector<std::string> namesOfAll() {
    std::vector<std::string> names;
    for (const auto value : hidl_enum_range<Enum>()) {
        names.push_back(toString(value));
    }
    return names;
}

bool isOneOf(const std::vector<std::string>& names, const std::string& word) {
    return std::find(names.begin(), names.end(), word) != names.end();
}

// Throws unless the word is one of the names.
void require(const char* what, const std::vector<std::string>& names, const std::string& word) {
    if (!isOneOf(names, word)) {
        throw UsageError(std::string(what) + " is " + joined(names) + ", not " + excerpt(word) +
                         didYouMean(word, {names.begin(), names.end()}, ""));
    }
}

/** What is asked for. */
struct PlanRequest {
    std::string tree;
    std::string country;
    std::string kind;
    std::string cable;

    bool isCable() const { return kind.find("CABLE") != std::string::npos; }
    /** "DTV_CABLE HRC" */
    std::string name() const { return isCable() ? kind + " " + cable : kind; }
};

constexpr const char* kForm = "plan takes [TREE] COUNTRY KIND [CABLE]";

// The first word after COUNTRY that can only be a tree, or an empty text.
std::string misplacedTree(const std::vector<std::string>& words) {
    if (words.empty() || (looksLikeTree(words[0]) && !countryOf(words[0]))) {
        return "";
    }
    for (size_t i = 1; i < words.size(); ++i) {
        // A folder may have the name of a country or a kind.
        const bool isName = countryOf(words[i]) || isOneOf(namesOfAll<FreqTableType>(), words[i]) ||
                            isOneOf(namesOfAll<AtscCableType>(), words[i]);
        if (!isName && looksLikeTree(words[i])) {
            return words[i];
        }
    }
    return "";
}

// What is missing if there are fewer than two words besides a tree.
std::string missingWord(const std::string& word, const std::vector<std::string>& kinds) {
    return isOneOf(kinds, word) ? "; COUNTRY is missing before " + excerpt(word)
                                : "; KIND is missing after " + excerpt(word);
}

// A tree comes before COUNTRY KIND [CABLE]. The third word is a kind only if the first is a tree.
PlanRequest requestOf(std::vector<std::string> words, bool isTreeNamed) {
    const std::string form = kForm;
    const std::vector<std::string> kinds = namesOfAll<FreqTableType>();
    PlanRequest request;
    const std::string misplaced = isTreeNamed ? "" : misplacedTree(words);
    if (!misplaced.empty()) {
        throw UsageError(form + "; the tree " + excerpt(misplaced) + " comes first");
    }
    const bool hasTree =
            !isTreeNamed && words.size() > 2 &&
            (words.size() == 4 ||
             (!isOneOf(kinds, words[1]) && (isOneOf(kinds, words[2]) || looksLikeTree(words[0]))));
    if (hasTree) {
        request.tree = words.front();
        words.erase(words.begin());
    }
    if (words.size() < 2 || words.size() > 3) {
        throw UsageError(form + (words.size() > 3 ? "; " + excerpt(words[3]) + " is too much"
                                 : words.size() == 1 && countryOf(words[0])
                                         ? missingWord(words[0], kinds)
                                         : ""));
    }
    if (words.size() == 2 && !isTreeNamed && looksLikeTree(words[0]) && !countryOf(words[0])) {
        throw UsageError(form + missingWord(words[1], kinds));
    }
    request.country = words[0];
    request.kind = words[1];
    request.cable = words.size() > 2 ? words[2] : "AUTO";
    require("KIND", kinds, request.kind);
    require("CABLE", namesOfAll<AtscCableType>(), request.cable);
    return request;
}

_tv_country countryNamed(const std::string& name) {
    const std::optional<_tv_country> country = countryOf(name);
    if (!country || *country == kNoCountry) {
        const std::string_view other = countryMeantBy(name);
        throw UsageError("the service knows no country " + excerpt(name) +
                         (other.empty() ? "" : "; did you mean " + std::string(other) + "?"));
    }
    return *country;
}

// Why there is no such plan: what the map says.
NotFound missing(const SetModel& set, const PlanRequest& request,
                 const std::vector<CountryPlan>& plans) {
    const std::string map = planFolderOf(set) + product::kChannelMapFile;
    const FileLines* const file = set.line().find(map);
    const std::string choice = nameOf(set.choice());  // empty if the line has no model
    const std::string what = request.country + " has no plan " + request.name() +
                             (choice.empty() ? "" : " in " + choice) + ": ";
    if (file == nullptr || !file->exists()) {
        return NotFound(what + "there is no map " + map);
    }
    if (file->isUnreadable()) {
        return NotFound(what + "the map " + map + " cannot be read");
    }
    const auto block = file->sections().find(request.country);
    if (block == file->sections().end()) {
        return NotFound(what + map + " does not have the country");
    }
    std::vector<std::string> names;
    names.reserve(plans.size());
    for (const CountryPlan& plan : plans) {
        names.push_back(nameOf(plan));
    }
    return NotFound(what + placeText(map, block->second->number) + " names " +
                    (names.empty() ? "none" : joined(names)));
}

PlanView planFor(const SetModel& set, const PlanRequest& request, _tv_country country) {
    const std::vector<CountryPlan> plans = plansOf(set, country);
    const auto plan = std::find_if(plans.begin(), plans.end(), [&](const CountryPlan& each) {
        return nameOf(each) == request.name();
    });
    if (plan == plans.end()) {
        throw missing(set, request, plans);
    }
    const FileLines* file = set.line().find(plan->file);
    const std::string named =
            plan->map == nullptr || plan->line == nullptr
                    ? ""
                    : ", which " + placeText(plan->map->path(), plan->line->number) + " names,";
    if (!product::pathExists(set.line().tree().host(plan->file))) {
        throw NotFound("there is no file " + plan->file + named + " for " + request.country + " " +
                       request.name());
    }
    if (plan->channels.empty()) {
        throw NotFound(plan->file + named + " has no channel");
    }
    // A file that is something else, too, such as the board's, was read as that.
    std::unique_ptr<const FileLines> own;
    if (file == nullptr || file->format() != FileFormat::CHANNEL_PLAN) {
        own = readFile(set.line().tree(), plan->file, FileFormat::CHANNEL_PLAN);
        file = own.get();
    }
    return viewOf(*plan, request.country, file);
}

ExitStatus run(const Arguments& arguments, Environment& environment) {
    const PlanRequest request = requestOf(arguments.words(), arguments.has("--tree"));
    if (arguments.has("--svg") && arguments.has("--format")) {
        throw UsageError("--svg draws a picture, --format prints a table; leave one of them out");
    }
    const _tv_country country = countryNamed(request.country);
    const OpenTree open(arguments, request.tree, environment, selectionOfSet(arguments));
    const SetModel set(open.line(), onlySetOf(open.line()));
    const PlanView plan = planFor(set, request, country);
    const std::string picture = arguments.value("--svg");
    if (picture == "-") {
        drawPlan(plan, [&](std::string_view text) { environment.output.write(text); });
    } else if (!picture.empty()) {
        WrittenFile file(picture);
        drawPlan(plan, [&](std::string_view text) { file.write(text); });
        file.finish();
    } else {
        const bool isJson = arguments.value("--format") == "json";
        environment.output.write(isJson ? planJson(plan) : planTable(plan));
    }
    return ExitStatus::NOTHING_FOUND;
}

std::vector<Completion> planWord(const std::vector<std::string>& before) {
    const std::vector<std::string> kinds = namesOfAll<FreqTableType>();
    // The country's place, if it is known.
    const bool hasTree = !before.empty() && !countryOf(before[0]);
    const size_t place = before.size() - (hasTree ? 1 : 0);
    switch (place) {
        case 0:
            return before.empty() ? std::vector<Completion>{Completion::COUNTRY, Completion::FOLDER}
                                  : std::vector<Completion>{Completion::COUNTRY};
        case 1:
            return {Completion::PLAN_KIND};
        default:
            return place == 2 ? std::vector<Completion>{Completion::CABLE}
                              : std::vector<Completion>{};
    }
}

}  // namespace

Command planCommand() {
    Command command;
    command.name = "plan";
    command.words = {"[TREE] COUNTRY KIND [CABLE]"};
    command.summary = "shows one channel plan, as a table or a picture";
    command.description =
            "Shows the channels that the service answers for a country: KIND is DTV_ANTENNA, "
            "DTV_CABLE, ATV_ANTENNA or ATV_CABLE; CABLE is AUTO, STD, HRC or IRC and counts for "
            "the two cable kinds only, AUTO without it. The map is that of the set that the "
            "impdata and tvdata partitions select, or the one that the options name.\n\n"
            "The table has the numbers of the answer: the frequency in kHz, which is the vision "
            "carrier of an analogue channel and the middle of any other, the bandwidth in Hz, and "
            "the modulation. It marks gaps between channels, channels that overlap, and what "
            "repeats a frequency or a name. Less than a twentieth of a channel is neither, and "
            "channels of different variants, told apart by the letters of their labels, may "
            "overlap.\n\n"
            "The picture is an SVG file with a bar for each channel, which a browser shows on "
            "light and dark backgrounds.";
    command.groups = {
            {"Options",
             {formatOption({"text", "json"}),
              {"--svg", 0, "FILE",
               "draw the plan into this file instead; \"-\" for standard output. Not with "
               "--format",
               Completion::FILE}}},
            treeOptions(),
            setOptions(),
    };
    command.statuses = statusesOf("shown", "there is no such plan, or it has no channel");
    command.examples = {
            {"mlktree plan GERMANY DTV_ANTENNA", "a table"},
            {"mlktree plan USA DTV_CABLE HRC --format json", "for a program"},
            {"mlktree plan samples/partitions USA DTV_CABLE --svg plan.svg", "a picture"},
    };
    command.mostWords = 4;
    command.nextWord = planWord;
    command.run = run;
    return command;
}

}  // namespace mlk::tree
