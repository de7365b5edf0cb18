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
 * What readers of one set's regional files keep from one call to the next: unknown names and the
 * frequency map.
 *
 * A service has one object for the process (GetInstance). A program that inspects several sets
 * makes one for each. All members are thread-safe.
 */
class RegionalData {
  public:
    /** @param partitions  returns the set's mount points; called when a default folder is needed */
    explicit RegionalData(std::function<Partitions()> partitions)
        : plans(std::move(partitions), countries) {}
    RegionalData(const RegionalData&) = delete;
    RegionalData& operator=(const RegionalData&) = delete;

    /** Returns the object of the process, which uses systemPartitions(). */
    static RegionalData& GetInstance();

    /** Reads country lists and has the names of countries. */
    CountryListParser countries;
    /** Countries of TV system maps. */
    NameTable tvSystemCountries = countryNames();
    /** Modulations of frequency tables. */
    NameTable modulations = FreqTableParser::knownModulations();
    /** Finds the frequency table of a country. */
    CountryFreqMapParse plans;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
