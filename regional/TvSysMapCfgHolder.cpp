#define LOG_TAG "MlkProjectConfigs"

#include "regional/TvSysMapCfgHolder.h"

#include <log/log.h>

#include <utility>

#include "common/Decimal.h"
#include "common/Paths.h"
#include "regional/RegionalNames.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

TvSysMapCfgHolder::TvSysMapCfgHolder(Partitions partitions, const Properties& properties,
                                     RegionalData& data)
    : mPartitions(std::move(partitions)), mProperties(properties), mData(data) {}

bool TvSysMapCfgHolder::dumpsAreOn() const {
    return parseDecimal(mProperties.get(kLogTvSystemsProperty)) >= 1;
}

ItemStore TvSysMapCfgHolder::getConfigs(const std::string& xmlFile, _tv_country country) {
    ItemStore configs;
    if (mTvSysToConfigMap.empty()) {
        if (!loadConfigXmlFile(xmlFile)) {
            return configs;
        }
        dumpConfigXmlFile();
    }
    if (mCoutryTvConfigMap.empty()) {
        loadCountryTvConfigMapXML();
        dumpTvConfigMap();
    }
    if (country == kNoCountry) {
        parseCountryId();
        if (mCountryIdx == kNoCountry) {
            ALOGE("[%s] chkchk mCountryIdx=%d", __func__, static_cast<int>(mCountryIdx));
            return configs;
        }
    } else {
        mCountryIdx = country;
    }
    // The first item of a name counts: the country's own file takes precedence over an item of the
    // TV system.
    const std::string tvConfig = getTvConfigFilePath(mCountryIdx);
    if (!tvConfig.empty()) {
        configs.insert(configs.section(kTvConfigItem.category), kTvConfigItem.key, tvConfig);
    }
    const std::string tvSysName = getTvSysName(mCountryIdx);
    for (const TvSysToConfigMap& system : mTvSysToConfigMap) {
        // A country without a TV system must not match a TV system with an empty name.
        if (tvSysName.empty() || system.tvSysName != tvSysName) {
            continue;
        }
        const ItemStore& items = system.configs;
        for (const ItemStore::Item item : items.inOrder()) {
            configs.insert(configs.section(items.sectionOf(item)), items.keyOf(item),
                           items.valueOf(item));
        }
    }
    return configs;
}

std::string TvSysMapCfgHolder::getTvSysName(_tv_country country) const {
    const CoutryTvConfigMap* const record = recordOf(country);
    return record != nullptr ? record->tvSysName : std::string();
}

std::string TvSysMapCfgHolder::getTvConfigName(_tv_country country) const {
    const CoutryTvConfigMap* const record = recordOf(country);
    return record != nullptr ? record->tvConfigName : std::string();
}

std::string TvSysMapCfgHolder::getTvConfigFilePath(_tv_country country) const {
    std::string path = getTvConfigName(country);
    if (!path.empty() && !moveToTvconfigs(path)) {
        ALOGE("TV_CONFIG %s does not lie below /tvconfigs", path.c_str());
        path.clear();
    }
    return path;
}

bool TvSysMapCfgHolder::isFileExist(const std::string& path) {
    const bool exists = pathExists(path);
    if (!exists) {
        ALOGD("[%s:%d] %s don't exist.", __func__, __LINE__, path.c_str());
    }
    return exists;
}

void TvSysMapCfgHolder::dumpConfigXmlFile() const {
    if (!dumpsAreOn()) {
        return;
    }
    for (const TvSysToConfigMap& system : mTvSysToConfigMap) {
        ALOGD("[%s] tvSystem=%s", __func__, system.tvSysName.c_str());
        system.configs.log(LOG_TAG);
    }
}

void TvSysMapCfgHolder::dumpTvConfigMap() const {
    if (!dumpsAreOn()) {
        return;
    }
    std::string path = mCountryTvConfigMapFile;
    if (path.empty()) {
        ALOGE("[%s:%d] chkchk countryTvSysMapXML is empty!!", __func__, __LINE__);
        return;
    }
    if (!moveToTvconfigs(path)) {
        ALOGE("[%s:%d] chkchk file format (countryTvSysMapXML=%s)", __func__, __LINE__,
              path.c_str());
        return;
    }
    ALOGD("[%s] tv_config_map_xml path=%s", __func__, path.c_str());
    for (const CoutryTvConfigMap& record : mCoutryTvConfigMap) {
        ALOGD("\t%s\t:%s\t:%s", record.countryName.c_str(), record.tvSysName.c_str(),
              record.tvConfigName.c_str());
    }
}

_tv_country TvSysMapCfgHolder::currentCountry() const {
    return mCountryIdx;
}

// The first record whose name contains the country's, even if another one equals it: products order
// their maps accordingly.
const CoutryTvConfigMap* TvSysMapCfgHolder::recordOf(_tv_country country) const {
    const std::string name = getCountryName(country);
    if (name.empty()) {
        return nullptr;
    }
    for (const CoutryTvConfigMap& record : mCoutryTvConfigMap) {
        if (record.countryName.find(name) != std::string::npos) {
            return &record;
        }
    }
    return nullptr;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
