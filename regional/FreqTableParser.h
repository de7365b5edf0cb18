#pragma once

#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "regional/CountryTable.h"
#include "regional/NameTable.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

class RegionalData;

/**
 * Reads channel plans: the channels that a scan visits in a country.
 *
 * A channel plan is a text file in "dtv" or "atv" of the folder of the channel plans. A line has
 * columns separated by blanks or commas: channel, bandwidth in Hz (0 means 6000000), frequency
 * in kHz, and optionally a label (4 characters), a modulation or both:
 *
 *     // German channel 21
 *     21, 8000000, 474000, E21, DVB_AUTO
 *
 * A line that begins with "//" is a comment. Beware: a line is read in pieces of 49 characters,
 * including its line feed, and each piece counts as a line; keep comments short. A line without a
 * frequency is skipped.
 *
 * Made for one call and without state; the country map and the table of modulations, which all
 * calls share, are thread-safe. Log tag: "MlkProjectConfigs".
 */
class FreqTableParser {
  public:
    /** @param data  has the country map, and the modulations, to which unknown ones are added */
    explicit FreqTableParser(RegionalData& data) : mData(data) {}

    /** Makes a table of the known modulations. */
    static NameTable knownModulations();

    /**
     * Finds and reads a country's plan.
     *
     * @param directory  folder of the channel plans; empty for the one in use
     * @param country    a country
     * @param type       kind of plan
     * @param cableType  cable plan, for the cable kinds
     * @param items      set to the channels in file order; untouched if the result is false
     * @return false if the country has no such plan or its file cannot be read
     */
    bool GetTableList(const std::string& directory, _tv_country country, FreqTableType type,
                      AtscCableType cableType, std::vector<HidlFreqListItem>& items);

    /**
     * Builds the path of a plan from the folder in use, the subfolder of the kind, and the name.
     *
     * @param path  set to the path; untouched if the name is empty
     * @return true if the path exists
     */
    bool GetFreqTablePath(FreqTableType type, const std::string& name, std::string& path);

    /**
     * Reads a plan. An unknown modulation counts as 0, "UNKNOW".
     *
     * @param items  set to the channels in file order; untouched if the result is false
     * @return false if the path is empty or the file cannot be read
     */
    bool ParseFreqTable(const std::string& path, std::vector<HidlFreqListItem>& items);

  private:
    HidlFreqListItem parsePiece(std::string_view piece);

    RegionalData& mData;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
