// Countries, languages, frequencies and TV systems: the items that name their files come from the
// project store, the regional room reads them.

#include <android/log.h>

#include <algorithm>
#include <cstdint>

#include "projectconfigs/MlkProjectConfigs.h"
#include "regional/CountryListParser.h"
#include "regional/FreqTableParser.h"
#include "regional/LanguageListParser.h"
#include "regional/TvSysMapCfgHolder.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

namespace {

constexpr const char* kTag = "MlkProjectConfigs";

struct ItemName {
    const char* category;
    const char* key;
};

constexpr ItemName kTvSysMap = {"[COUNTRY]", "tvSysMap"};
constexpr ItemName kCountryList = {"[COUNTRY]", "COUNTRY_PATH"};
constexpr ItemName kCLTVCountryList = {"[LiveTV]", "LaunchCLTVByCountry"};
constexpr ItemName kLanguageList = {"[TV_LANGUAGE]", "LANGUAGE_PATH"};
constexpr ItemName kFreqTables = {"[FREQTABLE]", "FREQ_TABLE_PATH"};

hidl_vec<uint32_t> countriesOf(const std::string& path) {
    const std::vector<_tv_country> countries =
            CountryListParser::GetInstance().getCountryList(path);
    return hidl_vec<uint32_t>(countries.begin(), countries.end());
}

}  // namespace

// Only called by the constructor and with mProjectChange held: a country's items belong to one
// state of the store.
void MlkProjectConfigs::InitTvSysMapInfo(int32_t country) {
    const std::string file = GetValue(kTvSysMap.category, kTvSysMap.key);
    // 875 is what the tools that read this log know the message by.
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "[%s:%d] tvSysMapCfgIni=%s", __func__, 875,
                        file.c_str());
    if (file.empty()) {
        return;
    }
    TvSysMapCfgHolder holder;
    const ItemStore items = holder.getConfigs(file, _tv_country{country});
    for (const ItemStore::Item item : items.inOrder()) {
        const ConfigKey key(items.sectionOf(item), items.keyOf(item));
        mProjectParser->setInfo(key, items.valueOf(item));
        // What is read back tells an item that the project does not have: that one is not added.
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "\t%s:%s=%s", key.category.data(),
                            key.key.data(), mProjectParser->getInfo(key).c_str());
    }
}

Return<void> MlkProjectConfigs::getCountryList(getCountryList_cb _hidl_cb) {
    _hidl_cb(countriesOf(GetValue(kCountryList.category, kCountryList.key)));
    return {};
}

Return<void> MlkProjectConfigs::getCLTVCountryList(getCLTVCountryList_cb _hidl_cb) {
    _hidl_cb(countriesOf(GetValue(kCLTVCountryList.category, kCLTVCountryList.key)));
    return {};
}

Return<void> MlkProjectConfigs::getLanguageList(getLanguageList_cb _hidl_cb) {
    std::vector<std::string> languages;
    LanguageListParser::GetInstance().getLanguageList(
            GetValue(kLanguageList.category, kLanguageList.key), languages);
    _hidl_cb(hidl_vec<hidl_string>(languages.begin(), languages.end()));
    return {};
}

Return<void> MlkProjectConfigs::getFreqTableList(int32_t country, FreqTableType type,
                                                 AtscCableType cableType,
                                                 getFreqTableList_cb _hidl_cb) {
    std::vector<HidlFreqListItem> items;
    const bool found =
            FreqTableParser::GetTableList(GetValue(kFreqTables.category, kFreqTables.key),
                                          _tv_country{country}, type, cableType, items);
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "getfreqTable,sucess %d: size: %d", found ? 1 : 0,
                        static_cast<int>(items.size()));
    // The list travels as it lies in memory: all of it is cleared, and then the fields are filled
    // one by one.
    hidl_vec<HidlFreqListItem> answer;
    answer.resize(items.size());
    std::fill_n(reinterpret_cast<uint8_t*>(answer.data()), items.size() * sizeof(HidlFreqListItem),
                uint8_t{0});
    for (size_t i = 0; i < items.size(); ++i) {
        answer[i].channel = items[i].channel;
        answer[i].frequency = items[i].frequency;
        answer[i].bandwidth = items[i].bandwidth;
        answer[i].label = items[i].label;
        answer[i].modulation = items[i].modulation;
    }
    _hidl_cb(answer);  // none when no table was found
    return {};
}

Return<void> MlkProjectConfigs::isSupportTvSysReload(isSupportTvSysReload_cb _hidl_cb) {
    _hidl_cb({true, !GetValue(kTvSysMap.category, kTvSysMap.key).empty()});
    return {};
}

Return<void> MlkProjectConfigs::setCountryId(int32_t country, setCountryId_cb _hidl_cb) {
    bool saved = false;
    {
        const std::lock_guard<std::mutex> lock(mProjectChange);
        InitTvSysMapInfo(country);
        saved = TvSysMapCfgHolder().saveCountryId(_tv_country{country});
    }
    _hidl_cb({true, saved});
    return {};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
