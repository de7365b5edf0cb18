#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

/* A second, plain implementation of the regional formats, for tests. */
namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

/** Returns the entries of a list file with that text. */
std::vector<std::string> listEntries(const std::string& text);

/** A table of names; looking up an unknown name adds it with the value 0. */
using Names = std::map<std::string, int32_t>;

/** Returns all known countries. */
Names countries();

/** Returns the first name of a value; empty if it has none. */
std::string firstNameOf(const Names& names, int32_t value);

/** Returns all known modulations. */
Names modulations();

/** Returns the channels of a channel plan with that text; adds unknown modulations. */
std::vector<HidlFreqListItem> channels(const std::string& text, Names& modulations);

/** Maps category and key to the value. */
using Items = std::map<std::pair<std::string, std::string>, std::string>;

/** Returns the country in a "country_id.bin" with that text, or -1. */
int32_t countryIdOf(const std::string& text);

/** A TV system file and its country map. */
struct TvSystems {
    /** Path of the TV system file, and the mount points of the partitions. */
    std::string systemFile;
    std::string tvconfigs;
    std::string tvdata;

    /** Returns the items of a country other than kNoCountry; adds the map's unknown countries. */
    Items itemsOf(int32_t country, Names& countries) const;
    /** Returns the value of the map's first country, or -1. */
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
