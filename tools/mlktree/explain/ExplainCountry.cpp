// `mlktree explain country NAME`: what a country brings.

#include "projectconfigs/KnownItems.h"
#include "regional/RegionalNames.h"
#include "tools/common/Json.h"
#include "tools/common/Table.h"
#include "tools/common/Text.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/explain/Explain.h"
#include "tools/mlktree/set/SetCountry.h"

namespace mlk::tree {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

std::string jsonOf(const FileLines* file, const ReadLine* line) {
    return file == nullptr || line == nullptr
                   ? "null"
                   : JsonObject()
                             .text("file", file->path())
                             .number("line", static_cast<int64_t>(line->number))
                             .str();
}

// The element that begins the country's TV system in its file.
const ReadLine* systemLine(const SetModel& set) {
    if (set.tvSystems() == nullptr || set.tvSystem().empty()) {
        return nullptr;
    }
    const auto& sections = set.tvSystems()->file->sections();
    const auto found = sections.find(set.tvSystem());
    return found != sections.end() ? found->second : nullptr;
}

// The values that the item has without the country; nothing if the set has no such item.
std::vector<Origin> replacedBy(const SetModel& set, const SetItem& brought) {
    const SetItem* const item = set.find(brought.section, brought.key);
    std::vector<Origin> replaced;
    for (const Origin& origin : item != nullptr ? item->history : std::vector<Origin>()) {
        if (origin.line == brought.current().line) {
            break;
        }
        replaced.push_back(origin);
    }
    return replaced;
}

// Whether the set has the value that the country brings.
bool isApplied(const SetModel& set, const SetItem& brought) {
    const SetItem* const item = set.find(brought.section, brought.key);
    return item != nullptr && item->current().line == brought.current().line;
}

std::string jsonOf(const SetModel& set, const SetItem& brought) {
    std::vector<std::string> replaced;
    for (const Origin& origin : replacedBy(set, brought)) {
        replaced.push_back(originJson(origin.value, origin.file->path(), origin.line->number,
                                      nameOf(origin.layer)));
    }
    const Origin& origin = brought.current();
    return JsonObject()
            .text("section", brought.section)
            .text("key", brought.key)
            .text("value", origin.value)
            .json("origin",
                  placeJson(origin.file->path(), origin.line->number, nameOf(origin.layer)))
            .flag("applied", isApplied(set, brought))
            .json("replaced", jsonArray(replaced))
            .str();
}

std::string jsonOf(const CountryPlan& plan) {
    return JsonObject()
            .text("kind", plan.kind)
            .text("cable", plan.cable)
            .text("file", plan.file)
            .json("named", jsonOf(plan.map, plan.line))
            .number("channels", static_cast<int64_t>(plan.channels.size()))
            .str();
}

std::string jsonOf(const SetModel& set, const Listed& listed, const Listed& launcher,
                   const std::vector<CountryPlan>& plans) {
    const _tv_country country = set.choice().country;
    const ReadLine* const record = set.countryRecord();
    std::vector<std::string> items;
    for (const SetItem& brought : set.countryItems()) {
        items.push_back(jsonOf(set, brought));
    }
    std::vector<std::string> planTexts;
    planTexts.reserve(plans.size());
    for (const CountryPlan& plan : plans) {
        planTexts.push_back(jsonOf(plan));
    }
    const FileLines* const map = set.tvSystems() != nullptr ? set.tvSystems()->map : nullptr;
    const FileLines* const systems = set.tvSystems() != nullptr ? set.tvSystems()->file : nullptr;
    return JsonObject()
                   .text("country", countryName(country))
                   .number("number", country)
                   .json("listed", jsonOf(listed.list, listed.line))
                   .json("launcher", jsonOf(launcher.list, launcher.line))
                   .json("record", jsonOf(map, record))
                   .text("recordOf", record != nullptr ? record->owner : "")
                   .text("tvSystem", set.tvSystem())
                   .json("system", jsonOf(systems, systemLine(set)))
                   .text("tvConfig", set.valueOf(product::kTvConfigItem))
                   .json("items", jsonArray(items))
                   .json("plans", jsonArray(planTexts))
                   .str() +
           "\n";
}

std::string placeOf(const FileLines* file, const ReadLine* line) {
    return placeText(file->path(), line->number);
}

void printRecord(Page& page, const SetModel& set, const std::string& name) {
    const ReadLine* const record = set.countryRecord();
    if (set.tvSystems() == nullptr) {
        page.row("record", "none: [COUNTRY] tvSysMap of this set names no file that can be read");
        return;
    }
    if (record == nullptr) {
        page.row("record", "none: the country changes nothing" +
                                   (set.tvSystems()->map == nullptr
                                            ? std::string(", and no country map is named")
                                            : " (" + set.tvSystems()->map->path() + ")"));
        return;
    }
    const bool isOwn = record->owner == name;
    page.row("record", placeOf(set.tvSystems()->map, record) +
                               (isOwn ? ""
                                      : ", which is that of " + std::string(record->owner) +
                                                ": its name contains " + name +
                                                ", and it is the first that does"));
    const ReadLine* const system = systemLine(set);
    page.row("TV system", set.tvSystem().empty() ? "none"
                          : system == nullptr
                                  ? set.tvSystem() + ", which " + set.tvSystems()->file->path() +
                                            " does not have"
                                  : set.tvSystem() + ", " + placeOf(set.tvSystems()->file, system));
}

std::string itemTable(const SetModel& set) {
    Table table;
    for (const SetItem& brought : set.countryItems()) {
        const Origin& origin = brought.current();
        const std::vector<Origin> replaced = replacedBy(set, brought);
        std::string effect = "ignored: neither model nor board has the item";
        if (!replaced.empty() && !isApplied(set, brought)) {
            effect = "not used: the record's TV_CONFIG comes first";
        } else if (!replaced.empty()) {
            const Origin& older = replaced.back();
            effect = older.value == origin.value
                             ? "as in " + placeOf(older.file, older.line)
                             : "replaces " +
                                       (older.value.empty() ? "an empty value"
                                                            : quoted(older.value)) +
                                       " of " + placeOf(older.file, older.line);
        }
        table.push_back({"  " + shownText(brought.section) + " " + shownText(brought.key),
                         origin.value.empty() ? "-" : shownText(origin.value),
                         shownText(placeOf(origin.file, origin.line)), shownText(effect)});
    }
    return aligned(table);
}

std::string planTable(const std::vector<CountryPlan>& plans) {
    Table table;
    for (const CountryPlan& plan : plans) {
        table.push_back({"  " + nameOf(plan), counted(plan.channels.size(), "channel", "channels"),
                         shownText(plan.file),
                         plan.line != nullptr ? shownText(placeOf(plan.map, plan.line)) : ""});
    }
    return aligned(table);
}

std::string listText(const Listed& listed) {
    if (listed.list == nullptr) {
        return "no: the set names no list";
    }
    return listed.line != nullptr ? placeOf(listed.list, listed.line)
                                  : "no (" + listed.list->path() + ")";
}

}  // namespace

Explanation explainCountry(const SetModel& set, const Request& request) {
    const _tv_country country = set.choice().country;
    const std::string name = countryName(country);
    if (country == kNoCountry || name.empty()) {
        throw NotFound("this set has no country; name one");
    }
    const Listed listed = listedIn(set, product::item::kCountries, country);
    const Listed launcher = listedIn(set, product::item::kCLTVCountries, country);
    const std::vector<CountryPlan> plans = plansOf(set, country);
    Page page(set.line(), request.isColoured);
    page.title(name + " (" + std::to_string(country) + ")");
    page.row("in the menu", listText(listed));
    page.row("live TV", listText(launcher));
    printRecord(page, set, name);
    page.row("features", set.valueOf(product::kTvConfigItem).empty()
                                 ? "-"
                                 : set.valueOf(product::kTvConfigItem));
    if (!set.countryItems().empty()) {
        page.title("Items that it brings");
        page.add(itemTable(set));
    }
    page.title("Channel plans");
    page.add(plans.empty() ? "  none\n" : planTable(plans));
    return {page.take(), jsonOf(set, listed, launcher, plans)};
}

}  // namespace mlk::tree
