#include "regional/LanguageListParser.h"

#include "regional/ListFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

LanguageListParser& LanguageListParser::GetInstance() {
    static LanguageListParser instance;
    return instance;
}

void LanguageListParser::getLanguageList(const std::string& path,
                                         std::vector<std::string>& languages) const {
    const size_t before = languages.size();
    const ReadResult result = readListFile(
            path, [&languages](std::string_view name) { languages.emplace_back(name); });
    if (result == ReadResult::UNREADABLE) {
        languages.resize(before);
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
