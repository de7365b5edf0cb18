#define LOG_TAG "MlkProjectConfigs"

#include "regional/CountryFreqMapParse.h"

#include <log/log.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

#include "common/Texts.h"
#include "regional/CountryListParser.h"
#include "regional/RegionalNames.h"
#include "regional/XmlFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

struct CableTypeRow {
    std::string_view word;  // what TYPE begins with
    AtscCableType type;
    const char* logged;
};

constexpr CableTypeRow kCableTypes[] = {
        {cable::kAuto, AtscCableType::AUTO, "auto"},
        {cable::kStd, AtscCableType::STD, "std"},
        {cable::kHrc, AtscCableType::HRC, "hrc"},
        {cable::kIrc, AtscCableType::IRC, "irc"},
};

// The cable plans of a block; of several with one type, the first.
CountryFreqMapEntry::CableTables cableTablesOf(const XmlFile& file,
                                               const tinyxml2::XMLElement& block,
                                               const char* element, std::string_view country) {
    CountryFreqMapEntry::CableTables tables;
    for (const auto* cable = block.FirstChildElement(element); cable != nullptr;
         cable = cable->NextSiblingElement(element)) {
        AtscCableType type = AtscCableType::AUTO;
        const char* const text = cable->GetText();
        ReadLine read;
        read.owner = country;
        read.value = orEmpty(text);
        if (const char* const value = cable->Attribute(attribute::kCableType)) {
            read.section = value;
            const std::string_view given = value;
            const auto* const row = std::find_if(
                    std::begin(kCableTypes), std::end(kCableTypes), [given](const CableTypeRow& r) {
                        return given.substr(0, r.word.size()) == r.word;
                    });
            if (row == std::end(kCableTypes)) {
                file.tell(*cable, LineUse::IGNORED, read);
                continue;
            }
            type = row->type;
            ALOGD("loadCountryFreqMapXML cable %s name: %s", row->logged, orEmpty(text));
        }
        if (text != nullptr) {
            read.isNew = tables.try_emplace(type, text).second;
        }
        file.tell(*cable, text != nullptr ? LineUse::ITEM : LineUse::IGNORED, read);
    }
    return tables;
}

// Text of an antenna element; empty, and logged, if the block has none.
const char* antennaOf(const tinyxml2::XMLElement& block, const char* element,
                      const char* complaint) {
    if (block.FirstChildElement(element) == nullptr) {
        ALOGE("loadCountryFreqMapXML without %s", complaint);
    }
    return orEmpty(textOfChild(block, element));
}

// Tells what becomes of the elements of a block, except the cable plans.
void tellBlock(const XmlFile& file, const tinyxml2::XMLElement& block, std::string_view country) {
    constexpr std::string_view kRead[] = {element::kCountryName, element::kDtvAntenna,
                                          element::kAtvAntenna};
    constexpr std::string_view kCables[] = {element::kDtvCable, element::kAtvCable};
    const auto isOneOf = [](const auto& names, std::string_view name) {
        return std::find(std::begin(names), std::end(names), name) != std::end(names);
    };
    ReadLine read;
    read.owner = country;
    file.tell(block, LineUse::SECTION, read);
    std::set<std::string_view> names;
    for (const auto* child = block.FirstChildElement(); child != nullptr;
         child = child->NextSiblingElement()) {
        const std::string_view name = child->Name();
        if (isOneOf(kCables, name)) {
            continue;
        }
        read.value = orEmpty(child->GetText());
        read.isNew = names.insert(name).second;
        file.tell(*child, isOneOf(kRead, name) ? LineUse::ITEM : LineUse::IGNORED, read);
    }
}

// Name of the table of one kind; null if the entry has none.
const std::string* tableOf(const CountryFreqMapEntry& entry, FreqTableType type,
                           AtscCableType cableType) {
    const auto inCable = [cableType](const CountryFreqMapEntry::CableTables& tables) {
        const auto table = tables.find(cableType);
        return table != tables.end() ? &table->second : nullptr;
    };
    switch (type) {
        case FreqTableType::DTV_ANTENNA:
            return &entry.dtvAntenna;
        case FreqTableType::DTV_CABLE:
            return inCable(entry.dtvCable);
        case FreqTableType::ATV_ANTENNA:
            return &entry.atvAntenna;
        case FreqTableType::ATV_CABLE:
            return inCable(entry.atvCable);
    }
    return nullptr;  // a client may send any number
}

}  // namespace

std::string CountryFreqMapParse::GetTvConfigPath() {
    const std::lock_guard<std::mutex> lock(mMutex);
    return tvConfigPathLocked();
}

bool CountryFreqMapParse::GetFreqTableNameByCountry(const std::string& path, _tv_country country,
                                                    FreqTableType type, AtscCableType cableType,
                                                    std::string& name, std::string* folder) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (path.empty()) {
        tvConfigPathLocked();
    } else {
        mTvConfigPath = path;
    }
    if (folder != nullptr) {
        *folder = mTvConfigPath;
    }
    std::string countryName;
    const bool known = mCountries.getCountryName(country, countryName);
    ALOGD("CountryFreqMapParse country index %d, success %d, name %s", static_cast<int>(country),
          known ? 1 : 0, countryName.c_str());
    return !countryName.empty() && lookUpLocked(countryName, type, cableType, name);
}

bool CountryFreqMapParse::GetFreqTableNameByCountryName(const std::string& countryName,
                                                        FreqTableType type, AtscCableType cableType,
                                                        std::string& name) {
    const std::lock_guard<std::mutex> lock(mMutex);
    return lookUpLocked(countryName, type, cableType, name);
}

bool CountryFreqMapParse::loadCountryFreqMapXML() {
    const std::lock_guard<std::mutex> lock(mMutex);
    return loadLocked();
}

const std::string& CountryFreqMapParse::tvConfigPathLocked() {
    if (mTvConfigPath.empty()) {
        mTvConfigPath = mPartitions().tvconfigs + kDefaultPlansFolder;
        ALOGD("GetTvConfigPath from TvPartitionPath: %s", mTvConfigPath.c_str());
    }
    return mTvConfigPath;
}

bool CountryFreqMapParse::lookUpLocked(const std::string& countryName, FreqTableType type,
                                       AtscCableType cableType, std::string& name) {
    ALOGD("coutryFreqMap size: %d", static_cast<int>(mCoutryFreqMap.size()));
    const bool loaded = mCoutryFreqMap.empty() && loadLocked();
    ALOGD("GetFreqTableNameByCountryName read success: %d", loaded ? 1 : 0);
    if (mCoutryFreqMap.empty()) {
        return loaded;
    }
    bool found = false;
    for (const CountryFreqMapEntry& entry : mCoutryFreqMap) {
        if (entry.countryName != countryName) {
            continue;
        }
        // If several blocks of a country have the table, the last one wins.
        if (const std::string* const table = tableOf(entry, type, cableType)) {
            name = *table;
            found = true;
        }
    }
    return found;
}

bool CountryFreqMapParse::loadLocked() {
    const std::string path = mTvConfigPath + kChannelMapFile;
    ALOGD("loadCountryFreqMapXML begin, country freq map size: %d, %s",
          static_cast<int>(mCoutryFreqMap.size()), path.c_str());
    mCoutryFreqMap.clear();
    const XmlFile file(path, mObserver);
    if (const char* const error = file.error()) {
        ALOGE("loadCountryFreqMapXML LoadFile fail, error %s", error);
        return false;
    }
    const tinyxml2::XMLElement* const first = file.first(element::kPlansOfCountry);
    file.tellIgnored(file.top(), first);
    std::vector<CountryFreqMapEntry> entries;
    for (const auto* block = first; block != nullptr; block = block->NextSiblingElement()) {
        addBlock(file, *block, entries);
    }
    // If memory runs out before, nothing counts as loaded.
    mCoutryFreqMap = std::move(entries);
    ALOGD("loadCountryFreqMapXML done, size %d", static_cast<int>(mCoutryFreqMap.size()));
    return true;
}

void CountryFreqMapParse::addBlock(const XmlFile& file, const tinyxml2::XMLElement& block,
                                   std::vector<CountryFreqMapEntry>& entries) {
    const char* const countryName = textOfChild(block, element::kCountryName);
    if (countryName == nullptr) {
        ALOGE("loadCountryFreqMapXML without country name");
        file.tellProblem(block, ProblemKind::NO_COUNTRY);
        file.tell(block, LineUse::IGNORED, {});
        return;
    }
    if (file.isObserved()) {
        tellBlock(file, block, countryName);
    }
    CountryFreqMapEntry entry;
    entry.countryName = countryName;
    entry.dtvAntenna = antennaOf(block, element::kDtvAntenna, "antena name");
    entry.atvAntenna = antennaOf(block, element::kAtvAntenna, "antena a name");
    entry.dtvCable = cableTablesOf(file, block, element::kDtvCable, countryName);
    entry.atvCable = cableTablesOf(file, block, element::kAtvCable, countryName);
    entries.push_back(std::move(entry));
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
