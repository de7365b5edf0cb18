#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "tools/mlktree/FileLines.h"

namespace mlk::tree {

/** A country's record in a country map, or its block in a map of channel plans. */
struct CountryBlock {
    const ReadLine* begin = nullptr;
    std::vector<const ReadLine*> elements; /**< with those that are ignored */

    std::string_view country() const { return begin->owner; }
    /** The element that counts of that name, or null. */
    const ReadLine* find(std::string_view element) const;
};

/** All blocks of a map, in their order. */
std::vector<CountryBlock> blocksOf(const FileLines& map);

/** How many elements at the top of a map are ignored: each may have been meant for a country. */
size_t countIgnoredBlocks(const FileLines& map);

}  // namespace mlk::tree
