#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

/** The regional formats, their rules written down one after the other, for tests. */
namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

/** Entries of a list file of that text. */
std::vector<std::string> listEntries(const std::string& text);

/** A table of names to which looking up an unknown name adds it, with the value 0. */
using Names = std::map<std::string, int32_t>;

Names countries();

/** The name of a value that comes first; empty when there is none. */
std::string firstNameOf(const Names& names, int32_t value);

Names modulations();

/** Channels of a frequency table of that text. Adds unknown modulations to the table. */
std::vector<HidlFreqListItem> channels(const std::string& text, Names& modulations);

/** Category and key, then value. */
using Items = std::map<std::pair<std::string, std::string>, std::string>;

/** The country that a "country_id.bin" of that text holds; -1 without one. */
int32_t countryIdOf(const std::string& text);

/** A TV system file and a country map as they are on disk. */
struct TvSystems {
    /** Names of XML files, and the mount points that stand in for "/tvconfigs" and "/tvdata". */
    std::string systemFile;
    std::string tvconfigs;
    std::string tvdata;

    /** What a country that is not the default one has. Adds the map's unknown countries. */
    Items itemsOf(int32_t country, Names& countries) const;
    /** Value of the country that comes first in the map; -1 without one. */
    int32_t firstCountry(Names& countries) const;

  private:
    struct Record {
        std::string country;
        std::string system;
        std::string config;
    };
    std::string mapFile() const;
    std::vector<Record> records(Names& countries) const;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain
