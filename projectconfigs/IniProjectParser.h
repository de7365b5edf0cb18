#pragma once

#include <map>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>

#include "common/ConfigKey.h"
#include "common/ItemStore.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Holds auxiliary INI files (audio, karaoke, keys, DDC/CI), each under its file name, and answers
 * lookups of one item in one of them.
 *
 * Grammar: "[SECTION]" lines, "key=value" lines, "#" and ";" comments. It is not that of the
 * project files: of a key that occurs twice the first value counts, a value ends at its second "=",
 * and a quote, semicolon or carriage return inside a text takes what follows it along. The maker's
 * files are written for this reader, so its oddities stay. A line without a value is skipped and
 * reported. A file once held stays as it is; loading one of its name again changes nothing. So one
 * that could not be read to its end, or has more than kMostListBytes, is not held: a part of it
 * would answer until the next start.
 *
 * MlkProjectConfigs has one object a family of files and calls it from its constructor and from
 * RPC threads; every operation holds mMutex for its whole run. Log tag: "IniProjectParser".
 */
class IniProjectParser {
  public:
    IniProjectParser() = default;
    IniProjectParser(const IniProjectParser&) = delete;
    IniProjectParser& operator=(const IniProjectParser&) = delete;

    /**
     * Loads a file, unless one of its name is held. A missing file, one without items and one that
     * could not be read whole are not held.
     *
     * @param path  the file; its name is the text after the last "/", or all of it
     */
    void update(const char* path);

    /** Value of an item of the file of that name; empty when there is none. */
    std::string getInfo(const char* fileName, const ConfigKey& key) const;

    /** True when a file of that name is held. */
    bool findItem(const char* fileName) const;

    /** Logs the path loaded last and every file with its items. */
    void dumpDetail() const;

    /** Writes every file with its items. */
    void dump(std::ostream& out) const;

  private:
    static ItemStore parse_ini(const char* path);

    std::map<std::string, ItemStore, std::less<>> mIniMap;
    mutable std::mutex mMutex;
    std::string mIniPath;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
