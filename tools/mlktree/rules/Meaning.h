#pragma once

#include <functional>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/** A project or board file that exists, with what the rules about its items ask of it. */
struct ItemFile {
    const FileLines* file = nullptr;
    bool isBoard = false;
    /** Items that count, have a "=" and a key, and stand in a section of which nothing is broken.
     */
    std::vector<const ReadLine*> items;
};

/** The project files that count for some model, and the board files; each once. */
const std::vector<ItemFile>& itemFilesOf(const ProductLine& line);

/** Sections of the project store that the service reads, each once. */
const std::vector<std::string_view>& knownSections();

/** Keys that the service reads in that section. */
std::vector<std::string_view> knownKeysIn(std::string_view section);

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

/** True if two names differ in the case of letters only. */
bool differsInCase(std::string_view one, std::string_view other);

/** A section and a key of it. */
using ItemName = std::pair<std::string_view, std::string_view>;

/** For tables of items. */
struct ItemNameHash {
    size_t operator()(const ItemName& name) const {
        const std::hash<std::string_view> hash;
        return hash(name.first) * 31 + hash(name.second);
    }
};

/** Names of the product line that are meant for names that the service looks for. */
struct Misspellings {
    /** From a section to the known one that is meant. */
    std::map<std::string_view, std::string_view> sections;
    /** From section and key to the known key that is meant. */
    std::map<ItemName, std::string_view> keys;
};

/**
 * Finds the misspelt names of all files. A name that mlktree.toml declares is right, and so is one
 * that stands in some file beside the known name, unless only the case differs.
 */
const Misspellings& misspellingsOf(const ProductLine& line);

}  // namespace mlk::tree
