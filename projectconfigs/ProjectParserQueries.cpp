#define LOG_TAG "MlkProjectConfigs"

#include <log/log.h>

#include <algorithm>
#include <utility>

#include "common/LineReader.h"
#include "common/Paths.h"
#include "projectconfigs/ChainKeywords.h"
#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

std::string ProjectParser::getInfo(const ConfigKey& key) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    const ItemStore::Item item = mItems.find(key.category, key.key);
    return item != ItemStore::kNone ? std::string(mItems.valueOf(item)) : std::string();
}

void ProjectParser::setInfos(const ItemStore& values) {
    const std::vector<ItemStore::Item>& given = values.inOrder();
    const std::lock_guard<std::mutex> lock(mMutex);
    std::vector<ItemStore::Item> known;
    known.reserve(given.size());
    for (const ItemStore::Item value : given) {
        known.push_back(mItems.find(values.sectionOf(value), values.keyOf(value)));
        if (known.back() != ItemStore::kNone) {
            mItems.makeRoom(known.back(), values.valueOf(value).size());
        }
    }
    // From here on, nothing allocates memory.
    for (size_t i = 0; i < given.size(); ++i) {
        const ItemStore::Item value = given[i];
        const ItemStore::Item item = known[i];
        if (item != ItemStore::kNone) {
            mItems.replace(item, values.valueOf(value));
        }
        ALOGD("\t%s:%s=%s", values.sectionOf(value).data(), values.keyOf(value).data(),
              item != ItemStore::kNone ? mItems.valueOf(item).data() : "");
    }
}

std::map<std::string, std::string> ProjectParser::getInfosByCategory(
        const std::string& category) const {
    std::map<std::string, std::string> infos;
    const std::lock_guard<std::mutex> lock(mMutex);
    for (const ItemStore::Item item : mItems.itemsOf(category)) {
        const std::string_view key = mItems.keyOf(item);
        const std::string_view value = mItems.valueOf(item);
        infos.emplace(key, value);
        ALOGD("getInfosByCategory, key:%s, value:%s", key.data(), value.data());
    }
    return infos;
}

std::string ProjectParser::getCustomerId() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mSources.mCustomerId;
}

unsigned int ProjectParser::getProjectMaxIdx() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mProjectMaxIdx;
}

void ProjectParser::getProjectIniList(std::vector<std::string>& list) const {
    std::string path;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        path = mSources.mSysIniPath;
    }
    if (path.empty() || ProjectFileReader::isMissing(path, __func__, __LINE__)) {
        return;
    }
    constexpr size_t kCutWithoutFolder = 5;
    const size_t before = list.size();
    LineReader reader(path, kListBufferSize, LOG_TAG);
    std::string_view line;
    while (reader.next(line)) {
        if (line.find(keyword::kModel) == std::string_view::npos) {
            continue;
        }
        const size_t folder = line.find(keyword::kModelFolder);
        std::string entry(line.substr(folder == std::string_view::npos
                                              ? kCutWithoutFolder
                                              : folder + keyword::kModelFolder.size()));
        entry.erase(std::remove(entry.begin(), entry.end(), '"'), entry.end());
        list.push_back(std::move(entry));
    }
    if (reader.failed()) {
        list.resize(before);
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
