#define LOG_TAG "MlkProjectConfigs"

#include "regional/NameTable.h"

#include <log/log.h>

#include <algorithm>
#include <mutex>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr int32_t kValueOfAdded = 0;

}  // namespace

int32_t NameTable::valueOf(std::string_view name) {
    if (const NamedValue* row = rowOf(name)) {
        return row->value;
    }
    const std::lock_guard<std::shared_mutex> lock(mMutex);
    if (mAdded.size() < kMostAdded && mAdded.emplace(name).second && mAdded.size() == kMostAdded) {
        ALOGE("%zu unknown names are kept, the last is %.*s; further ones are not", kMostAdded,
              static_cast<int>(name.size()), name.data());
    }
    return kValueOfAdded;
}

std::optional<int32_t> NameTable::find(std::string_view name) const {
    if (const NamedValue* row = rowOf(name)) {
        return row->value;
    }
    const std::shared_lock<std::shared_mutex> lock(mMutex);
    return mAdded.find(name) != mAdded.end() ? std::optional(kValueOfAdded) : std::nullopt;
}

bool NameTable::firstNameOf(int32_t value, std::string& name) const {
    const NamedValue* const end = mRows + mCount;
    const NamedValue* const row =
            std::find_if(mRows, end, [value](const NamedValue& r) { return r.value == value; });
    if (value == kValueOfAdded) {
        const std::shared_lock<std::shared_mutex> lock(mMutex);
        if (!mAdded.empty() && (row == end || *mAdded.begin() < row->name)) {
            name = *mAdded.begin();
            return true;
        }
    }
    if (row == end) {
        return false;
    }
    name = row->name;
    return true;
}

const NamedValue* NameTable::rowOf(std::string_view name) const {
    const NamedValue* const end = mRows + mCount;
    const NamedValue* const row = std::lower_bound(
            mRows, end, name, [](const NamedValue& r, std::string_view n) { return r.name < n; });
    return row != end && row->name == name ? row : nullptr;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
