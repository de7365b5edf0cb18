#include "regional/LanguageListParser.h"

#include "regional/ListFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

LanguageListParser& LanguageListParser::GetInstance() {
    static LanguageListParser instance;
    return instance;
}

void LanguageListParser::getLanguageList(const std::string& path,
                                         std::vector<std::string>& languages,
                                         ReadObserver* observer) const {
    const size_t before = languages.size();
    const auto take = [&languages](std::string_view name) { languages.emplace_back(name); };
    const ReadResult result = readListFile(path, take, observer);
    if (result == ReadResult::UNREADABLE) {
        languages.resize(before);
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
