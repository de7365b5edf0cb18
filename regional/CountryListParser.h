#pragma once

#include <string>
#include <vector>

#include "common/ReadObserver.h"
#include "regional/CountryTable.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Reads lists of countries and has the countries' names.
 *
 * Each object has its own table of names, to which it adds the unknown names of lists. A service
 * has one object for the process, see RegionalData. Thread-safe. Log tag: "MlkProjectConfigs".
 */
class CountryListParser {
  public:
    /** @param observer  hears of every line of a list; must outlive the object; null for none */
    explicit CountryListParser(ReadObserver* observer = nullptr) : mObserver(observer) {}
    /** Returns the object of the process. */
    static CountryListParser& GetInstance();
    virtual ~CountryListParser() = default;
    CountryListParser(const CountryListParser&) = delete;
    CountryListParser& operator=(const CountryListParser&) = delete;

    /**
     * Reads a country list: one name of kCountryNames per line, see readListFile. An unknown name
     * counts as 0 without a message; a name followed by a blank or a carriage return is unknown.
     *
     * @param path  the file, possibly in double quotes
     * @return one country per line in file order, including repetitions; empty if the file is
     *         missing or cannot be read
     */
    std::vector<_tv_country> getCountryList(const std::string& path);

    /**
     * Gives the name of a country. Unknown names that were read belong to country 0, which then has
     * several; the alphabetically first one is given.
     *
     * @param name  set to the name; untouched if the country has none
     * @return false if the country has no name
     */
    bool getCountryName(_tv_country country, std::string& name) const;

  private:
    friend struct RegionalPeer;  // tests

    ReadObserver* const mObserver;
    NameTable mNames = countryNames();
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
