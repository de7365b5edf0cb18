#pragma once

#include <string>
#include <vector>

#include "common/ItemStore.h"
#include "common/Partitions.h"
#include "common/Properties.h"
#include "regional/CountryTable.h"
#include "regional/RegionalData.h"

namespace tinyxml2 {
class XMLElement;
}

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** A TV system and the items that a set in one of its countries has. */
struct TvSysToConfigMap {
    std::string tvSysName;
    ItemStore configs;
};

/** What the country map says of one country. */
struct CoutryTvConfigMap {
    std::string countryName;
    std::string tvSysName;
    std::string tvConfigName;  // path as written, below "/tvconfigs"
};

/**
 * Turns the country that a set stands in into configuration items, and keeps that country.
 *
 * The TV system file names the country map and lists the items of each TV system:
 *
 *     <CountryTvSysMapXML>/tvconfigs/tvsysmap/countries.xml</CountryTvSysMapXML>
 *     <TvSystemConfigration>
 *         <TvSystem type="DVB_NORDIC">
 *             <Item category="[Teletext]" key="TTX_REGION" value="west"/>
 *         </TvSystem>
 *     </TvSystemConfigration>
 *
 * The country map has one element a country at its top:
 *
 *     <COUNTRY_TVCONFIG_MAP>
 *         <COUNTRY_NAME>SWEDEN</COUNTRY_NAME>
 *         <TV_SYSTEM>DVB_NORDIC</TV_SYSTEM>
 *         <TV_CONFIG>/tvconfigs/tv/tv_eu.config</TV_CONFIG>
 *     </COUNTRY_TVCONFIG_MAP>
 *
 * Of two items of one TV system with the same category and key the first counts, as of two TV
 * systems with the same name.
 *
 * Beware: a country takes the first record whose name contains its own. OMAN has to stand before
 * ROMANIA. The country of the first record is the one that a new set starts with.
 *
 * The chosen country is the line "COUNTRY_ID=<value>" of "tvsysmap/country_id.bin" in the tvdata
 * partition. That file is overwritten in place (see saveFile): a set that loses power has the old
 * country or the new one.
 *
 * Made for one call and dropped after it, so that changed files are seen: one thread at a time. All
 * holders of the process take turns at the saved country's file. Log tag: "MlkProjectConfigs"; the
 * line numbers in messages are fixed.
 */
class TvSysMapCfgHolder {
  public:
    /**
     * @param partitions  the set's mount points
     * @param properties  decide whether what is loaded is dumped; must outlive the holder
     * @param data        has the names of countries, to which unknown ones are added; must outlive
     *                    the holder
     */
    TvSysMapCfgHolder(Partitions partitions, const Properties& properties, RegionalData& data);
    virtual ~TvSysMapCfgHolder() = default;
    TvSysMapCfgHolder(const TvSysMapCfgHolder&) = delete;
    TvSysMapCfgHolder& operator=(const TvSysMapCfgHolder&) = delete;

    /**
     * The items of a country: those of its TV system, and its TV feature file as "TvConfig" of
     * "[LiveTV]", which wins over an item of the TV system for the same key. Loads what is not
     * loaded yet.
     *
     * @param xmlFile  the TV system file
     * @param country  the country; kNoCountry for the saved one. On a set that has none yet the
     *                 first country of the map is saved.
     * @return the items; empty when the TV system file cannot be loaded or no country is known
     */
    ItemStore getConfigs(const std::string& xmlFile, _tv_country country);

    /**
     * Loads the TV system file. A TV system without "type" and an item without "category", "key" or
     * "value" are skipped, and the log says where. Values that begin with "/tvconfigs" or "/tvdata"
     * name files of these partitions, see patchToTargetBoardPath.
     *
     * @return false, with nothing changed, when it cannot be loaded
     */
    bool loadConfigXmlFile(const std::string& xmlFile);

    /**
     * Loads the country map that the TV system file names. A record without a country name is
     * skipped; an unknown country counts as country 0.
     *
     * @return false, with nothing changed, when no map is named or it cannot be loaded
     */
    bool loadCountryTvConfigMapXML();

    /**
     * Reads the saved country; kNoCountry when the file has none. On a set without the file the
     * first country of the loaded map is taken, and saved.
     */
    void parseCountryId();

    /** Saves the country and brings it to storage. @return false for kNoCountry, or on failure */
    bool saveCountryId(_tv_country country);

    /** TV system of a country; empty when the map has no record for it. */
    std::string getTvSysName(_tv_country country) const;

    /** TV feature file of a country as the map has it; empty when the map has no record for it. */
    std::string getTvConfigName(_tv_country country) const;

    /** Path of that file; empty when there is none or it does not lie below "/tvconfigs". */
    std::string getTvConfigFilePath(_tv_country country) const;

    /** Name of a country; empty for a value without one. */
    std::string getCountryName(_tv_country country) const;

    /** The folder of "country_id.bin", no "/" at its end. */
    std::string getCountryBinFolderPath() const;

    /** The value with a leading "/tvconfigs" or "/tvdata" replaced by that partition's path. */
    std::string patchToTargetBoardPath(const std::string& value) const;

    /** True when something has that path; logged when not. */
    static bool isFileExist(const std::string& path);

    /**
     * Log what is loaded, when the property "persist.vendor.mlk.tvsysmap.debug" is a number of at
     * least 1.
     */
    void dumpConfigXmlFile() const;
    void dumpTvConfigMap() const;

    /** The country in use; kNoCountry while it is not known. */
    _tv_country currentCountry() const;

  private:
    bool dumpsAreOn() const;
    bool moveToTvconfigs(std::string& path) const;
    const CoutryTvConfigMap* recordOf(_tv_country country) const;
    void addTvSystem(const std::string& file, const tinyxml2::XMLElement& element);
    void addCountry(const tinyxml2::XMLElement& block);
    void readCountryId(const std::string& path);
    void writeFirstCountryId(const std::string& path);

    const Partitions mPartitions;
    const Properties& mProperties;
    RegionalData& mData;
    std::string mCountryTvConfigMapFile;  // as written in the TV system file
    std::vector<TvSysToConfigMap> mTvSysToConfigMap;
    std::vector<CoutryTvConfigMap> mCoutryTvConfigMap;
    std::vector<_tv_country> mCountryList;  // countries of mCoutryTvConfigMap, in its order
    _tv_country mCountryIdx = kNoCountry;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
