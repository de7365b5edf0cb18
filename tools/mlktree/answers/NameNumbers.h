#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "common/HashIndex.h"
#include "tools/mlktree/answers/LineAnswers.h"

namespace mlk::tree {

/**
 * Numbers the names of items. While names are added, they have preliminary numbers; sort() then
 * gives them numbers in the order of sections and keys. One thread at a time.
 */
class NameNumbers {
  public:
    /** The preliminary number of a name. The texts must outlive the object. */
    uint32_t of(std::string_view section, std::string_view key);

    /** Ends the adding. @return the names in their order */
    std::vector<AnswerName> sort();

    /** The number of a name by its preliminary one; after sort(). */
    uint32_t sorted(uint32_t preliminary) const { return mSorted[preliminary]; }

  private:
    std::vector<AnswerName> mNames;
    std::vector<uint32_t> mSorted;
    vendor::morlak::mlkconfigs::V1_0::implementation::HashIndex mIndex;
};

/**
 * Gives the names of a line their numbers, and brings its pieces into the order of these. Until
 * then, the items and delays of the line have preliminary numbers. Of several items with one name
 * in a piece, the last one counts.
 */
void sortNames(NameNumbers& names, LineAnswers& line);

}  // namespace mlk::tree
