#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "common/Partitions.h"
#include "common/ReadObserver.h"
#include "regional/CountryTable.h"

namespace tinyxml2 {
class XMLElement;
}

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

class CountryListParser;
class XmlFile;

/** The record of one country in the map file: names of its channel plans, empty if missing. */
struct CountryFreqMapEntry {
    using CableTables = std::map<AtscCableType, std::string>;

    std::string countryName;
    std::string dtvAntenna;
    CableTables dtvCable;
    std::string atvAntenna;
    CableTables atvCable;
};

/**
 * Looks up the name of a country's channel plan in "country_freq_map.xml", and keeps the folder of
 * that file and of the plans.
 *
 * The file has one top-level element for each country:
 *
 *     <COUNTRY_FREQ_MAP>
 *         <COUNTRY_NAME>USA</COUNTRY_NAME>
 *         <DTV_ANTENA>freqtable_atsc_air</DTV_ANTENA>
 *         <DTV_CABLE TYPE="HRC">freqtable_atsc_cable_hrc</DTV_CABLE>
 *         <ATV_ANTENA>freqtable_ntsc_m</ATV_ANTENA>
 *     </COUNTRY_FREQ_MAP>
 *
 * The format spells "ANTENA" like this. TYPE is AUTO, STD, HRC or IRC; without it a cable plan
 * counts as AUTO. Blanks inside an element belong to its text. There is no built-in plan for a
 * missing file: every television has its own map, and a default would hide that it is missing.
 *
 * A service has one object for the process, see RegionalData. Thread-safe: each operation holds
 * mMutex from start to end, so that loading, looking up and changing the folder are one step. Log
 * tag: "MlkProjectConfigs".
 */
class CountryFreqMapParse {
  public:
    /**
     * @param partitions  returns the mount points; called whenever the default folder is needed
     * @param countries   has the names of the countries; must outlive the object
     */
    CountryFreqMapParse(std::function<Partitions()> partitions, const CountryListParser& countries,
                        ReadObserver* observer = nullptr)
        : mPartitions(std::move(partitions)), mCountries(countries), mObserver(observer) {}
    /** Returns the object of the process. */
    static CountryFreqMapParse& GetInstance();
    virtual ~CountryFreqMapParse() = default;
    CountryFreqMapParse(const CountryFreqMapParse&) = delete;
    CountryFreqMapParse& operator=(const CountryFreqMapParse&) = delete;

    /**
     * Returns the folder of the channel plans: the folder of the last lookup that gave one, else
     * "freqtables" of the tvconfigs partition.
     */
    std::string GetTvConfigPath();

    /**
     * Finds the name of a country's channel plan.
     *
     * Lookups read the file until it has given at least one entry, and never again after that, even
     * if the folder changes.
     *
     * @param path       folder of the channel plans, for this lookup and all later ones of any
     *                   caller that names none; empty for the folder that GetTvConfigPath() returns
     * @param country    a country; one without a name has no plans
     * @param type       kind of plan
     * @param cableType  cable plan, for the cable kinds; one plan does not stand in for another
     * @param name       set to the name, which is empty if the country's entry has no antenna
     *                   plan; untouched if the result is false
     * @param folder     set to the folder of this lookup, which another caller may change at once;
     *                   null if it is not wanted
     * @return true if there is such an entry; also if this call loaded a file without any entry
     */
    bool GetFreqTableNameByCountry(const std::string& path, _tv_country country, FreqTableType type,
                                   AtscCableType cableType, std::string& name,
                                   std::string* folder = nullptr);

    /**
     * As above, by the country's name and with the folder in use. Until GetTvConfigPath() or a
     * lookup by country has set a folder, no file is found.
     */
    bool GetFreqTableNameByCountryName(const std::string& countryName, FreqTableType type,
                                       AtscCableType cableType, std::string& name);

    /**
     * Reads the map file again. Skips country blocks without a name, and cable plans with an
     * unknown type or without text.
     *
     * @return false, with no entries left, if the file cannot be loaded
     */
    bool loadCountryFreqMapXML();

  private:
    friend struct RegionalPeer;  // tests

    // These run with mMutex held.
    const std::string& tvConfigPathLocked();
    bool lookUpLocked(const std::string& countryName, FreqTableType type, AtscCableType cableType,
                      std::string& name);
    bool loadLocked();
    static void addBlock(const XmlFile& file, const tinyxml2::XMLElement& block,
                         std::vector<CountryFreqMapEntry>& entries);

    const std::function<Partitions()> mPartitions;
    const CountryListParser& mCountries;
    ReadObserver* const mObserver;
    std::mutex mMutex;
    std::vector<CountryFreqMapEntry> mCoutryFreqMap;  // in file order
    std::string mTvConfigPath;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
