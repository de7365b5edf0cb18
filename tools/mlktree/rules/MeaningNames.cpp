// Rules about names of sections and keys that nobody asks for.

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <unordered_map>

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
    const std::vector<ItemFile>& files = itemFilesOf(line);
    const Misspellings& misspelt = misspellingsOf(line);
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
    const std::vector<ItemFile>& files = itemFilesOf(line);
    const Misspellings& misspelt = misspellingsOf(line);
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
    const std::vector<ItemFile>& files = itemFilesOf(line);
    const Misspellings& misspelt = misspellingsOf(line);
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

// Names by how many model files have them.
struct Uses {
    std::unordered_map<std::string_view, size_t> counts;
    std::vector<std::string_view> mostUsed;  // at most kMostCandidates
};

// Little work, also for a hostile section. In a large line, a name that one file has is no model
// for others.
constexpr size_t kMostCandidates = 500;

struct Usage {
    Uses sections;
    std::map<std::string_view, Uses> keys;  // by section
};

void sortByUse(Uses& uses, bool isSmall) {
    for (const auto& [name, count] : uses.counts) {
        if (count > 1 || isSmall) {
            uses.mostUsed.push_back(name);
        }
    }
    std::sort(uses.mostUsed.begin(), uses.mostUsed.end(),
              [&](std::string_view one, std::string_view other) {
                  const size_t count = uses.counts.at(one);
                  const size_t otherCount = uses.counts.at(other);
                  return count != otherCount ? count > otherCount : one < other;
              });
    uses.mostUsed.resize(std::min(uses.mostUsed.size(), kMostCandidates));
}

Usage findUsage(const std::vector<ItemFile>& files) {
    Usage usage;
    for (const ItemFile& item : files) {
        if (item.isBoard) {
            continue;
        }
        for (const auto& [name, first] : item.file->sections()) {
            usage.sections.counts[name] += 1;
        }
        std::string_view section;
        Uses* uses = nullptr;
        for (const ReadLine* const read : item.items) {
            if (uses == nullptr || read->section != section) {
                section = read->section;
                uses = &usage.keys[section];
            }
            uses->counts[read->key] += 1;
        }
    }
    constexpr size_t kFewFiles = 20;
    const bool isSmall = files.size() < kFewFiles;
    sortByUse(usage.sections, isSmall);
    for (auto& [section, uses] : usage.keys) {
        sortByUse(uses, isSmall);
    }
    return usage;
}

const Usage& usageOf(const ProductLine& line) {
    const std::vector<ItemFile>& files = itemFilesOf(line);
    return line.memo().get<Usage>([&] { return findUsage(files); });
}

// The near name that more model files have than this one; empty if there is none.
std::string_view commonNameFor(const Uses& uses, std::string_view name) {
    const auto own = uses.counts.find(name);
    const size_t count = own != uses.counts.end() ? own->second : 0;
    Names candidates;
    for (const std::string_view candidate : uses.mostUsed) {
        if (uses.counts.at(candidate) <= count) {
            break;
        }
        candidates.push_back(candidate);
    }
    return nearestName(name, candidates);
}

std::string unlike(const Uses& uses, std::string_view name, std::string_view right) {
    const size_t count = uses.counts.at(right);
    return counted(count, "other model file has ", "other model files have ") + quoted(right) +
           ", not " + quoted(name);
}

void checkUnlikeSections(const ProductLine& line, Reporter& reporter) {
    const std::vector<ItemFile>& files = itemFilesOf(line);
    const Usage& usage = usageOf(line);
    const Misspellings& misspelt = misspellingsOf(line);
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
    const std::vector<ItemFile>& files = itemFilesOf(line);
    const Usage& usage = usageOf(line);
    const Misspellings& misspelt = misspellingsOf(line);
    std::unordered_map<ItemName, std::string_view, ItemNameHash> common;
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
