// Rules about names of sections and keys that nobody asks for.

#include <algorithm>
#include <iterator>
#include <map>
#include <tuple>
#include <vector>

#include "tools/mlktree/Reporter.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Families.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tools/mlktree/rules/NameUses.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

bool has(const std::vector<std::string_view>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isMeantSection(const ItemTable& table, std::string_view section) {
    const auto found = table.sections.find(section);
    return found != table.sections.end() && !found->second.meant.empty();
}

std::string isMeant(std::string_view name, std::string_view right) {
    return differsInCase(name, right) ? "; case counts, and the service looks for " + quoted(right)
                                      : "; is " + quoted(right) + " meant?";
}

void checkSections(const ProductLine& line, Reporter& reporter) {
    for (const ItemFile& item : itemTableOf(line).files) {
        for (const auto& [name, first, facts] : item.sections) {
            if (!facts->meant.empty()) {
                reporter.report(placeOf(line, *item.file, *first, name),
                                "no client finds the items of " + quoted(name) +
                                        isMeant(name, facts->meant));
            }
        }
    }
}

void checkKeys(const ProductLine& line, Reporter& reporter) {
    const auto hasMeaning = [](const ItemName& /* name */, const ItemFacts& facts) {
        return !facts.meant.empty();
    };
    forEachItemThat(itemTableOf(line), hasMeaning,
                    [&](const FileLines& file, const ReadLine& read, const ItemFacts& facts) {
                        reporter.report(placeOf(line, file, read, read.key),
                                        "nobody asks for " + std::string(read.section) + " " +
                                                quoted(read.key) + isMeant(read.key, facts.meant));
                    });
}

// The sections in which the service looks for the key and the file lacks it: "[A] or [B]", or
// empty.
std::string sectionsFor(const FileLines& file, std::string_view key) {
    std::string sections;
    for (const product::KnownItem& item : product::kKnownItems) {
        if (item.name.key == key && file.find(item.name.category, key) == nullptr) {
            sections += (sections.empty() ? "" : " or ") + std::string(item.name.category);
        }
    }
    return sections;
}

// Keys of one section that belong to another one.
struct Misplaced {
    const FileLines* file = nullptr;
    const ReadLine* first = nullptr;
    std::string message;
    std::vector<Related> others;
    size_t count = 0;
};

// True if the service looks for the key somewhere.
bool isKnownKey(std::string_view key) {
    return std::any_of(std::begin(product::kKnownItems), std::end(product::kKnownItems),
                       [&](const product::KnownItem& item) { return item.name.key == key; });
}

void checkPlaces(const ProductLine& line, Reporter& reporter) {
    constexpr size_t kMostRelated = 5;
    const ItemTable& table = itemTableOf(line);
    const auto isMisplaced = [&](const ItemName& name, const ItemFacts& facts) {
        const auto isUser = [&](const ItemFile& item) {
            return item.file->find(name.first, name.second) != nullptr;
        };
        return !facts.isKnown() && isKnownKey(name.second) && !isMeantSection(table, name.first) &&
               std::count_if(table.files.begin(), table.files.end(), isUser) == 1;
    };
    // Where a section line is missing, all keys below it are misplaced.
    std::map<std::tuple<std::string_view, std::string_view, std::string>, Misplaced> found;
    forEachItemThat(
            table, isMisplaced, [&](const FileLines& file, const ReadLine& read, const ItemFacts&) {
                std::string right = sectionsFor(file, read.key);
                if (right.empty()) {
                    return;
                }
                Misplaced& misplaced = found[{file.path(), read.section, right}];
                misplaced.file = &file;
                if (++misplaced.count == 1) {
                    misplaced.first = &read;
                    misplaced.message = " in " + right + ", not in " +
                                        (read.section.empty() ? "the lines before any section"
                                                              : std::string(read.section));
                } else if (misplaced.others.size() < kMostRelated) {
                    misplaced.others.push_back({placeOf(line, file, read, read.key), "here, too"});
                }
            });
    for (auto& [sections, misplaced] : found) {
        const std::string more = misplaced.count > 1
                                         ? " and " + std::to_string(misplaced.count - 1) +
                                                   " other" + (misplaced.count > 2 ? "s" : "")
                                         : "";
        reporter.report(
                placeOf(line, *misplaced.file, *misplaced.first, misplaced.first->key),
                "the service looks for " + quoted(misplaced.first->key) + more + misplaced.message +
                        (more.empty() ? "" : "; is the section line above them missing or wrong?"),
                std::move(misplaced.others));
    }
}

// Names by how many model files have them.
struct Usage {
    NameUses sections;
    std::map<std::string_view, NameUses> keys;  // by section
};

Usage findUsage(const ItemTable& table) {
    Usage usage;
    for (const auto& [name, facts] : table.sections) {
        if (facts.models > 0) {
            usage.sections.add(name, facts.models);
        }
    }
    for (const auto& [name, facts] : table.items) {
        if (facts.models > 0) {
            usage.keys[name.first].add(name.second, facts.models);
        }
    }
    constexpr size_t kFewFiles = 20;
    const bool isSmall = table.files.size() < kFewFiles;
    usage.sections.sort(isSmall);
    for (auto& [section, uses] : usage.keys) {
        uses.sort(isSmall);
    }
    return usage;
}

std::string unlike(const NameUses& uses, std::string_view name, std::string_view right) {
    const size_t count = uses.countOf(right);
    return counted(count, "other model file has ", "other model files have ") + quoted(right) +
           ", not " + quoted(name);
}

void checkUnlikeSections(const ProductLine& line, Reporter& reporter, const ItemTable& table,
                         const NameUses& uses) {
    std::map<const SectionFacts*, std::string_view> common;
    size_t searches = 0;
    for (const auto& [name, facts] : table.sections) {
        const bool isUnknown = isWholeSection(name) && facts.meant.empty() &&
                               !has(knownSections(), name) && !line.settings().knowsSection(name);
        const std::string_view right = isUnknown ? uses.commonNameFor(name, searches) : "";
        if (!right.empty()) {
            common.emplace(&facts, right);
        }
    }
    for (const ItemFile& item : table.files) {
        for (const auto& [name, first, facts] : item.sections) {
            const auto right = common.find(facts);
            if (right != common.end() && item.file->sections().count(right->second) == 0) {
                reporter.report(placeOf(line, *item.file, *first, name),
                                unlike(uses, name, right->second));
            }
        }
    }
}

void checkUnlikeKeys(const ProductLine& line, Reporter& reporter, const ItemTable& table,
                     const Usage& usage) {
    std::map<const ItemFacts*, std::string_view> common;
    size_t searches = 0;
    const auto hasCommonName = [&](const ItemName& name, const ItemFacts& facts) {
        const auto uses = usage.keys.find(name.first);
        if (uses == usage.keys.end() || facts.isKnown() || !facts.meant.empty() ||
            isMeantSection(table, name.first)) {
            return false;
        }
        const std::string_view right = uses->second.commonNameFor(name.second, searches);
        return !right.empty() && common.emplace(&facts, right).second;
    };
    forEachItemThat(table, hasCommonName,
                    [&](const FileLines& file, const ReadLine& read, const ItemFacts& facts) {
                        const std::string_view right = common.at(&facts);
                        if (file.find(read.section, right) == nullptr) {
                            reporter.report(placeOf(line, file, read, read.key),
                                            unlike(usage.keys.at(read.section), read.key, right));
                        }
                    });
}

void checkUnlike(const ProductLine& line, Reporter& reporter) {
    const ItemTable& table = itemTableOf(line);
    const Usage usage = findUsage(table);
    checkUnlikeSections(line, reporter, table, usage.sections);
    checkUnlikeKeys(line, reporter, table, usage);
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
