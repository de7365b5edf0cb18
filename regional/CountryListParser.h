#pragma once

#include <string>
#include <vector>

#include "regional/CountryTable.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Reads lists of countries and knows the countries' names.
 *
 * Each object has one table of names, to which a list's unknown names are added. A service has one
 * object for the process, see RegionalData. Called from RPC threads, any number at a time. Log tag:
 * "MlkProjectConfigs".
 */
class CountryListParser {
  public:
    CountryListParser() = default;
    /** That of the process. */
    static CountryListParser& GetInstance();
    virtual ~CountryListParser() = default;
    CountryListParser(const CountryListParser&) = delete;
    CountryListParser& operator=(const CountryListParser&) = delete;

    /**
     * Reads a country list: a name of kCountryNames a line, see readListFile. An unknown name, one
     * with a blank or a carriage return behind it among them, counts as 0, silently.
     *
     * @param path  the file, possibly in double quotes
     * @return the countries in file order, one a line, repetitions kept; empty when there is no
     *         such file or it cannot be read
     */
    std::vector<_tv_country> getCountryList(const std::string& path);

    /**
     * Name of a country. Country 0 has many once unknown names were read; the alphabetically first
     * is given.
     *
     * @param name  set to the name; untouched when the value has none
     * @return false when the value has no name
     */
    bool getCountryName(_tv_country country, std::string& name) const;

  private:
    friend struct RegionalPeer;  // tests

    NameTable mNames = countryNames();
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
