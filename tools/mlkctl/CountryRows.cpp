#include "tools/mlkctl/CountryRows.h"

#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <functional>
#include <sstream>

#include "common/Decimal.h"
#include "platform/Platform.h"
#include "regional/CountryListParser.h"
#include "regional/RegionalData.h"
#include "regional/TvSysMapCfgHolder.h"
#include "tools/mlkctl/Ask.h"

namespace mlk::ctl {

namespace {

namespace implementation = ::vendor::morlak::mlkconfigs::V1_0::implementation;
using ::android::hardware::hidl_enum_range;
using implementation::_tv_country;
using implementation::kNoCountry;
using implementation::TvSysMapCfgHolder;
using V1_0::AtscCableType;
using V1_0::FreqTableType;
using V1_0::IMlkProjectConfigs;

_tv_country savedCountry(IBase& object) {
    const std::string file = std::string(ask(object, &IMlkProjectConfigs::getTvdataPath).value) +
                             "/tvsysmap/country_id.bin";
    const auto bytes = ask(object, &IMlkProjectConfigs::getTvFile, hidl_string(file));
    std::istringstream text(std::string(bytes.begin(), bytes.end()));
    for (std::string line; std::getline(text, line);) {
        if (line.find("COUNTRY_ID") == std::string::npos) {
            continue;
        }
        const size_t equals = line.find('=');
        return equals == std::string::npos
                       ? kNoCountry
                       : _tv_country{implementation::parseDecimal(line.substr(equals + 1))};
    }
    return kNoCountry;
}

// A question about the saved country.
ShowQuestion ofCountry(std::function<ShowValue(IBase&, _tv_country)> answer) {
    return {&projectInterface(), [answer = std::move(answer)](IBase& object) -> ShowValue {
                const _tv_country country = savedCountry(object);
                if (country == kNoCountry) {
                    return NoValue{"(none saved)"};
                }
                return answer(object, country);
            }};
}

ShowValue tvSystemOf(IBase& object, _tv_country country) {
    const V1_0::ProjectConfigKey item{"[COUNTRY]", "tvSysMap"};
    const std::string file = ask(object, &IMlkProjectConfigs::getConfig, item).value;
    implementation::RegionalData data(implementation::systemPartitions);
    TvSysMapCfgHolder maps(implementation::systemPartitions(), implementation::systemProperties(),
                           data);
    if (file.empty()) {
        return std::string();
    }
    if (!maps.loadConfigXmlFile(file) || !maps.loadCountryTvConfigMapXML()) {
        return NoValue{"(not readable)"};
    }
    return maps.getTvSysName(country);
}

ShowValue channelsOf(IBase& object, _tv_country country) {
    Counts counts;
    const auto add = [&](FreqTableType type, AtscCableType cable, const std::string& name) {
        const auto items = ask(object, &IMlkProjectConfigs::getFreqTableList, country, type, cable);
        if (items.size() != 0) {
            counts.emplace_back(name, static_cast<int32_t>(items.size()));
        }
    };
    for (const auto type : hidl_enum_range<FreqTableType>()) {
        if (type == FreqTableType::DTV_ANTENNA || type == FreqTableType::ATV_ANTENNA) {
            add(type, AtscCableType::AUTO, toString(type));
            continue;
        }
        for (const auto cable : hidl_enum_range<AtscCableType>()) {
            add(type, cable, toString(type) + ' ' + toString(cable));
        }
    }
    return counts;
}

}  // namespace

ShowQuestion countryName() {
    return ofCountry([](IBase&, _tv_country country) -> ShowValue {
        std::string name;
        const bool known = implementation::CountryListParser().getCountryName(country, name);
        return known ? ShowValue(name) : ShowValue(NoValue{"(unknown)"});
    });
}

ShowQuestion countryNumber() {
    return ofCountry([](IBase&, _tv_country country) -> ShowValue { return int32_t{country}; });
}

ShowQuestion countryTvSystem() {
    return ofCountry(tvSystemOf);
}

ShowQuestion countryChannels() {
    return ofCountry(channelsOf);
}

}  // namespace mlk::ctl
