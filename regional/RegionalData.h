#pragma once

#include <functional>
#include <utility>

#include "common/Partitions.h"
#include "regional/CountryFreqMapParse.h"
#include "regional/CountryListParser.h"
#include "regional/CountryTable.h"
#include "regional/FreqTableParser.h"
#include "regional/NameTable.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * What the regional files of one set share from one reading to the next: the names that they
 * brought along, and the frequency map.
 *
 * A service has one for the process (GetInstance). A program that looks at several sets makes one
 * for each. Each part guards itself; calls may come from any number of threads.
 */
class RegionalData {
  public:
    /** @param partitions  gives the set's mount points whenever a default folder is needed */
    explicit RegionalData(std::function<Partitions()> partitions)
        : plans(std::move(partitions), countries) {}
    RegionalData(const RegionalData&) = delete;
    RegionalData& operator=(const RegionalData&) = delete;

    /** That of the process, on the partitions of the process. */
    static RegionalData& GetInstance();

    CountryListParser countries;                   ///< country lists, and names of countries
    NameTable tvSystemCountries = countryNames();  ///< countries of the TV system maps
    NameTable modulations = FreqTableParser::knownModulations();  ///< modulations of channel plans
    CountryFreqMapParse plans;  ///< which channel plan a country has
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
