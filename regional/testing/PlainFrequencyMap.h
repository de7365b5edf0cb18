#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <map>
#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

/** A "country_freq_map.xml", its rules written down one after the other, for tests. */
class FrequencyMap {
  public:
    explicit FrequencyMap(const std::string& path);

    /** Name of the table that the file gives a country; empty without one. */
    std::string table(const std::string& country, FreqTableType type,
                      AtscCableType cableType) const;

  private:
    struct Block {
        std::string country;
        std::map<FreqTableType, std::string> antenna;
        std::map<FreqTableType, std::map<AtscCableType, std::string>> cable;
    };
    std::vector<Block> mBlocks;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain
