#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <memory>
#include <string>
#include <vector>

#include "tools/mlktree/RegionalFiles.h"
#include "tools/mlktree/set/SetModel.h"

namespace mlk::tree {

/** A channel plan of a country. */
struct CountryPlan {
    std::string kind;  /**< "DTV_ANTENNA" */
    std::string cable; /**< "HRC"; empty for an antenna */
    std::string file;  /**< relative to the tree */
    FreqTableType type = FreqTableType::DTV_ANTENNA;
    AtscCableType cableType = AtscCableType::AUTO;
    const FileLines* map = nullptr;         /**< the map of plans */
    const ReadLine* line = nullptr;         /**< its element that names the plan; null if unknown */
    std::vector<HidlFreqListItem> channels; /**< as the service answers them */
};

/** "DTV_CABLE HRC". */
std::string nameOf(const CountryPlan& plan);

/** A folder of channel plans, and its map. */
struct PlanPlace {
    const PlanFolder* folder = nullptr;
    const FileLines* map = nullptr;
};

/** The folder of channel plans of a set, relative to the tree. */
std::string planFolderOf(const SetModel& set);

/** The plans of a country that the map of a folder names, in the order of their kinds; without
 * their channels. */
std::vector<CountryPlan> plansOf(const PlanPlace& place, _tv_country country);

/** The plans of a country in a set: those that the map names, in the order of their kinds. */
std::vector<CountryPlan> plansOf(const SetModel& set, _tv_country country);

/** A line of a list that names a country; null if the list has none, or the set no list. */
struct Listed {
    const FileLines* list = nullptr;
    const ReadLine* line = nullptr;
};

/** Whether the list that an item names has a country: "[COUNTRY]" "COUNTRY_PATH", and so on. */
Listed listedIn(const SetModel& set, const ConfigKey& item, _tv_country country);

/** The name of a country; empty if it has none. */
std::string countryName(_tv_country country);

}  // namespace mlk::tree
