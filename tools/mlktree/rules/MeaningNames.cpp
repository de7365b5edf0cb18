// Rules about names of sections and keys that nobody asks for.

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>

#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tools/mlktree/rules/Texts.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

using Names = std::vector<std::string_view>;

bool has(const Names& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isKnown(const ProductLine& line, const ReadLine& read) {
    return product::findKnownItem({read.section, read.key}) != nullptr ||
           line.settings().find(read.section, read.key) != nullptr;
}

std::string isMeant(std::string_view name, std::string_view right) {
    return differsInCase(name, right)
                   ? "case counts, and the service looks for " + quoted(right)
                   : "the service does not look for it; is " + quoted(right) + " meant?";
}

void checkSections(const ProductLine& line, Reporter& reporter) {
    const std::vector<ItemFile> files = itemFilesOf(line);
    const Misspellings misspelt = misspellingsOf(line, files);
    for (const ItemFile& item : files) {
        for (const auto& [name, first] : item.file->sections()) {
            const auto right = misspelt.sections.find(name);
            if (right != misspelt.sections.end()) {
                reporter.report(placeOf(line, *item.file, *first, name),
                                "no client finds the items of " + quoted(name) + ": " +
                                        isMeant(name, right->second));
            }
        }
    }
}

void checkKeys(const ProductLine& line, Reporter& reporter) {
    const std::vector<ItemFile> files = itemFilesOf(line);
    const Misspellings misspelt = misspellingsOf(line, files);
    for (const ItemFile& item : files) {
        for (const ReadLine* const read : item.items) {
            const auto right = misspelt.keys.find({read->section, read->key});
            if (right != misspelt.keys.end()) {
                reporter.report(placeOf(line, *item.file, *read, read->key),
                                "nobody asks for " + std::string(read->section) + " " +
                                        quoted(read->key) + ": " +
                                        isMeant(read->key, right->second));
            }
        }
    }
}

// The only section in which the service looks for the key; nothing if there are several or none.
std::optional<std::string_view> sectionOf(std::string_view key) {
    std::optional<std::string_view> section;
    for (const product::KnownItem& item : product::kKnownItems) {
        if (item.name.key == key) {
            if (section) {
                return std::nullopt;
            }
            section = item.name.category;
        }
    }
    return section;
}

void checkPlaces(const ProductLine& line, Reporter& reporter) {
    const std::vector<ItemFile> files = itemFilesOf(line);
    const Misspellings misspelt = misspellingsOf(line, files);
    for (const ItemFile& item : files) {
        for (const ReadLine* const read : item.items) {
            const std::optional<std::string_view> right = sectionOf(read->key);
            if (!right || isKnown(line, *read) || misspelt.sections.count(read->section) > 0 ||
                item.file->find(*right, read->key) != nullptr) {
                continue;
            }
            const auto users = std::count_if(files.begin(), files.end(), [&](const ItemFile& f) {
                return f.file->find(read->section, read->key) != nullptr;
            });
            if (users == 1) {
                reporter.report(placeOf(line, *item.file, *read, read->key),
                                "the service looks for " + quoted(read->key) + " in " +
                                        std::string(*right) + ", not in " +
                                        (read->section.empty() ? "the lines before any section"
                                                               : std::string(read->section)));
            }
        }
    }
}

// How many model files have each section and each of its keys.
struct Usage {
    std::map<std::string_view, size_t> sections;
    std::map<std::string_view, std::map<std::string_view, size_t>> keys;
};

Usage usageOf(const std::vector<ItemFile>& files) {
    Usage usage;
    for (const ItemFile& item : files) {
        if (item.isBoard) {
            continue;
        }
        for (const auto& [name, first] : item.file->sections()) {
            usage.sections[name] += 1;
        }
        for (const ReadLine* const read : item.items) {
            usage.keys[read->section][read->key] += 1;
        }
    }
    return usage;
}

// The near name that most model files have and that more have than this one; empty if none is.
std::string_view commonNameFor(const std::map<std::string_view, size_t>& counts,
                               std::string_view name) {
    const auto own = counts.find(name);
    const size_t count = own != counts.end() ? own->second : 0;
    Names candidates;
    for (const auto& [candidate, uses] : counts) {
        if (uses > count) {
            candidates.push_back(candidate);
        }
    }
    return nearestName(name, candidates);
}

std::string unlike(const std::map<std::string_view, size_t>& counts, std::string_view name,
                   std::string_view right) {
    const size_t count = counts.at(right);
    return counted(count, "other model file has ", "other model files have ") + quoted(right) +
           ", not " + quoted(name);
}

void checkUnlikeSections(const ProductLine& line, Reporter& reporter) {
    const std::vector<ItemFile> files = itemFilesOf(line);
    const Usage usage = usageOf(files);
    const Misspellings misspelt = misspellingsOf(line, files);
    std::map<std::string_view, std::string_view> common;
    for (const ItemFile& item : files) {
        for (const auto& [name, first] : item.file->sections()) {
            if (!isWholeSection(name) || has(knownSections(), name) ||
                misspelt.sections.count(name) > 0 || line.settings().knowsSection(name)) {
                continue;
            }
            const auto [right, isNew] = common.try_emplace(name);
            if (isNew) {
                right->second = commonNameFor(usage.sections, name);
            }
            if (!right->second.empty() && item.file->sections().count(right->second) == 0) {
                reporter.report(placeOf(line, *item.file, *first, name),
                                unlike(usage.sections, name, right->second));
            }
        }
    }
}

void checkUnlikeKeys(const ProductLine& line, Reporter& reporter) {
    const std::vector<ItemFile> files = itemFilesOf(line);
    const Usage usage = usageOf(files);
    const Misspellings misspelt = misspellingsOf(line, files);
    std::map<std::pair<std::string_view, std::string_view>, std::string_view> common;
    for (const ItemFile& item : files) {
        for (const ReadLine* const read : item.items) {
            const std::pair name(read->section, read->key);
            const auto keys = usage.keys.find(read->section);
            if (keys == usage.keys.end() || isKnown(line, *read) ||
                misspelt.sections.count(read->section) > 0 || misspelt.keys.count(name) > 0) {
                continue;
            }
            const auto [right, isNew] = common.try_emplace(name);
            if (isNew) {
                right->second = commonNameFor(keys->second, read->key);
            }
            if (!right->second.empty() &&
                item.file->find(read->section, right->second) == nullptr) {
                reporter.report(placeOf(line, *item.file, *read, read->key),
                                unlike(keys->second, read->key, right->second));
            }
        }
    }
}

void checkUnlike(const ProductLine& line, Reporter& reporter) {
    checkUnlikeSections(line, reporter);
    checkUnlikeKeys(line, reporter);
}

constexpr Rule kRules[] = {
        {"misspelt-section", Severity::ERROR, "a section has nearly the name of a known one",
         "Case and every letter count. The service and its clients find none of the section's "
         "items, and a board file replaces nothing.",
         "[Panel]\nm_pPanelName = LC430-A", "[PANEL]\nm_pPanelName = LC430-A", checkSections},
        {"misspelt-key", Severity::ERROR, "a key has nearly the name of a known one",
         "Case and every letter count. Nobody asks for the key, and the getter has no answer.",
         "[PANEL]\nm_pPanelname = LC430-A", "[PANEL]\nm_pPanelName = LC430-A", checkKeys},
        {"misplaced-key", Severity::WARNING, "a known key stands in another section",
         "The service looks for a key in one section only.", "[PANEL]\nDPVR = true",
         "[LiveTV]\nDPVR = true", checkPlaces},
        {"unlike-other-models", Severity::WARNING,
         "a section or key has nearly the name that other models have",
         "The service does not know the name, but the programs of the line that ask for it do. One "
         "model without it behaves unlike the others.",
         "[PANEL]\nm_nWdith = 3840      (the other models have m_nWidth)",
         "[PANEL]\nm_nWidth = 3840", checkUnlike},
};

}  // namespace

RuleFamily names() {
    return {"names", "Names that nobody asks for", kRules, std::size(kRules)};
}

}  // namespace mlk::tree
