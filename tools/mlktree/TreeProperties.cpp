#include "tools/mlktree/TreeProperties.h"

#include <algorithm>
#include <limits>

#include "host/properties/PropertyStore.h"
#include "host/properties/PropertyValue.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Tree.h"

namespace mlk::tree {

TreeProperties::TreeProperties(std::string folder, const std::vector<std::string>& given)
    : mFolder(std::move(folder)), mIsKnown(isFolder(mFolder) || !given.empty()) {
    for (const std::string& property : given) {
        const size_t equals = property.find('=');
        const std::string key = property.substr(0, equals);
        if (equals == std::string::npos || !host::PropertyStore::isKey(key)) {
            throw UsageError("--prop " + property +
                             ": expected KEY=VALUE, as in ro.hardware=skerry");
        }
        const std::string value = property.substr(equals + 1);
        if (value.size() > kLongestProperty) {
            throw UsageError("--prop " + key + ": a value has at most " +
                             std::to_string(kLongestProperty) + " bytes");
        }
        mGiven[key] = value;
    }
}

std::string TreeProperties::get(const char* key) const {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto set = mSet.find(key);
        if (set != mSet.end()) {
            return set->second;
        }
    }
    const auto given = mGiven.find(key);
    return given != mGiven.end() ? given->second
                                 : host::PropertyStore(mFolder).get(key).value_or("");
}

bool TreeProperties::getBool(const char* key, bool defaultValue) const {
    return host::switchOf(get(key)).value_or(defaultValue);
}

int32_t TreeProperties::getInt32(const char* key, int32_t defaultValue) const {
    return static_cast<int32_t>(host::numberOf(get(key), std::numeric_limits<int32_t>::min(),
                                               std::numeric_limits<int32_t>::max(), defaultValue));
}

bool TreeProperties::set(const char* key, const char* value) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mSet[key] = value;
    return true;
}

std::vector<std::string> TreeProperties::keys() const {
    std::vector<std::string> keys = host::PropertyStore(mFolder).keys();
    for (const auto& [key, value] : mGiven) {
        keys.push_back(key);
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

bool TreeProperties::isGiven(const std::string& key) const {
    return mGiven.find(key) != mGiven.end();
}

}  // namespace mlk::tree
