#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <string>
#include <vector>

#include "common/Partitions.h"
#include "common/Properties.h"
#include "projectconfigs/ProjectParser.h"
#include "regional/CountryTable.h"
#include "regional/RegionalData.h"
#include "regional/TvSysMapCfgHolder.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Countries, languages, channel plans and TV systems of a set. The project's items name the files.
 * Each call reads them again, except the map of channel plans.
 *
 * A list is empty if its file is not named or cannot be read. Any number of threads may call; the
 * caller serialises apply() and save(). Log tag: "MlkProjectConfigs".
 */
class Region {
  public:
    /** The partitions are copied; the other arguments must outlive the object. */
    Region(ProjectParser& items, const Partitions& partitions, const Properties& properties,
           RegionalData& data)
        : mItems(items), mPartitions(partitions), mProperties(properties), mData(data) {}

    /** The countries that the set offers. */
    std::vector<_tv_country> countries() const;
    /** The countries that the live-TV launcher starts in. */
    std::vector<_tv_country> cltvCountries() const;
    std::vector<std::string> languages() const;

    /** The channels of a country's plan; empty if the country has no such plan. */
    std::vector<HidlFreqListItem> plan(_tv_country country, FreqTableType type,
                                       AtscCableType cableType) const;

    /** True if the project names a TV system file. */
    bool hasTvSystems() const;

    /**
     * Puts a country's items into the project's items, all at once. Does not add an item that the
     * project does not have. If memory runs out, all items stay as they were.
     *
     * @param country  kNoCountry for the saved country
     */
    void apply(_tv_country country);

    /** Saves the country for the next start. @return false for kNoCountry, or on failure */
    bool save(_tv_country country);

  private:
    TvSysMapCfgHolder holder() const;

    ProjectParser& mItems;
    const Partitions mPartitions;
    const Properties& mProperties;
    RegionalData& mData;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
