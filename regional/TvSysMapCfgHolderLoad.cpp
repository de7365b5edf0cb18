// How TvSysMapCfgHolder loads its two XML files and moves the paths in them.

#define LOG_TAG "MlkProjectConfigs"

#include <log/log.h>

#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "common/Texts.h"
#include "regional/LogLines.h"
#include "regional/RegionalNames.h"
#include "regional/TvSysMapCfgHolder.h"
#include "regional/TvconfigsPath.h"
#include "regional/XmlFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

// Text of an element of a country block; empty, and logged, if there is no such element.
std::string textOrComplaint(const tinyxml2::XMLElement& block, const char* element,
                            const char* function, int line, const char* complaint) {
    const tinyxml2::XMLElement* const child = block.FirstChildElement(element);
    if (child == nullptr) {
        ALOGE("[%s:%d] without %s", function, line, complaint);
        return {};
    }
    return orEmpty(child->GetText());
}

// Tells what becomes of the elements at the top of a TV system file; null if one is missing.
void tellTopLevel(const XmlFile& file, const tinyxml2::XMLElement* mapFile,
                  const tinyxml2::XMLElement* section) {
    for (const auto* element = file.top(); element != nullptr;
         element = element->NextSiblingElement()) {
        ReadLine read;
        read.value = orEmpty(element->GetText());
        if (element == mapFile) {
            file.tell(*element, LineUse::ITEM, read);
        } else if (element != section) {
            file.tell(*element, LineUse::IGNORED, read);
        }
    }
}

// Tells what becomes of the elements of a country's record.
void tellCountry(const XmlFile& file, const tinyxml2::XMLElement& block, const char* country) {
    ReadLine read;
    read.owner = country;
    file.tell(block, LineUse::SECTION, read);
    std::set<std::string_view> names;
    for (const auto* child = block.FirstChildElement(); child != nullptr;
         child = child->NextSiblingElement()) {
        const std::string_view name = child->Name();
        const bool isRead = name == element::kCountryName || name == element::kSystemOfCountry ||
                            name == element::kFeaturesOfCountry;
        read.value = orEmpty(child->GetText());
        read.isNew = names.insert(name).second;
        file.tell(*child, isRead ? LineUse::ITEM : LineUse::IGNORED, read);
    }
}

}  // namespace

bool TvSysMapCfgHolder::loadConfigXmlFile(const std::string& xmlFile) {
    ALOGD("[%s:%d] xmlFile=%s", __func__, log_line::kSystemFile, xmlFile.c_str());
    if (xmlFile.empty()) {
        ALOGE("[%s:%d] chkchk xmlFile is empty!!", __func__, log_line::kNoSystemFile);
        return false;
    }
    const XmlFile file(xmlFile, mData.observer);
    if (const char* const error = file.error()) {
        ALOGE("[%s:%d] LoadFile fail, error %s", __func__, log_line::kSystemFileBroken, error);
        return false;
    }
    const tinyxml2::XMLElement* const mapFile = file.first(element::kCountryMap);
    mCountryTvConfigMapFile = mapFile != nullptr ? orEmpty(mapFile->GetText()) : "";
    ALOGD("[%s:%d] mCountryTvConfigMapFile=%s", __func__, log_line::kMapFile,
          mCountryTvConfigMapFile.c_str());
    mTvSysToConfigMap.clear();
    const tinyxml2::XMLElement* const section = file.first(element::kTvSystems);
    if (file.isObserved()) {
        tellTopLevel(file, mapFile, section);
    }
    if (section != nullptr) {
        const tinyxml2::XMLElement* const first = section->FirstChildElement(element::kTvSystem);
        file.tellIgnored(section->FirstChildElement(), first);
        ItemStore told;
        for (const auto* element = first; element != nullptr;
             element = element->NextSiblingElement()) {
            addTvSystem(file, *element, told);
        }
    }
    return true;
}

// The items that the observer has heard of are in `told`, in sections of TV system and category.
void TvSysMapCfgHolder::addTvSystem(const XmlFile& file, const tinyxml2::XMLElement& element,
                                    ItemStore& told) {
    const char* const type = element.Attribute(attribute::kType);
    if (type == nullptr) {
        file.complain(element, ProblemKind::NO_TYPE);
        file.tell(element, LineUse::IGNORED, {});
        return;
    }
    ReadLine read;
    read.owner = type;
    file.tell(element, LineUse::SECTION, read);
    TvSysToConfigMap system;
    system.tvSysName = type;
    const tinyxml2::XMLElement* const first = element.FirstChildElement(element::kItem);
    file.tellIgnored(element.FirstChildElement(), first, type);
    for (const auto* item = first; item != nullptr; item = item->NextSiblingElement()) {
        const char* const category = item->Attribute(attribute::kCategory);
        const char* const key = item->Attribute(attribute::kKey);
        const char* const value = item->Attribute(attribute::kValue);
        read.section = orEmpty(category);
        read.key = orEmpty(key);
        read.value = orEmpty(value);
        read.isNew = true;
        if (category == nullptr || key == nullptr || value == nullptr) {
            file.complain(*item, ProblemKind::INCOMPLETE_ITEM);
            file.tell(*item, LineUse::IGNORED, read);
            continue;
        }
        const ItemStore::Section section = system.configs.section(category);
        system.configs.insert(section, key, patchToTargetBoardPath(value));
        if (file.isObserved()) {
            const std::string owned = std::string(type) + '\0' + category;
            read.isNew = told.insert(told.section(owned), key, "").isNew;
            file.tell(*item, LineUse::ITEM, read);
        }
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
    const XmlFile file(path, mData.observer);
    if (const char* const error = file.error()) {
        ALOGE("[%s:%d] LoadFile fail, error %s", __func__, log_line::kMapFileBroken, error);
        return false;
    }
    mCoutryTvConfigMap.clear();
    mCountryList.clear();
    const tinyxml2::XMLElement* const first = file.first(element::kCountry);
    file.tellIgnored(file.top(), first);
    for (const auto* block = first; block != nullptr; block = block->NextSiblingElement()) {
        addCountry(file, *block);
    }
    ALOGD("[%s:%d] size of {mCoutryTvConfigMap, mCountryList}={%d, %d}", __func__,
          log_line::kMapSize, static_cast<int>(mCoutryTvConfigMap.size()),
          static_cast<int>(mCountryList.size()));
    return true;
}

void TvSysMapCfgHolder::addCountry(const XmlFile& file, const tinyxml2::XMLElement& block) {
    constexpr const char* kFunction =
            "loadCountryTvConfigMapXML";  // the function that the messages name
    const char* const countryName = textOfChild(block, element::kCountryName);
    if (countryName == nullptr) {
        ALOGE("[%s:%d] without country name", kFunction, log_line::kNoCountryName);
        file.tellProblem(block, ProblemKind::NO_COUNTRY);
        file.tell(block, LineUse::IGNORED, {});
        return;
    }
    if (file.isObserved()) {
        tellCountry(file, block, countryName);
    }
    mCountryList.push_back(_tv_country{mData.tvSystemCountries.valueOf(countryName)});
    CoutryTvConfigMap record;
    record.countryName = countryName;
    record.tvSysName = textOrComplaint(block, element::kSystemOfCountry, kFunction,
                                       log_line::kNoTvSystem, "tvSysName");
    record.tvConfigName = textOrComplaint(block, element::kFeaturesOfCountry, kFunction,
                                          log_line::kNoTvConfig, "tvConfigName");
    mCoutryTvConfigMap.push_back(std::move(record));
}

std::string TvSysMapCfgHolder::getCountryName(_tv_country country) const {
    std::string name;
    mData.tvSystemCountries.firstNameOf(country, name);
    return name;
}

std::string TvSysMapCfgHolder::patchToTargetBoardPath(const std::string& value) const {
    if (beginsWith(value, partition::kTvconfigs)) {
        return mPartitions.tvconfigs + value.substr(partition::kTvconfigs.size());
    }
    if (beginsWith(value, partition::kTvdata)) {
        return mPartitions.tvdata + value.substr(partition::kTvdata.size());
    }
    return value;
}

// Replaces everything up to and including "/tvconfigs" by the partition's path. False if the path
// does not contain "/tvconfigs".
bool TvSysMapCfgHolder::moveToTvconfigs(std::string& path) const {
    const std::string written(fromTvconfigs(path));
    if (written.empty()) {
        return false;
    }
    path = patchToTargetBoardPath(written);
    return true;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
