#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "regional/CountryTable.h"
#include "regional/RegionalData.h"
#include "regional/TvSysMapCfgHolder.h"
#include "tools/mlktree/FileLines.h"
#include "tools/mlktree/Tree.h"
#include "tools/mlktree/TreeProperties.h"

namespace mlk::tree {

using vendor::morlak::mlkconfigs::V1_0::AtscCableType;
using vendor::morlak::mlkconfigs::V1_0::FreqTableType;
using vendor::morlak::mlkconfigs::V1_0::implementation::_tv_country;

/**
 * A TV system file with the country map that it names, as the service reads and asks them. Read in
 * the constructor; any thread may ask.
 */
class TvSystems {
  public:
    /** @param path  of the TV system file, relative to the tree */
    TvSystems(const Tree& tree, const TreeProperties& properties, const std::string& path);

    /** The two files; the map's is null if no map of tvconfigs is named. The caller takes them
     * once. */
    std::unique_ptr<FileLines> takeFile() { return std::move(mFile); }
    std::unique_ptr<FileLines> takeMap() { return std::move(mMap); }

    /** The TV system that a country gets; empty for none. */
    std::string systemOf(_tv_country country) const { return mHolder.getTvSysName(country); }

    /** The TV feature file that a country gets, as a path of this machine; empty for none. */
    std::string featuresOf(_tv_country country) const {
        return mHolder.getTvConfigFilePath(country);
    }

    /** The name by which records are looked for; empty for a country without one. */
    std::string nameOf(_tv_country country) const { return mHolder.getCountryName(country); }

    /** The country of a new set; kNoCountry without a map. */
    _tv_country firstCountry() const { return mHolder.firstCountry(); }

  private:
    std::unique_ptr<FileLines> mFile;
    std::unique_ptr<FileLines> mMap;
    std::unique_ptr<ReadObserver> mObserver;
    vendor::morlak::mlkconfigs::V1_0::implementation::RegionalData mData;
    vendor::morlak::mlkconfigs::V1_0::implementation::TvSysMapCfgHolder mHolder;
};

/**
 * The folder of channel plans of a set with that value of the item, relative to the tree and
 * without "/" at its end; without a value, the folder that the service uses then.
 */
std::string planFolderOf(const Tree& tree, std::string_view value);

/** A folder of channel plans with its map, as the service reads and asks it. Thread-safe. */
class PlanFolder {
  public:
    /** @param path  of the folder, relative to the tree */
    PlanFolder(const Tree& tree, std::string path);

    const std::string& path() const { return mPath; }

    /** The map file. The caller takes it once. */
    std::unique_ptr<FileLines> takeMap() { return std::move(mMap); }

    /** The plan of a country, relative to the tree; empty if it has none of that kind. */
    std::string planOf(_tv_country country, FreqTableType type, AtscCableType cable) const;

  private:
    const std::string mPath;
    std::unique_ptr<FileLines> mMap;
    bool mHasCountries = false;  // an empty map would be read anew with every question
    std::unique_ptr<vendor::morlak::mlkconfigs::V1_0::implementation::RegionalData> mData;
};

}  // namespace mlk::tree
