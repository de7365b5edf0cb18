// How TvSysMapCfgHolder loads its two XML files and moves the paths in them.

#define LOG_TAG "MlkProjectConfigs"

#include <log/log.h>

#include <string_view>
#include <utility>

#include "regional/LogLines.h"
#include "regional/TvSysMapCfgHolder.h"
#include "regional/XmlFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr std::string_view kTvconfigs = "/tvconfigs";
constexpr std::string_view kTvdata = "/tvdata";

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// Text of an element of a country block; empty, and logged, if there is no such element.
std::string textOrComplaint(const tinyxml2::XMLElement& block, const char* element,
                            const char* function, int line, const char* complaint) {
    if (block.FirstChildElement(element) == nullptr) {
        ALOGE("[%s:%d] without %s", function, line, complaint);
    }
    return orEmpty(textOfChild(block, element));
}

}  // namespace

bool TvSysMapCfgHolder::loadConfigXmlFile(const std::string& xmlFile) {
    ALOGD("[%s:%d] xmlFile=%s", __func__, log_line::kSystemFile, xmlFile.c_str());
    if (xmlFile.empty()) {
        ALOGE("[%s:%d] chkchk xmlFile is empty!!", __func__, log_line::kNoSystemFile);
        return false;
    }
    const XmlFile file(xmlFile);
    if (const char* const error = file.error()) {
        ALOGE("[%s:%d] LoadFile fail, error %s", __func__, log_line::kSystemFileBroken, error);
        return false;
    }
    const tinyxml2::XMLElement* const mapFile = file.first("CountryTvSysMapXML");
    mCountryTvConfigMapFile = mapFile != nullptr ? orEmpty(mapFile->GetText()) : "";
    ALOGD("[%s:%d] mCountryTvConfigMapFile=%s", __func__, log_line::kMapFile,
          mCountryTvConfigMapFile.c_str());
    mTvSysToConfigMap.clear();
    if (const tinyxml2::XMLElement* const section = file.first("TvSystemConfigration")) {
        for (const auto* element = section->FirstChildElement("TvSystem"); element != nullptr;
             element = element->NextSiblingElement()) {
            addTvSystem(xmlFile, *element);
        }
    }
    return true;
}

void TvSysMapCfgHolder::addTvSystem(const std::string& file, const tinyxml2::XMLElement& element) {
    const char* const type = element.Attribute("type");
    if (type == nullptr) {
        ALOGE("%s:%d: TV system without type, skipped", file.c_str(), element.GetLineNum());
        return;
    }
    TvSysToConfigMap system;
    system.tvSysName = type;
    for (const auto* item = element.FirstChildElement("Item"); item != nullptr;
         item = item->NextSiblingElement()) {
        const char* const category = item->Attribute("category");
        const char* const key = item->Attribute("key");
        const char* const value = item->Attribute("value");
        if (category == nullptr || key == nullptr || value == nullptr) {
            ALOGE("%s:%d: item without category, key or value, skipped", file.c_str(),
                  item->GetLineNum());
            continue;
        }
        system.configs.insert(system.configs.section(category), key, patchToTargetBoardPath(value));
    }
    mTvSysToConfigMap.push_back(std::move(system));
}

bool TvSysMapCfgHolder::loadCountryTvConfigMapXML() {
    std::string path = mCountryTvConfigMapFile;
    if (path.empty()) {
        ALOGE("[%s:%d] countryTvSysMapXML is empty!!", __func__, log_line::kNoMapFile);
        return false;
    }
    if (!moveToTvconfigs(path)) {
        ALOGE("[%s:%d] chkchk file format (countryTvSysMapXML=%s)", __func__,
              log_line::kMapFileElsewhere, path.c_str());
        return false;
    }
    ALOGD("[%s:%d] mCoutryTvConfigMap.size()=%d, xmlPath=%s", __func__, log_line::kMapPath,
          static_cast<int>(mCoutryTvConfigMap.size()), path.c_str());
    const XmlFile file(path);
    if (const char* const error = file.error()) {
        ALOGE("[%s:%d] LoadFile fail, error %s", __func__, log_line::kMapFileBroken, error);
        return false;
    }
    mCoutryTvConfigMap.clear();
    mCountryList.clear();
    for (const auto* block = file.first("COUNTRY_TVCONFIG_MAP"); block != nullptr;
         block = block->NextSiblingElement()) {
        addCountry(*block);
    }
    ALOGD("[%s:%d] size of {mCoutryTvConfigMap, mCountryList}={%d, %d}", __func__,
          log_line::kMapSize, static_cast<int>(mCoutryTvConfigMap.size()),
          static_cast<int>(mCountryList.size()));
    return true;
}

void TvSysMapCfgHolder::addCountry(const tinyxml2::XMLElement& block) {
    constexpr const char* kFunction =
            "loadCountryTvConfigMapXML";  // the function that the messages name
    const char* const countryName = textOfChild(block, "COUNTRY_NAME");
    if (countryName == nullptr) {
        ALOGE("[%s:%d] without country name", kFunction, log_line::kNoCountryName);
        return;
    }
    mCountryList.push_back(_tv_country{mData.tvSystemCountries.valueOf(countryName)});
    CoutryTvConfigMap record;
    record.countryName = countryName;
    record.tvSysName =
            textOrComplaint(block, "TV_SYSTEM", kFunction, log_line::kNoTvSystem, "tvSysName");
    record.tvConfigName =
            textOrComplaint(block, "TV_CONFIG", kFunction, log_line::kNoTvConfig, "tvConfigName");
    mCoutryTvConfigMap.push_back(std::move(record));
}

std::string TvSysMapCfgHolder::getCountryName(_tv_country country) const {
    std::string name;
    mData.tvSystemCountries.firstNameOf(country, name);
    return name;
}

std::string TvSysMapCfgHolder::patchToTargetBoardPath(const std::string& value) const {
    if (startsWith(value, kTvconfigs)) {
        return mPartitions.tvconfigs + value.substr(kTvconfigs.size());
    }
    if (startsWith(value, kTvdata)) {
        return mPartitions.tvdata + value.substr(kTvdata.size());
    }
    return value;
}

// Replaces everything up to and including "/tvconfigs" by the partition's path, because files are
// copied between products with other mount points. False if the path does not contain "/tvconfigs".
bool TvSysMapCfgHolder::moveToTvconfigs(std::string& path) const {
    const size_t at = path.find(kTvconfigs);
    if (at == std::string::npos) {
        return false;
    }
    path.replace(0, at + kTvconfigs.size(), mPartitions.tvconfigs);
    return true;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
