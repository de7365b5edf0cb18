#pragma once

#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Reads lists of languages. One for the process, without state of its own; called from RPC threads,
 * any number at a time. Log tag: "MlkProjectConfigs".
 */
class LanguageListParser {
  public:
    static LanguageListParser& GetInstance();
    virtual ~LanguageListParser() = default;
    LanguageListParser(const LanguageListParser&) = delete;
    LanguageListParser& operator=(const LanguageListParser&) = delete;

    /**
     * Reads a language list, one language a line as readListFile has it; any text is a language.
     *
     * @param path       the file, possibly in double quotes
     * @param languages  what is read is appended, in file order; nothing when there is no such file
     *                   or it cannot be read
     */
    void getLanguageList(const std::string& path, std::vector<std::string>& languages) const;

  private:
    LanguageListParser() = default;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
