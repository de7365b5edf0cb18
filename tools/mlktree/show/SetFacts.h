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

/** The paths among the facts that do not exist in the tree. */
std::set<std::string> missingOf(const SetModel& set, const std::vector<Fact>& facts);

}  // namespace mlk::tree
