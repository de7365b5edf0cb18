#pragma once

#include <cstddef>
#include <string>

#include "host/testing/TempDir.h"

namespace mlk::bench {

/** The size of a product line whose partitions are checked. */
struct LineSize {
    size_t models = 500;
    size_t boards = 4;
    size_t countries = 60;
};

/**
 * Writes the partitions of a sound product line to the folder: the sample's files, with this many
 * models of some 400 lines, each a project file of its own, boards, and countries with plans.
 */
void writeTree(const testing::TempDir& dir, const LineSize& size);

}  // namespace mlk::bench
