#include "regional/CountryListParser.h"

#include <android/log.h>

#include "regional/ListFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kTag = "MlkProjectConfigs";

}  // namespace

CountryListParser& CountryListParser::GetInstance() {
    static CountryListParser instance;
    return instance;
}

std::vector<_tv_country> CountryListParser::getCountryList(const std::string& path) const {
    std::vector<_tv_country> countries;
    const ReadResult result = readListFile(path, [&countries](std::string_view name) {
        countries.push_back(_tv_country{names().valueOf(name)});
    });
    if (result == ReadResult::UNREADABLE) {
        countries.clear();
    }
    if (result != ReadResult::MISSING) {
        // "Totol" is what the tools that read this log look for.
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "Totol country count:%zu", countries.size());
    }
    return countries;
}

NameTable& CountryListParser::names() {
    static NameTable table = countryNames();
    return table;
}

bool CountryListParser::getCountryName(_tv_country country, std::string& name) const {
    return names().firstNameOf(country, name);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
