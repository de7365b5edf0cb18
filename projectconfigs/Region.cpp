#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/Region.h"

#include <log/log.h>

#include <new>

#include "projectconfigs/KnownItems.h"
#include "projectconfigs/LogLines.h"
#include "regional/FreqTableParser.h"
#include "regional/LanguageListParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

std::vector<_tv_country> Region::countries() const {
    return mData.countries.getCountryList(mItems.getInfo(item::kCountries));
}

std::vector<_tv_country> Region::cltvCountries() const {
    return mData.countries.getCountryList(mItems.getInfo(item::kCLTVCountries));
}

std::vector<std::string> Region::languages() const {
    std::vector<std::string> languages;
    LanguageListParser::GetInstance().getLanguageList(mItems.getInfo(item::kLanguages), languages,
                                                      mData.observer);
    return languages;
}

std::vector<HidlFreqListItem> Region::plan(_tv_country country, FreqTableType type,
                                           AtscCableType cableType) const {
    std::vector<HidlFreqListItem> channels;
    const bool found = FreqTableParser(mData).GetTableList(mItems.getInfo(item::kChannelPlans),
                                                           country, type, cableType, channels);
    ALOGD("getfreqTable,sucess %d: size: %d", found ? 1 : 0, static_cast<int>(channels.size()));
    return channels;
}

bool Region::hasTvSystems() const {
    return !mItems.getInfo(item::kTvSystems).empty();
}

TvSysMapCfgHolder Region::holder() const {
    return {mPartitions, mProperties, mData};
}

void Region::apply(_tv_country country) {
    const std::string file = mItems.getInfo(item::kTvSystems);
    ALOGD("[%s:%d] tvSysMapCfgIni=%s", "InitTvSysMapInfo", log_line::kTvSysMap, file.c_str());
    if (file.empty()) {
        return;
    }
    mItems.setInfos(holder().getConfigs(file, country));
}

bool Region::save(_tv_country country) {
    try {
        return holder().saveCountryId(country);
    } catch (const std::bad_alloc&) {
        ALOGE("country %d cannot be saved: out of memory", static_cast<int>(country));
        return false;
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
