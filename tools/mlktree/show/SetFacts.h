#pragma once

#include <set>
#include <string>
#include <vector>

#include "tools/common/Facts.h"
#include "tools/mlktree/set/SetModel.h"

namespace mlk::tree {

/**
 * What a set is, fact by fact, with the names that `mlkctl show` has for them. Paths are as
 * written. The notes tell which layer has replaced the model's value: "board" or "country".
 */
std::vector<Fact> factsOf(const SetModel& set);

/** The index of the set's model; if it has no model, the one that impdata says. */
int32_t indexOf(const SetModel& set);

/**
 * Why a set has no model: "/tvconfigs/s.ini has none of index 9; --model names one". Empty if it
 * has one.
 */
std::string whyNoModel(const SetModel& set);

/** What a fact is found out from, for a program that knows what all sets answer. */
struct FactSource {
    /**
     * "item", "files" (items, by their versions), "featuresOn", "featuresOff", "switch" (of the
     * framework), or what is told of the set itself: "index", "languages", and so on.
     */
    std::string kind;
    std::vector<ConfigKey> items = {};      /**< of an item or of files */
    std::vector<std::string> versions = {}; /**< of files, one for each item */
    std::string method = {};                /**< of a switch */
};

/** The name of a fact and what it is found out from. */
struct FactRow {
    FactName name;
    FactSource source;
};

/** All facts, in the order of factsOf(). */
std::vector<FactRow> factRows();

/** The paths among the facts that do not exist in the tree. */
std::set<std::string> missingOf(const SetModel& set, const std::vector<Fact>& facts);

}  // namespace mlk::tree
