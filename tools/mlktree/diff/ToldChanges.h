#pragma once

#include <string>
#include <vector>

#include "tools/mlktree/diff/Change.h"

namespace mlk::tree {

/** A difference as people read it. */
struct ToldChange {
    const Change* change = nullptr; /**< of the Difference, which must outlive the object */
    /**
     * What the same lines change with other receivers: "the same with ARC",
     * "85 -> 95 with AVR_0EC0DE_Orlan900.ini". Safe for a terminal.
     */
    std::vector<std::string> also;
};

/**
 * The changes of a difference in their order, with a sound delay once for all receivers with which
 * the same lines make it longer or shorter by the same time, in the same sets.
 */
std::vector<ToldChange> toldChanges(const Difference& difference);

}  // namespace mlk::tree
