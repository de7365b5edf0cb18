#pragma once

#include <functional>
#include <utility>

#include "common/Partitions.h"
#include "common/ReadObserver.h"
#include "regional/CountryFreqMapParse.h"
#include "regional/CountryListParser.h"
#include "regional/CountryTable.h"
#include "regional/FreqTableParser.h"
#include "regional/NameTable.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * What readers of one set's regional files keep from one call to the next: unknown names and the
 * map of channel plans.
 *
 * A service has one object for the process (GetInstance). A program that inspects several sets
 * makes one for each. All members are thread-safe.
 */
class RegionalData {
  public:
    /**
     * @param partitions    returns the set's mount points; called when a default folder is needed
     * @param lineObserver  hears of every line of the regional files; must outlive the object; null
     *                      for none
     */
    explicit RegionalData(std::function<Partitions()> partitions,
                          ReadObserver* lineObserver = nullptr)
        : observer(lineObserver), plans(std::move(partitions), countries, lineObserver) {}
    RegionalData(const RegionalData&) = delete;
    RegionalData& operator=(const RegionalData&) = delete;

    /** Returns the object of the process, which uses systemPartitions(). */
    static RegionalData& GetInstance();

    /** Hears of every line of the regional files; null for none. */
    ReadObserver* const observer;
    /** Reads country lists and has the names of countries. */
    CountryListParser countries{observer};
    /** Countries of TV system maps. */
    NameTable tvSystemCountries = countryNames();
    /** Modulations of channel plans. */
    NameTable modulations = FreqTableParser::knownModulations();
    /** Finds the channel plan of a country. */
    CountryFreqMapParse plans;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
