// Rules about TV systems and the countries that use them.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "regional/RegionalNames.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/RegionalTvSystem.h"
#include "tools/mlktree/rules/RegionalXml.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;
namespace element = product::element;

bool isSystem(const ReadLine& read) {
    return read.use == LineUse::SECTION;
}

std::vector<std::string_view> systemNamesOf(const FileLines& file) {
    std::vector<std::string_view> names;
    for (const ReadLine& read : file.lines()) {
        if (isSystem(read)) {
            names.push_back(read.owner);
        }
    }
    return names;
}

// Elements that are ignored may have been meant for TV systems.
bool mayLackSystems(const FileLines& file) {
    return file.sections().empty() || countIgnoredBlocks(file) > 0;
}

// The lines of a map that name TV systems; without those that another rule reports.
std::vector<const ReadLine*> systemsNamedBy(const FileLines& map) {
    std::vector<const ReadLine*> lines;
    for (const ReadLine& read : map.lines()) {
        if (read.use == LineUse::ITEM && read.key == element::kSystemOfCountry && read.isNew &&
            !read.value.empty()) {
            lines.push_back(&read);
        }
    }
    return lines;
}

void checkUndefined(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const TvSystemFiles& files : line.tvSystems()) {
        if (!isUsable(files.file) || !isUsable(files.map) || mayLackSystems(*files.file)) {
            continue;
        }
        const auto& systems = files.file->sections();
        const std::vector<std::string_view> names = systemNamesOf(*files.file);
        for (const ReadLine* const read : systemsNamedBy(*files.map)) {
            // With trimmed names: another rule reports blanks.
            const bool isKnown = std::any_of(names.begin(), names.end(), [&](const auto& name) {
                return trimmed(name) == trimmed(read->value);
            });
            if (isKnown) {
                continue;
            }
            const std::string_view near = nearest(read->value, names);
            std::vector<Related> related;
            if (!near.empty()) {
                related.push_back({placeOf(line, *files.file, *systems.find(near)->second, near),
                                   "this one is defined"});
            }
            groups.add(files.file->path() + '\n' + std::string(read->value),
                       placeOf(line, *files.map, *read, read->value),
                       files.file->path() + " defines no TV system " + quoted(read->value) +
                               meant(near),
                       std::move(related));
        }
    }
    groups.report(reporter);
}

void checkUnused(const ProductLine& line, Reporter& reporter) {
    for (const TvSystemFiles& files : line.tvSystems()) {
        if (!isUsable(files.file) || !isUsable(files.map) || files.map->sections().empty() ||
            countIgnoredBlocks(*files.map) > 0) {
            continue;
        }
        const std::vector<const ReadLine*> named = systemsNamedBy(*files.map);
        for (const auto& [name, read] : files.file->sections()) {
            const bool isUsed = std::any_of(named.begin(), named.end(), [&](const ReadLine* use) {
                return !nearest(use->value, {name}).empty() || trimmed(use->value) == trimmed(name);
            });
            if (!isUsed) {
                reporter.report(placeOf(line, *files.file, *read, name),
                                "no country of " + files.map->path() + " uses the TV system " +
                                        quoted(name));
            }
        }
    }
}

void checkRepeated(const ProductLine& line, Reporter& reporter) {
    for (const TvSystemFiles& files : line.tvSystems()) {
        for (const ReadLine& read : files.file->lines()) {
            if (!isSystem(read)) {
                continue;
            }
            const ReadLine* const first = files.file->sections().find(read.owner)->second;
            if (first != &read) {
                reporter.report(placeOf(line, *files.file, read, read.owner),
                                "TV system " + quoted(read.owner) +
                                        " is defined twice; of an item that both have, the first "
                                        "one counts",
                                {{placeOf(line, *files.file, *first, read.owner), "first here"}});
            }
        }
    }
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

void checkMisspelt(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const TvSystemFiles& files : line.tvSystems()) {
        const ItemsOfModels models(line, files);
        for (const ReadLine* const item : itemsOf(*files.file)) {
            const ReadLine& read = *item;
            if (!models.mayLack(read)) {
                continue;
            }
            const ItemName near = models.nearestTo(read, *files.file);
            if (near.key.empty()) {
                continue;
            }
            const bool isKey = near.section == read.section;
            groups.add(std::string(read.section) + std::string(read.key),
                       placeOf(line, *files.file, read, isKey ? read.key : read.section),
                       "no model has an item " + quoted(read.section) + " " + quoted(read.key) +
                               ", so the TV system cannot set it" +
                               meant(isKey ? near.key : near.section));
        }
    }
    groups.report(reporter);
}

void checkWithoutModel(const ProductLine& line, Reporter& reporter) {
    FindingGroups groups;
    for (const TvSystemFiles& files : line.tvSystems()) {
        const ItemsOfModels models(line, files);
        for (const ReadLine* const item : itemsOf(*files.file)) {
            const ReadLine& read = *item;
            if (models.mayLack(read) && models.nearestTo(read, *files.file).key.empty()) {
                groups.add(std::string(read.section) + std::string(read.key),
                           placeOf(line, *files.file, read, read.key),
                           "no model that uses the file has an item " + quoted(read.section) + " " +
                                   quoted(read.key) + ", so the TV system cannot set it");
            }
        }
    }
    groups.report(reporter);
}

// Items that a TV system lacks and others set.
struct UnevenSystem {
    const ReadLine* begin = nullptr;
    std::set<ItemName> items;  // that count
    std::set<ItemName> meant;  // by items that do not
    bool mayLackAny = false;   // for another rule's finding
};

std::vector<UnevenSystem> systemsWithItems(const FileLines& file, const ItemsOfModels& models) {
    std::vector<UnevenSystem> systems;
    std::map<std::string_view, size_t> positions;
    for (const ReadLine& read : file.lines()) {
        if (isSystem(read)) {
            if (positions.try_emplace(read.owner, systems.size()).second) {
                systems.push_back({&read, {}, {}, false});
            }
            continue;
        }
        const auto position = positions.find(read.owner);
        if (read.owner.empty() || position == positions.end()) {
            continue;
        }
        UnevenSystem& system = systems[position->second];
        const bool isItem = read.use == LineUse::ITEM && hasBrackets(read.section);
        system.mayLackAny |= !isItem;
        const ItemName name{trimmed(read.section), trimmed(read.key)};
        if (isItem && models.has(name)) {
            system.items.insert(name);
        } else if (isItem) {
            system.meant.insert(models.nearestTo(read, file));
        }
    }
    return systems;
}

void checkUneven(const ProductLine& line, Reporter& reporter) {
    for (const TvSystemFiles& files : line.tvSystems()) {
        const ItemsOfModels models(line, files);
        const std::vector<UnevenSystem> systems = systemsWithItems(*files.file, models);
        std::map<ItemName, const UnevenSystem*> all;
        for (const UnevenSystem& system : systems) {
            for (const ItemName& item : system.items) {
                all.try_emplace(item, &system);
            }
        }
        for (const UnevenSystem& system : systems) {
            std::string missing;
            const UnevenSystem* other = nullptr;
            for (const auto& [item, owner] : all) {
                if (system.items.count(item) == 0 && system.meant.count(item) == 0) {
                    missing += (missing.empty() ? "" : ", ") + std::string(item.section) + " " +
                               std::string(item.key);
                    other = other == nullptr ? owner : other;
                }
            }
            if (other != nullptr && !system.mayLackAny) {
                const std::string name = quoted(system.begin->owner);
                reporter.report(placeOf(line, *files.file, *system.begin, system.begin->owner),
                                "TV system " + name + " does not set " + missing +
                                        ", which others set: after a change from one of these "
                                        "countries its "
                                        "value stays",
                                {{placeOf(line, *files.file, *other->begin, other->begin->owner),
                                  "this one sets it"}});
            }
        }
    }
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
