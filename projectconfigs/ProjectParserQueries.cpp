#include <android/log.h>

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "common/LineReader.h"
#include "common/Paths.h"
#include "projectconfigs/FileDelivery.h"
#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kTag = "MlkProjectConfigs";
constexpr size_t kListBufferSize = 256;

}  // namespace

std::string ProjectParser::getInfo(const ConfigKey& key) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    const ItemStore::Item item = mItems.find(key.category, key.key);
    return item != ItemStore::kNone ? std::string(mItems.valueOf(item)) : std::string();
}

bool ProjectParser::setInfo(const ConfigKey& key, std::string_view value) {
    const std::lock_guard<std::mutex> lock(mMutex);
    const ItemStore::Item item = mItems.find(key.category, key.key);
    if (item == ItemStore::kNone) {
        return false;
    }
    mItems.replace(item, value);
    return true;
}

std::map<std::string, std::string> ProjectParser::getInfosByCategory(
        const std::string& category) const {
    std::map<std::string, std::string> infos;
    const std::lock_guard<std::mutex> lock(mMutex);
    for (const ItemStore::Item item : mItems.itemsOf(category)) {
        const std::string_view key = mItems.keyOf(item);
        const std::string_view value = mItems.valueOf(item);
        infos.emplace(key, value);
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "getInfosByCategory, key:%s, value:%s",
                            key.data(), value.data());
    }
    return infos;
}

std::string ProjectParser::getCustomerId() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mCustomerId;
}

unsigned int ProjectParser::getProjectMaxIdx() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mProjectMaxIdx;
}

void ProjectParser::getProjectIniList(std::vector<std::string>& list) const {
    std::string path;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        path = mSysIniPath;
    }
    if (path.empty() || isMissing(path, __func__, __LINE__)) {
        return;
    }
    constexpr std::string_view kModel = "Model_";
    constexpr std::string_view kFolder = "model/";
    constexpr size_t kCutWithoutFolder = 5;
    const size_t before = list.size();
    LineReader reader(path, kListBufferSize, kTag);
    std::string_view line;
    while (reader.next(line)) {
        if (line.find(kModel) == std::string_view::npos) {
            continue;
        }
        const size_t folder = line.find(kFolder);
        std::string entry(line.substr(folder == std::string_view::npos ? kCutWithoutFolder
                                                                       : folder + kFolder.size()));
        entry.erase(std::remove(entry.begin(), entry.end(), '"'), entry.end());
        list.push_back(std::move(entry));
    }
    if (reader.failed()) {
        list.resize(before);
    }
}

std::vector<uint8_t> ProjectParser::getTvFile(const std::string& path) {
    std::vector<uint8_t> data;
    const size_t size = readForClient(path, [&](size_t wanted) -> uint8_t* {
        try {
            data.resize(wanted);
        } catch (const std::bad_alloc&) {
            __android_log_print(ANDROID_LOG_ERROR, kTag,
                                "%s: cannot be read: no memory for %zu bytes", path.c_str(),
                                wanted);
            return nullptr;
        }
        return data.data();
    });
    data.resize(size);
    return data;
}

bool ProjectParser::isFileExist(const std::string& path) {
    if (path.empty()) {
        return false;
    }
    const std::optional<std::string> file = withoutQuotes(path);
    const char* const name = (file ? *file : path).c_str();
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "isFileExist filePath:%s", name);
    if (file && pathExists(*file)) {
        return true;
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "isFileExist %s don't exist.", name);
    return false;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
