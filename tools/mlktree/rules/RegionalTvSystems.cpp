// Rules about TV systems and the countries that use them.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "regional/RegionalNames.h"
#include "tools/mlktree/CountryBlocks.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/FindingGroups.h"
#include "tools/mlktree/rules/Regional.h"
#include "tools/mlktree/rules/RegionalTvSystem.h"
#include "tools/mlktree/rules/RegionalXml.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
namespace element = product::element;

bool isSystem(const ReadLine& read) {
    return read.use == LineUse::SECTION;
}

void reportOtherMap(const ProductLine& line, const TvSystemFiles& files, FindingGroups& groups) {
    const ReadLine* const naming = files.file->find("", element::kCountryMap);
    groups.add(files.map->path(),
               naming != nullptr ? placeOf(line, *files.file, *naming, naming->value)
                                 : placeOf(*files.file),
               "this file defines no TV system that " + files.map->path() +
                       " names: is it the map of another file?");
}

// Names that the file does not define, each a finding at the country or at the definition.
void reportUndefined(const ProductLine& line, const TvSystemFiles& files, FindingGroups& groups) {
    const std::set<std::string_view> names = systemNamesOf(*files.file);
    const std::vector<const ReadLine*> named = systemsNamedBy(*files.map);
    const auto& systems = files.file->sections();
    std::map<std::string_view, size_t> uses;
    std::set<std::string_view> misspelt;  // in the definition
    for (const ReadLine* const read : named) {
        ++uses[trimmed(read->value)];
    }
    for (const ReadLine* const read : named) {
        if (names.count(trimmed(read->value)) > 0 || groups.isFull(files.map->path())) {
            continue;
        }
        const std::string_view near = nearest(read->value, {names.begin(), names.end()});
        const auto defined = systems.find(near);
        if (defined != systems.end() && uses.count(near) == 0 && uses[read->value] > 2) {
            // Several countries agree, so the definition is wrong.
            if (misspelt.insert(near).second) {
                groups.add(files.file->path() + '\n' + std::string(near),
                           placeOf(line, *files.file, *defined->second, near),
                           "no country has the TV system " + quoted(near) + "; " +
                                   std::to_string(uses[read->value]) + " countries have " +
                                   quoted(read->value),
                           {{placeOf(line, *files.map, *read, read->value), "named here"}});
            }
            continue;
        }
        std::vector<Related> related;
        if (defined != systems.end()) {
            related.push_back(
                    {placeOf(line, *files.file, *defined->second, near), "this one is defined"});
        }
        groups.add(
                files.file->path() + '\n' + std::string(read->value),
                placeOf(line, *files.map, *read, read->value),
                files.file->path() + " defines no TV system " + quoted(read->value) + meant(near),
                std::move(related));
    }
}

void checkUndefined(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const TvSystemFiles& files : line.tvSystems()) {
        if (!isUsable(files.file) || !isUsable(files.map) || mayLackSystems(*files.file)) {
            continue;
        }
        if (namesOtherMap(files)) {
            reportOtherMap(line, files, groups);
        } else {
            reportUndefined(line, files, groups);
        }
    }
    groups.report(reporter);
}

void checkUnused(const ProductLine& line, Reporter& reporter) {
    constexpr size_t kMostLookedAt = 100;
    FindingGroups groups;
    for (const TvSystemFiles& files : line.tvSystems()) {
        if (!isUsable(files.file) || !isUsable(files.map) || files.map->sections().empty() ||
            countIgnoredBlocks(*files.map) > 0 || namesOtherMap(files)) {
            continue;
        }
        const std::set<std::string_view> names = systemNamesOf(*files.file);
        std::set<std::string_view> used;
        std::vector<std::string_view> undefined;  // may mean any
        for (const ReadLine* const read : systemsNamedBy(*files.map)) {
            const std::string_view name = trimmed(read->value);
            if (used.insert(name).second && names.count(name) == 0 &&
                undefined.size() < kMostLookedAt) {
                undefined.push_back(name);
            }
        }
        for (const auto& [name, read] : files.file->sections()) {
            if (used.count(trimmed(name)) == 0 && nearest(name, undefined).empty()) {
                groups.add(std::string(name), placeOf(line, *files.file, *read, name),
                           "no country of " + files.map->path() + " uses the TV system " +
                                   quoted(name));
            }
        }
    }
    groups.report(reporter);
}

void checkRepeated(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const TvSystemFiles& files : line.tvSystems()) {
        for (const ReadLine& read : files.file->lines()) {
            if (!isSystem(read)) {
                continue;
            }
            const ReadLine* const first = files.file->sections().find(read.owner)->second;
            if (first != &read) {
                groups.add(std::string(read.owner), placeOf(line, *files.file, read, read.owner),
                           "TV system " + quoted(read.owner) +
                                   " is defined twice; of an item that both have, the first one "
                                   "counts",
                           {{placeOf(line, *files.file, *first, read.owner), "first here"}});
            }
        }
    }
    groups.report(reporter);
}

void checkBrackets(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const TvSystemFiles& files : line.tvSystems()) {
        for (const ReadLine* const item : itemsOf(*files.file)) {
            const std::string_view category = item->section;
            if (!hasBrackets(category)) {
                groups.add(std::string(category), placeOf(line, *files.file, *item, category),
                           "a category has brackets: " + quoted(withBrackets(category)) +
                                   " instead of " + quoted(category));
            }
        }
    }
    groups.report(reporter);
}

// The items of all files that no model has. If `isNear`, those that nearly have the name of one,
// else the others.
template <typename Take>
void forEachIgnored(const ProductLine& line, bool isNear, Take take) {
    for (const TvSystemFiles& files : line.tvSystems()) {
        ItemsOfModels models(line, files);
        for (const ReadLine* const read : itemsOf(*files.file)) {
            if (models.mayLack(*read)) {
                const ItemName near = models.nearestTo(*read);
                if (isNear != near.key.empty()) {
                    take(*files.file, *read, near);
                }
            }
        }
    }
}

std::string nameOf(const ReadLine& read) {
    return quoted(read.section) + " " + quoted(read.key);
}

void checkMisspelt(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    forEachIgnored(line, true, [&](const auto& file, const auto& read, const ItemName& near) {
        const bool isKey = near.section == read.section;
        groups.add(nameOf(read), placeOf(line, file, read, isKey ? read.key : read.section),
                   "no model has an item " + nameOf(read) + ", so the TV system cannot set it" +
                           meant(isKey ? near.key : near.section));
    });
    groups.report(reporter);
}

void checkWithoutModel(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    forEachIgnored(line, false, [&](const auto& file, const auto& read, const ItemName&) {
        groups.add(nameOf(read), placeOf(line, file, read, read.key),
                   "no model that uses the file has an item " + nameOf(read) +
                           ", so the TV system cannot set it");
    });
    groups.report(reporter);
}

// The items of a TV system.
struct SystemItems {
    const ReadLine* begin = nullptr;
    std::set<ItemName> items;  // that count
    std::set<ItemName> meant;  // by items that do not
    bool mayLackAny = false;   // for another rule's finding
};

std::vector<SystemItems> systemsWithItems(const FileLines& file, ItemsOfModels& models) {
    std::vector<SystemItems> systems;
    std::map<std::string_view, size_t> positions;
    for (const ReadLine& read : file.lines()) {
        if (isSystem(read) && positions.try_emplace(read.owner, systems.size()).second) {
            systems.push_back({&read, {}, {}, false});
        }
        const auto position = positions.find(read.owner);
        if (isSystem(read) || read.owner.empty() || position == positions.end()) {
            continue;
        }
        SystemItems& system = systems[position->second];
        const bool isItem = read.use == LineUse::ITEM && hasBrackets(read.section);
        system.mayLackAny |= !isItem;
        const ItemName name{trimmed(read.section), trimmed(read.key)};
        if (isItem && models.has(name)) {
            system.items.insert(name);
        } else if (isItem) {
            system.meant.insert(models.nearestTo(read));
        }
    }
    return systems;
}

// What a TV system lacks, as a text; empty if it lacks nothing.
std::string missingFrom(const SystemItems& system, const std::map<ItemName, const ReadLine*>& all,
                        const ReadLine*& other) {
    constexpr size_t kMostNamed = 3;
    std::string missing;
    size_t count = 0;
    for (const auto& [item, begin] : all) {
        if (system.items.count(item) > 0 || system.meant.count(item) > 0) {
            continue;
        }
        if (++count <= kMostNamed) {
            missing += (count > 1 ? ", " : "") + std::string(item.section) + " " +
                       std::string(item.key);
            other = count == 1 ? begin : other;
        }
    }
    return count <= kMostNamed ? missing
                               : missing + " and " + std::to_string(count - kMostNamed) + " more";
}

// Reports items that few TV systems set, and takes them out of `all`: the others lack nothing.
void reportRare(const ProductLine& line, const FileLines& file,
                const std::vector<SystemItems>& systems, std::map<ItemName, const ReadLine*>& all,
                FindingGroups& groups) {
    struct Rare {
        std::string_view owner;  // the first system that sets it
        size_t count;            // of systems that set it
    };
    std::map<ItemName, Rare> rare;
    for (auto each = all.begin(); each != all.end();) {
        const ItemName item = each->first;
        const auto count = static_cast<size_t>(
                std::count_if(systems.begin(), systems.end(), [&](const SystemItems& system) {
                    return system.items.count(item) > 0 || system.meant.count(item) > 0 ||
                           system.mayLackAny;
                }));
        if (count * 2 >= systems.size()) {
            ++each;
            continue;
        }
        rare.emplace(item, Rare{each->second->owner, count});
        each = all.erase(each);
    }
    if (rare.empty()) {
        return;
    }
    for (const ReadLine* const read : itemsOf(file)) {
        const auto found = rare.find({trimmed(read->section), trimmed(read->key)});
        if (found == rare.end() || found->second.owner != read->owner) {
            continue;
        }
        const ItemName& item = found->first;
        groups.add("rare" + nameOf(*read), placeOf(line, file, *read, read->key),
                   "TV system " + quoted(read->owner) + " sets " + std::string(item.section) + " " +
                           std::string(item.key) + ", which " +
                           std::to_string(systems.size() - found->second.count) + " of " +
                           std::to_string(systems.size()) +
                           " do not set: after a change from one of its countries the value stays");
        rare.erase(found);  // the first line is enough
    }
}

void checkUneven(const ProductLine& line, Reporter& reporter) {
    constexpr size_t kMostCompared = size_t{10} << 20;  // no file that somebody wrote has so many
    FindingGroups groups;
    for (const TvSystemFiles& files : line.tvSystems()) {
        ItemsOfModels models(line, files);
        const std::vector<SystemItems> systems = systemsWithItems(*files.file, models);
        std::map<ItemName, const ReadLine*> all;
        for (const SystemItems& system : systems) {
            for (const ItemName& item : system.items) {
                all.try_emplace(item, system.begin);
            }
        }
        if (all.size() * systems.size() > kMostCompared) {
            continue;
        }
        reportRare(line, *files.file, systems, all, groups);
        for (const SystemItems& system : systems) {
            const ReadLine* other = nullptr;
            const std::string missing = missingFrom(system, all, other);
            const std::string_view name = system.begin->owner;
            if (other != nullptr && !system.mayLackAny) {
                groups.add(std::string(name), placeOf(line, *files.file, *system.begin, name),
                           "TV system " + quoted(name) + " does not set " + missing +
                                   ", which others set: after a change from one of these countries "
                                   "its value stays",
                           {{placeOf(line, *files.file, *other, other->owner), "this one does"}});
            }
        }
    }
    groups.report(reporter);
}

constexpr Rule kRules[] = {
        {"undefined-tv-system", Severity::ERROR,
         "a country has a TV system that the TV system file does not define",
         "The country sets no items: a set keeps those of the former country.",
         "<TV_SYSTEM>DVB_NORDICS</TV_SYSTEM>", "<TV_SYSTEM>DVB_NORDIC</TV_SYSTEM>", checkUndefined},
        {"unused-tv-system", Severity::NOTE, "no country uses a TV system",
         "The TV system takes space, and somebody may mend it in vain. Or a country was forgotten.",
         "<TvSystem type=\"DVB_OLD\"> without a country that names it",
         "<TV_SYSTEM>DVB_OLD</TV_SYSTEM> in the country map", checkUnused},
        {"repeated-tv-system", Severity::WARNING, "a file defines a TV system twice",
         "A country gets the items of both, and the first one of those that both have: a change of "
         "the second has no effect.",
         "<TvSystem type=\"DVB\">...</TvSystem>\n<TvSystem type=\"DVB\">...</TvSystem>",
         "<TvSystem type=\"DVB\">...</TvSystem>\n<TvSystem type=\"ATSC\">...</TvSystem>",
         checkRepeated},
        {"category-without-brackets", Severity::ERROR,
         "the category of an item does not have its brackets",
         "The brackets belong to a section's name. No model has a section without them, so the "
         "item "
         "is ignored.",
         "<Item category=\"LiveTV\" key=\"DPVR\" value=\"true\"/>",
         "<Item category=\"[LiveTV]\" key=\"DPVR\" value=\"true\"/>", checkBrackets},
        {"misspelt-item", Severity::ERROR,
         "an item of a TV system is ignored, because its name is nearly one that the models have",
         "A TV system changes items of the model and adds none. The item that was meant keeps the "
         "model's value, or that of the former country.",
         "<Item category=\"[LiveTV]\" key=\"SubtitelDefault\" value=\"on\"/>",
         "<Item category=\"[LiveTV]\" key=\"SubtitleDefault\" value=\"on\"/>", checkMisspelt},
        {"item-without-model", Severity::NOTE,
         "no model that uses a TV system has an item that the TV system sets",
         "A TV system changes items of the model and adds none, so this one is ignored until a "
         "model has it.",
         "<Item category=\"[LiveTV]\" key=\"Ginga\" value=\"on\"/>",
         "Ginga = off in the section [LiveTV] of the model", checkWithoutModel},
        {"uneven-tv-systems", Severity::WARNING,
         "the TV systems of a file do not set the same items",
         "A change of country restores no items: what the former country set stays until the model "
         "changes or the set starts anew.",
         "<TvSystem type=\"A\"> sets SubtitleDefault, <TvSystem type=\"B\"> does not",
         "both set it", checkUneven},
};

}  // namespace

RuleFamily tvSystems() {
    return {"tv-systems", "TV systems", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
