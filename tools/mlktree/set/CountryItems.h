#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "regional/CountryTable.h"
#include "tools/mlktree/CountryBlocks.h"
#include "tools/mlktree/ProductLine.h"

namespace mlk::tree {

/** A line by which a country brings an item; views belong to the files. */
struct BroughtItem {
    std::string_view section;
    std::string_view key;
    std::string_view value; /**< paths as written */
    const FileLines* file = nullptr;
    const ReadLine* line = nullptr;
};

/** What a country brings. */
struct CountryBrings {
    std::string tvSystem;             /**< empty for none */
    const ReadLine* record = nullptr; /**< begins the country's record in the map; null for none */
    /**
     * In the order in which the service applies them: the record's TV feature file comes last,
     * because it counts more than an item of the TV system.
     */
    std::vector<BroughtItem> items;
};

/** The items that the countries of one TV system file bring. Immutable; any thread may ask. */
class CountryItems {
  public:
    /** @param files  must outlive the object */
    explicit CountryItems(const TvSystemFiles& files);

    /** What a country brings; nothing for kNoCountry. */
    CountryBrings of(_tv_country country) const;

  private:
    const TvSystemFiles& mFiles;
    std::map<std::string_view, std::vector<BroughtItem>> mOfSystem;
    std::vector<CountryBlock> mBlocks;
};

}  // namespace mlk::tree
