#pragma once

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/** A section and a key of it. */
using ItemName = std::pair<std::string_view, std::string_view>;

/** A section's name in model and board files. */
struct SectionFacts {
    size_t models = 0;      /**< model files that have it */
    std::string_view meant; /**< the known name that is probably meant; else empty */
};

/** An item's name in model and board files. */
struct ItemFacts {
    size_t number = 0; /**< the name's place in ItemTable::items */
    const vendor::morlak::mlkconfigs::V1_0::implementation::KnownItem* known = nullptr;
    const OwnKey* own = nullptr; /**< what mlktree.toml declares it as; null if it does not */
    size_t models = 0;           /**< model files that have it as a sound item */
    size_t files = 0;            /**< board files, too */
    std::string_view meant;      /**< the known key of its section that is meant; else empty */

    /** True if the service or mlktree.toml knows the name. */
    bool isKnown() const { return known != nullptr || own != nullptr; }
};

/** A project or board file that exists, with what the rules about its items ask of it. */
struct ItemFile {
    struct Section {
        std::string_view name;
        const ReadLine* first;
        const SectionFacts* facts;
    };
    struct Item {
        const ReadLine* line;
        const ItemFacts* facts;
    };

    const FileLines* file = nullptr;
    bool isBoard = false;
    std::vector<Section> sections; /**< by name */
    /** Those that count, have a "=" and a key, and stand in a section of which nothing is broken:
     * no other rule has something to say about them. */
    std::vector<Item> items;
};

/** The items of model and board files, and what is known of their names. */
struct ItemTable {
    std::vector<ItemFile> files; /**< files that count for some model, then boards; each once */
    std::map<std::string_view, SectionFacts> sections;
    std::map<ItemName, ItemFacts> items;

    /** The facts of a name; null if no sound item has it. */
    const ItemFacts* find(const ItemName& name) const;
};

/**
 * The items of a product line.
 *
 * A name is meant for a known one that is near, unless mlktree.toml declares it, or some file has
 * both names and more than their case differs.
 */
const ItemTable& itemTableOf(const ProductLine& line);

/**
 * Calls visit(file, line, facts) for each sound item whose name passes the test, file by file.
 *
 * @param test  gets the name and its facts
 */
template <typename Test, typename Visit>
void forEachItemThat(const ItemTable& table, const Test& test, const Visit& visit) {
    std::vector<bool> chosen;
    for (const auto& [name, facts] : table.items) {
        chosen.push_back(test(name, facts));
    }
    if (std::find(chosen.begin(), chosen.end(), true) == chosen.end()) {
        return;
    }
    for (const ItemFile& file : table.files) {
        for (const ItemFile::Item& item : file.items) {
            if (chosen[item.facts->number]) {
                visit(*file.file, *item.line, *item.facts);
            }
        }
    }
}

/** Sections of the project store that the service reads, each once. */
const std::vector<std::string_view>& knownSections();

/** Keys that the service reads in that section. */
std::vector<std::string_view> knownKeysIn(std::string_view section);

/** The known section that a line like "(AUDIO)" or "{AUDIO}" means; empty if it means none. */
std::string_view sectionMeantBy(std::string_view code);

/** True for a line of a section that lacks a bracket or is indented; another rule reports it. */
bool isBrokenSection(const ReadLine& read);

/** True for a section name with both brackets and nothing else. */
bool isWholeSection(std::string_view name);

/**
 * The candidate that is probably meant, as nearest() has it. Names that differ in their numbers
 * only are never meant for each other, nor are names of one or two letters that differ in more than
 * their case. Brackets of sections do not count.
 */
std::string_view nearestName(std::string_view name, const std::vector<std::string_view>& names);

/** The text without what is no letter, digit or "_" at its ends; a part of it. */
std::string_view wordIn(std::string_view text);

/** True if two names differ in words of one or two letters only, as UART_TX and UART_RX. */
bool differsInShortWord(std::string_view name, std::string_view other);

/** True if two names differ in the case of letters only. */
bool differsInCase(std::string_view one, std::string_view other);

}  // namespace mlk::tree
