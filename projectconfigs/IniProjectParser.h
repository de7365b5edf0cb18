#pragma once

#include <map>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>

#include "common/ConfigKey.h"
#include "common/ItemStore.h"
#include "common/ReadObserver.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Holds auxiliary INI files (audio, karaoke, keys, DDC/CI), each under its file name, and answers
 * lookups of one item in one of them.
 *
 * Grammar: "[SECTION]" lines, "key=value" lines, "#" and ";" comments. It differs from that of the
 * project files: if a key occurs twice, the first value counts; a value ends at the second "=" of
 * its line; a quote, semicolon or carriage return at position p of a text is removed together with
 * the p characters that follow it. The makers' files are written for this reader, so these rules
 * stay. A line without a value is logged and skipped.
 *
 * A loaded file stays as it is; loading another one of the same name changes nothing. A file that
 * cannot be read to its end, or has more than kMostListBytes, is therefore not kept: a part of it
 * would be used until the next start.
 *
 * A set has one object for each family of files. Any number of threads may call it; every operation
 * holds mMutex for its whole run. Log tag: "IniProjectParser".
 */
class IniProjectParser {
  public:
    /** @param observer  hears of every line; must outlive the object; null for none */
    explicit IniProjectParser(ReadObserver* observer = nullptr) : mObserver(observer) {}
    IniProjectParser(const IniProjectParser&) = delete;
    IniProjectParser& operator=(const IniProjectParser&) = delete;

    /**
     * Loads a file, unless one of its name is loaded already. Keeps nothing of a file that is
     * missing, has no items or cannot be read whole.
     *
     * @param path  the file; its name is the text after the last "/", or all of it; null is ignored
     */
    void update(const char* path);

    /** Value of an item of the file of that name; empty if there is no such file or item. */
    std::string getInfo(const char* fileName, const ConfigKey& key) const;

    /** True if a file of that name is loaded. */
    bool findItem(const char* fileName) const;

    /** Logs the path loaded last and every file with its items. */
    void dumpDetail() const;

    /** Writes every file with its items. */
    void dump(std::ostream& out) const;

  private:
    ItemStore parse_ini(const char* path) const;

    ReadObserver* const mObserver;
    std::map<std::string, ItemStore, std::less<>> mIniMap;
    mutable std::mutex mMutex;
    std::string mIniPath;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
