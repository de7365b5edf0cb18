#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "common/Partitions.h"
#include "regional/CountryTable.h"

namespace tinyxml2 {
class XMLElement;
}

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

class CountryListParser;

/** What the map file says of one country: names of its frequency tables, empty for none. */
struct CountryFreqMapEntry {
    using CableTables = std::map<AtscCableType, std::string>;

    std::string countryName;
    std::string dtvAntenna;
    CableTables dtvCable;
    std::string atvAntenna;
    CableTables atvCable;
};

/**
 * Tells the name of a country's frequency table, from "country_freq_map.xml" in the folder of the
 * frequency tables; and which folder that is.
 *
 * The file has one element a country at its top:
 *
 *     <COUNTRY_FREQ_MAP>
 *         <COUNTRY_NAME>USA</COUNTRY_NAME>
 *         <DTV_ANTENA>freqtable_atsc_air</DTV_ANTENA>
 *         <DTV_CABLE TYPE="HRC">freqtable_atsc_cable_hrc</DTV_CABLE>
 *         <ATV_ANTENA>freqtable_ntsc_m</ATV_ANTENA>
 *     </COUNTRY_FREQ_MAP>
 *
 * "ANTENA" is how the format spells it. TYPE is AUTO, STD, HRC or IRC; without it a cable table
 * counts as AUTO. Blanks inside an element belong to its text. The file is all there is: a table of
 * countries built into the code, which would answer for a missing file, does not exist, because no
 * television is sold without its own map and a default would only hide that it is missing.
 *
 * A service has one object for the process, see RegionalData. Called from RPC threads; each
 * operation takes mMutex for its whole run, so that loading, looking up and changing the folder are
 * one step. Log tag: "MlkProjectConfigs".
 */
class CountryFreqMapParse {
  public:
    /**
     * @param partitions  gives the mount points; asked each time the default folder is needed
     * @param countries   knows the countries' names; must outlive the object
     */
    CountryFreqMapParse(std::function<Partitions()> partitions, const CountryListParser& countries);
    /** That of the process. */
    static CountryFreqMapParse& GetInstance();
    virtual ~CountryFreqMapParse() = default;
    CountryFreqMapParse(const CountryFreqMapParse&) = delete;
    CountryFreqMapParse& operator=(const CountryFreqMapParse&) = delete;

    /**
     * Folder of the frequency tables: what the last lookup with a folder gave, else "freqtables" of
     * the tvconfigs partition.
     */
    std::string GetTvConfigPath();

    /**
     * Name of a country's frequency table.
     *
     * The file is read at the first lookup, and again at every lookup until it yields an entry;
     * then never again, even when the folder changes.
     *
     * @param path       folder of the frequency tables from now on, for all callers; empty leaves
     *                   it as it is
     * @param country    a country; one without a name has no tables
     * @param type       kind of table
     * @param cableType  cable plan, for the cable kinds; there is no fall-back from one to another
     * @param name       set to the name, which is empty when the country has an entry without an
     *                   antenna table; untouched when the result is false
     * @return true when there is an entry for what is asked; also when a file without any entry was
     *         loaded
     */
    bool GetFreqTableNameByCountry(const std::string& path, _tv_country country, FreqTableType type,
                                   AtscCableType cableType, std::string& name);

    /** The same by the country's name, with the folder as it is. */
    bool GetFreqTableNameByCountryName(const std::string& countryName, FreqTableType type,
                                       AtscCableType cableType, std::string& name);

    /**
     * Reads the map file anew. A country block without a name is skipped, a cable table of an
     * unknown type or without text as well.
     *
     * @return false, and no entries, when the file cannot be loaded
     */
    bool loadCountryFreqMapXML();

  private:
    friend struct RegionalPeer;  // tests

    // These run with mMutex held.
    const std::string& tvConfigPathLocked();
    bool lookUpLocked(const std::string& countryName, FreqTableType type, AtscCableType cableType,
                      std::string& name);
    bool loadLocked();
    void addBlockLocked(const tinyxml2::XMLElement& block);

    const std::function<Partitions()> mPartitions;
    const CountryListParser& mCountries;
    std::mutex mMutex;
    std::vector<CountryFreqMapEntry> mCoutryFreqMap;  // in file order
    std::string mTvConfigPath;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
