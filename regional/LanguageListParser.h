#pragma once

#include <string>
#include <vector>

#include "common/ReadObserver.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Reads lists of languages. It has no state, so the process has one object, and any number of
 * threads may call it. Log tag: "MlkProjectConfigs".
 */
class LanguageListParser {
  public:
    /** Returns the object of the process. */
    static LanguageListParser& GetInstance();
    virtual ~LanguageListParser() = default;
    LanguageListParser(const LanguageListParser&) = delete;
    LanguageListParser& operator=(const LanguageListParser&) = delete;

    /**
     * Reads a language list: one language per line, see readListFile. Any text is a language.
     *
     * @param path       the file, possibly in double quotes
     * @param languages  the languages are appended in file order; untouched if the file is missing
     *                   or cannot be read
     * @param observer   hears of every line; null for none
     */
    void getLanguageList(const std::string& path, std::vector<std::string>& languages,
                         ReadObserver* observer = nullptr) const;

  private:
    LanguageListParser() = default;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
