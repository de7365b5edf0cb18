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
 * Reads the list of channels that a scan goes through in a country.
 *
 * A frequency table is a text file below the folder of the frequency tables, in "dtv" or "atv". A
 * line has the columns channel, bandwidth in Hz (0: 6000000), frequency in kHz, and up to two of
 * label (4 characters) and modulation, parted by blanks or commas:
 *
 *     // German channel 21
 *     21, 8000000, 474000, E21, DVB_AUTO
 *
 * A line beginning with "//" is a remark. Beware: a line is read in pieces of 49 characters, its
 * line feed among them, and each piece counts as a line of its own; keep remarks short. A line that
 * gives no frequency is skipped.
 *
 * Without state of its own, made for one call; what all calls share (the country map and the table
 * of modulations) guards itself. Called from RPC threads. Log tag: "MlkProjectConfigs".
 */
class FreqTableParser {
  public:
    /** A parser that uses, and adds to, what the set's regional files share. */
    explicit FreqTableParser(RegionalData& data) : mData(data) {}

    /** The modulations that this software knows, as a table of their own. */
    static NameTable knownModulations();

    /**
     * Finds and reads a country's table.
     *
     * @param directory  folder of the frequency tables; empty for the one in use
     * @param country    a country
     * @param type       kind of table
     * @param cableType  cable plan, for the cable kinds
     * @param items      set to the channels, in file order; untouched when there is no table
     * @return false when the country has no such table or its file cannot be read
     */
    bool GetTableList(const std::string& directory, _tv_country country, FreqTableType type,
                      AtscCableType cableType, std::vector<HidlFreqListItem>& items);

    /**
     * Builds the path of a table: folder, sub-folder of the kind, name as it stands.
     *
     * @param path  set to the path; untouched when the name is empty
     * @return true when something exists there
     */
    bool GetFreqTablePath(FreqTableType type, const std::string& name, std::string& path);

    /**
     * Reads a table. A modulation that is not known counts as 0, "UNKNOW".
     *
     * @param items  set to the channels, in file order; untouched when the file cannot be read
     * @return false when the path is empty or the file cannot be read
     */
    bool ParseFreqTable(const std::string& path, std::vector<HidlFreqListItem>& items);

  private:
    HidlFreqListItem parsePiece(std::string_view piece);

    RegionalData& mData;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
