#include "tests/vts/PlainSet.h"

#include <TvPartitionPath.h>
#include <cutils/properties.h>
#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "projectconfigs/testing/PlainRules.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

namespace {

constexpr uint32_t kProjectWithoutFile = 1;
constexpr size_t kNameSize = 128;

std::string fileName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

bool exists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

}  // namespace

int32_t numberOf(const std::string& text) {
    return static_cast<int32_t>(strtoll(text.c_str(), nullptr, 10));
}

std::string propertyOf(const std::string& key) {
    char value[PROPERTY_VALUE_MAX] = {};
    property_get(key.c_str(), value, "");
    return value;
}

std::string AuxiliaryFile::value(const plain::Items::key_type& key) const {
    const auto item = items.find(key);
    return item != items.end() ? item->second : "";
}

PlainSet::PlainSet()
    : tvconfigs(TvPartitionPath::GetInstance()->GetTvconfigsPath()),
      tvdata(TvPartitionPath::GetInstance()->GetTvdataPath()),
      impdata(TvPartitionPath::GetInstance()->GetImpdataPath()),
      chain(tvdata, tvconfigs, impdata) {
    const uint32_t index = exists(projectIdPath())
                                   ? plain::projectIdOf(plain::contentOf(projectIdPath()))
                                   : kProjectWithoutFile;
    projectId = static_cast<int32_t>(index);
    mBoardId = plain::boardIdOf(plain::contentOf(impdata + "/board_id.bin"));
    chain.update(tvconfigs + "/customer.ini", projectId, mBoardId);
    mPanelName = loadAudioFile(value("[AUDIO]", "AUDIO_CONFIG_PATH"));
    mICName = loadAudioFile(value("[AUDIO]", "AUDIO_CONFIG_IC_PATH"));
    mAvrDefaultName = loadAudioFile(value("[AUDIO]", "AUDIO_CONFIG_AVR_PATH"));
    mHardwareName = loadAudioFile(tvconfigs + "/audio/audio_" + propertyOf("ro.hardware") + ".ini");
    karaoke = namedFile("[KARAOKE]", "KARAOKE_CONFIG_PATH");
    globalKeys = namedFile("[KEY]", "KEY_CONFIG_PATH");
    ddcci = namedFile("[DDCCI]", "CUSTOMER_DDCCI_PATH");
    applyCountry(-1);
}

std::string PlainSet::value(const char* category, const char* key) const {
    const auto item = items().find({category, key});
    return item != items().end() ? item->second : "";
}

void PlainSet::selectProject(int32_t index) {
    projectId = index;
    chain.update(tvconfigs + "/customer.ini", index, "");
}

void PlainSet::readProjectAgain() {
    chain.update(tvconfigs + "/customer.ini", projectId, mBoardId);
}

int32_t PlainSet::savedCountry() const {
    return plain::countryIdOf(plain::contentOf(countryIdPath()));
}

void PlainSet::applyCountry(int32_t country) {
    const std::string file = value("[COUNTRY]", "tvSysMap");
    if (file.empty()) {
        return;
    }
    const plain::TvSystems systems{file, tvconfigs, tvdata};
    if (country == -1) {
        country = exists(countryIdPath()) ? savedCountry() : systems.firstCountry(mSystemCountries);
    }
    if (country == -1) {
        return;
    }
    for (const auto& [name, text] : systems.itemsOf(country, mSystemCountries)) {
        chain.setInfo(name, text);
    }
}

// Only the first loading of a file counts. A file without items is not kept.
std::string PlainSet::loadAudioFile(const std::string& path) {
    const std::string name = fileName(path);
    const plain::Items items = plain::auxiliaryItems(plain::contentOf(path));
    if (!items.empty()) {
        mAudioFiles.insert({name, items});
    }
    return path.find('/') != std::string::npos && name.size() < kNameSize ? name : "";
}

std::string PlainSet::audioValue(const std::string& name, const plain::Items::key_type& key) const {
    const auto file = mAudioFiles.find(name);
    return file != mAudioFiles.end() ? AuxiliaryFile{name, file->second}.value(key) : "";
}

std::vector<plain::Items::key_type> PlainSet::audioKeys() const {
    plain::Items all;
    for (const auto& [name, items] : mAudioFiles) {
        all.insert(items.begin(), items.end());
    }
    std::vector<plain::Items::key_type> keys;
    for (const auto& [key, value] : all) {
        keys.push_back(key);
    }
    return keys;
}

AuxiliaryFile PlainSet::namedFile(const char* category, const char* key) const {
    const std::string path = value(category, key);
    const std::string name = fileName(path);
    if (path.find('/') == std::string::npos || name.size() >= kNameSize) {
        return {};
    }
    return {name, plain::auxiliaryItems(plain::contentOf(path))};
}

AuxiliaryFile PlainSet::avrFile(const std::string& name) const {
    const auto loaded = mAudioFiles.find(name);
    if (loaded != mAudioFiles.end()) {
        return {name, loaded->second};
    }
    return {name, plain::auxiliaryItems(plain::contentOf(avrFolder() + name))};
}

std::vector<std::pair<std::string, std::string>> PlainSet::avrs() const {
    const std::string start = "AVR_";
    const std::string end = ".ini";
    std::vector<std::pair<std::string, std::string>> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(avrFolder().c_str()), &closedir);
    const dirent* entry = nullptr;
    while (folder != nullptr && (entry = readdir(folder.get())) != nullptr) {
        const std::string name = entry->d_name;
        if (name.compare(0, start.size(), start) != 0 || name.size() < start.size() + end.size() ||
            name.compare(name.size() - end.size(), end.size(), end) != 0 ||
            avrFolder().size() + name.size() >= kNameSize) {
            continue;
        }
        // Any division of the name into two parts gives the same name.
        const std::string parts =
                name.substr(start.size(), name.size() - start.size() - end.size());
        const size_t middle = parts.find('_');
        if (middle != std::string::npos && middle > 0 && middle + 1 < parts.size()) {
            found.emplace_back(parts.substr(0, middle), parts.substr(middle + 1));
        }
    }
    return found;
}

std::string PlainSet::avrFolder() const {
    const std::string path = value("[AUDIO]", "AUDIO_CONFIG_AVR_PATH");
    return path.substr(0, path.rfind('/') + 1);
}

int32_t PlainSet::audioDelay(const plain::Items::key_type& key, bool arc,
                             const AuxiliaryFile& avr) const {
    std::vector<std::string> values = {audioValue(mPanelName, key), audioValue(mICName, key),
                                       audioValue(mHardwareName, key)};
    if (arc) {
        values.insert(values.end(), {audioValue(mAvrDefaultName, key), avr.value(key)});
    }
    uint32_t sum = 0;
    for (const std::string& value : values) {
        sum += static_cast<uint32_t>(numberOf(value));
    }
    return static_cast<int32_t>(sum);
}

std::string PlainSet::dump(const std::vector<std::string>& avrNames) const {
    std::map<std::string, plain::Items> files = mAudioFiles;
    for (const std::string& name : avrNames) {
        files.insert({name, avrFile(name).items});
    }
    std::string text = "ProjectConfigs:\n" + chain.dump() +
                       "Audio configuration file: \n  IniProjectParser deatil:\n";
    for (const auto& [name, items] : files) {
        text += "    File:" + name + "\n" + plain::dumpOf(items, "        ");
    }
    return text;
}

std::vector<std::string> PlainSet::furtherAudioFiles(const std::string& dump) const {
    const std::string mark = "\n    File:AVR_";
    std::vector<std::string> names;
    const size_t audio = std::min(dump.find("\nAudio configuration file: \n"), dump.size());
    for (size_t at = dump.find(mark, audio); at != std::string::npos;
         at = dump.find(mark, at + 1)) {
        const size_t start = at + mark.size() - 4;
        const std::string name = dump.substr(start, dump.find('\n', start) - start);
        if (mAudioFiles.count(name) == 0) {
            names.push_back(name);
        }
    }
    return names;
}

std::string PlainSet::tvConfigPath() const {
    const std::string path = value("[LiveTV]", "TvConfig");
    const bool readable = access(path.c_str(), R_OK) == 0;
    constexpr size_t kMost = 127;
    return (readable ? path : tvconfigs + "/tv.config").substr(0, kMost);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
