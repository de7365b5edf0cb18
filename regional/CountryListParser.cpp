#define LOG_TAG "MlkProjectConfigs"

#include "regional/CountryListParser.h"

#include <log/log.h>

#include "regional/ListFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

std::vector<_tv_country> CountryListParser::getCountryList(const std::string& path) {
    std::vector<_tv_country> countries;
    const auto take = [&](std::string_view name) {
        countries.push_back(_tv_country{mNames.valueOf(name)});
    };
    const ReadResult result = readListFile(path, take, mObserver);
    if (result == ReadResult::UNREADABLE) {
        countries.clear();
    }
    if (result != ReadResult::MISSING) {
        // Tools that read the log look for "Totol".
        ALOGD("Totol country count:%zu", countries.size());
    }
    return countries;
}

bool CountryListParser::getCountryName(_tv_country country, std::string& name) const {
    return mNames.firstNameOf(country, name);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
