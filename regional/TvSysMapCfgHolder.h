#pragma once

#include <optional>
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

class XmlFile;

/** A TV system and the configuration items of sets in its countries. */
struct TvSysToConfigMap {
    std::string tvSysName;
    ItemStore configs;
};

/** The record of one country in the country map. */
struct CoutryTvConfigMap {
    std::string countryName;
    std::string tvSysName;
    std::string tvConfigName;  // path as written, below "/tvconfigs"
};

/**
 * Derives configuration items from the country of a set, and saves that country.
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
 * The country map has one top-level element for each country:
 *
 *     <COUNTRY_TVCONFIG_MAP>
 *         <COUNTRY_NAME>SWEDEN</COUNTRY_NAME>
 *         <TV_SYSTEM>DVB_NORDIC</TV_SYSTEM>
 *         <TV_CONFIG>/tvconfigs/tv/tv_eu.config</TV_CONFIG>
 *     </COUNTRY_TVCONFIG_MAP>
 *
 * If items have the same category and key, the first counts, within a TV system and across TV
 * systems of the same name.
 *
 * Beware: a country has the first record whose name contains its own name, so that OMAN must
 * precede ROMANIA. A new set starts with the country of the first record.
 *
 * The chosen country is saved as the line "COUNTRY_ID=<value>" of "tvsysmap/country_id.bin" in the
 * tvdata partition. That file is overwritten in place (see saveFile): a set that loses power has
 * either the old or the new country.
 *
 * Made for one call, so that the next call sees changed files; one thread at a time. A lock of the
 * process guards the file of the saved country. Log tag: "MlkProjectConfigs"; LogLines.h has the
 * line numbers of messages.
 */
class TvSysMapCfgHolder {
  public:
    /**
     * @param partitions  the set's mount points
     * @param properties  decide whether loaded data is logged; must outlive the holder
     * @param data        has the names of countries, to which unknown ones are added, and the
     *                    observer; must outlive the holder
     */
    TvSysMapCfgHolder(Partitions partitions, const Properties& properties, RegionalData& data);
    virtual ~TvSysMapCfgHolder() = default;
    TvSysMapCfgHolder(const TvSysMapCfgHolder&) = delete;
    TvSysMapCfgHolder& operator=(const TvSysMapCfgHolder&) = delete;

    /**
     * Returns the items of a country: those of its TV system, and its TV feature file as "TvConfig"
     * of "[LiveTV]", which takes precedence over the TV system's item. Loads the files if
     * necessary.
     *
     * @param xmlFile  the TV system file
     * @param country  the country; kNoCountry for the saved one. If no country is saved yet, saves
     *                 the first country of the map.
     * @return the items; empty if the TV system file cannot be loaded or there is no country
     */
    ItemStore getConfigs(const std::string& xmlFile, _tv_country country);

    /**
     * Loads the TV system file. Skips TV systems without "type" and items without "category", "key"
     * or "value", and logs where they are. Moves paths to the partitions, see
     * patchToTargetBoardPath.
     *
     * @return false, with nothing changed, if the file cannot be loaded
     */
    bool loadConfigXmlFile(const std::string& xmlFile);

    /**
     * Loads the country map that the TV system file names. Skips records without a country name; an
     * unknown country counts as country 0.
     *
     * @return false, with nothing changed, if no map is named or it cannot be loaded
     */
    bool loadCountryTvConfigMapXML();

    /**
     * Reads the saved country; kNoCountry if the file has none. If the file is missing, takes and
     * saves the first country of the loaded map.
     */
    void parseCountryId();

    /**
     * Reads the saved country as parseCountryId does, but writes nothing.
     *
     * @return the country, kNoCountry if the file has none; nullopt if there is no file
     */
    std::optional<_tv_country> savedCountry() const;

    /** Returns the country of the first record of the loaded map; kNoCountry without a map. */
    _tv_country firstCountry() const;

    /** Saves the country and brings it to storage. @return false for kNoCountry and on failure */
    bool saveCountryId(_tv_country country);

    /** Returns the TV system of a country; empty if the map has no record of it. */
    std::string getTvSysName(_tv_country country) const;

    /** Returns the TV feature file of a country as in the map; empty without a record. */
    std::string getTvConfigName(_tv_country country) const;

    /** Returns the path of that file; empty if it is missing or not below "/tvconfigs". */
    std::string getTvConfigFilePath(_tv_country country) const;

    /** Returns the name of a country; empty if it has none. */
    std::string getCountryName(_tv_country country) const;

    /** Returns the folder of "country_id.bin", without a "/" at the end. */
    std::string getCountryBinFolderPath() const;

    /** Replaces a leading "/tvconfigs" or "/tvdata" by the path of that partition. */
    std::string patchToTargetBoardPath(const std::string& value) const;

    /** True if the path exists; logs if it does not. */
    static bool isFileExist(const std::string& path);

    /**
     * Log the loaded data if the property "persist.vendor.mlk.tvsysmap.debug" is a number of at
     * least 1.
     */
    void dumpConfigXmlFile() const;
    void dumpTvConfigMap() const;

    /** Returns the country in use; kNoCountry until there is one. */
    _tv_country currentCountry() const;

  private:
    bool dumpsAreOn() const;
    bool moveToTvconfigs(std::string& path) const;
    const CoutryTvConfigMap* recordOf(_tv_country country) const;
    void addTvSystem(const XmlFile& file, const tinyxml2::XMLElement& element, ItemStore& told);
    void addCountry(const XmlFile& file, const tinyxml2::XMLElement& block);
    _tv_country readCountryId(const std::string& path) const;
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
