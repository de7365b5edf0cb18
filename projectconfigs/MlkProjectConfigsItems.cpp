#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/Answer.h"
#include "common/Decimal.h"
#include "projectconfigs/MlkProjectConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using ::android::hardware::Void;

void MlkProjectConfigs::answerValue(const ConfigKey& key, const TextCallback& callback) const {
    const std::string value = mSet.items().getInfo(key);
    OptionalString answer{};
    clearPadding(answer);
    answer.success = true;
    // The value outlives the answer, so that no copy is needed.
    answer.value.setToExternal(value.c_str(), value.size());
    callback(answer);
}

void MlkProjectConfigs::answerItem(const ProjectItemRow& row, uint32_t section, uint32_t key,
                                   const TextCallback& callback) const {
    if (const std::optional<ConfigKey> item = itemOf(row, section, key)) {
        answerValue(*item, callback);
    }
}

void MlkProjectConfigs::answerItem(const ProjectItemRow& row, uint32_t section, uint32_t key,
                                   const FlagCallback& callback) const {
    answerItem(row, section, key, TextCallback([&](const OptionalString& text) {
                   callback({true, text.value == "true"});
               }));
}

Return<void> MlkProjectConfigs::getPowerOnMode(getPowerOnMode_cb _hidl_cb) {
    constexpr size_t kRow = projectItem("getPowerOnMode");
    constexpr const KnownItem& kItem = kKnownItems[kProjectItems[kRow].first];
    return answer<kRow>(TextCallback([&](const OptionalString& text) {
        const int32_t mode = parseDecimal(text.value.c_str());
        if (mode >= kItem.least && mode <= kItem.most) {
            answerWith(_hidl_cb, true, mode);
        }
    }));
}

Return<void> MlkProjectConfigs::getProjectMaxIdx(getProjectMaxIdx_cb _hidl_cb) {
    answerWith(_hidl_cb, true, static_cast<int32_t>(mSet.items().getProjectMaxIdx()));
    return Void();
}

Return<void> MlkProjectConfigs::getProjectIniList(getProjectIniList_cb _hidl_cb) {
    std::vector<std::string> list;
    mSet.items().getProjectIniList(list);
    _hidl_cb(hidl_vec<hidl_string>(list.begin(), list.end()));
    return Void();
}

Return<void> MlkProjectConfigs::getCustomerId(getCustomerId_cb _hidl_cb) {
    answerWith(_hidl_cb, true, mSet.items().getCustomerId());
    return Void();
}

Return<void> MlkProjectConfigs::getConfig(const ProjectConfigKey& key, getConfig_cb _hidl_cb) {
    answerValue({key.category.c_str(), key.key.c_str()}, _hidl_cb);
    return Void();
}

Return<void> MlkProjectConfigs::getConfigsByCategory(const hidl_string& category,
                                                     getConfigsByCategory_cb _hidl_cb) {
    hidl_vec<ConfigKeyValue> answer;
    if (category.c_str() != nullptr) {
        const auto infos = mSet.items().getInfosByCategory(category.c_str());
        answer.resize(infos.size());
        size_t i = 0;
        for (const auto& [key, value] : infos) {
            answer[i++] = {key, value};
        }
    }
    _hidl_cb(answer);
    return Void();
}

Return<void> MlkProjectConfigs::getTvconfigsPath(getTvconfigsPath_cb _hidl_cb) {
    answerWith(_hidl_cb, true, mPartitions.tvconfigs);
    return Void();
}

Return<void> MlkProjectConfigs::getTvdataPath(getTvdataPath_cb _hidl_cb) {
    answerWith(_hidl_cb, true, mPartitions.tvdata);
    return Void();
}

Return<void> MlkProjectConfigs::getImpdataPath(getImpdataPath_cb _hidl_cb) {
    answerWith(_hidl_cb, true, mPartitions.impdata);
    return Void();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
