#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <map>
#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation::plain {

/** A second, plain implementation of "country_freq_map.xml", for tests. */
class FrequencyMap {
  public:
    /** Reads the file; one that cannot be loaded has no tables. */
    explicit FrequencyMap(const std::string& path);

    /** Returns the name of a country's channel plan; empty if it has none. */
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
