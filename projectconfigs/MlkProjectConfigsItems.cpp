#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/Answer.h"
#include "common/ConfigKey.h"
#include "common/Decimal.h"
#include "projectconfigs/ClientText.h"
#include "projectconfigs/MlkProjectConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using ::android::hardware::Void;

namespace {

// Answers with the value of an item; empty if there is no such item.
void answerValue(const ProjectParser& items, const ConfigKey& key,
                 const std::function<void(const OptionalString&)>& callback) {
    const std::string value = items.getInfo(key);
    OptionalString answer{};
    clearPadding(answer);
    answer.success = true;
    // The value outlives the answer, so that no copy is needed.
    answer.value.setToExternal(value.c_str(), value.size());
    callback(answer);
}

}  // namespace

Return<void> MlkProjectConfigs::answer(const ProjectItemRow& row, const TextCallback& callback,
                                       uint32_t section, uint32_t key) const {
    if (const std::optional<ConfigKey> item = itemOf(row, section, key)) {
        answerValue(mSet.items(), *item, callback);
    }
    return Void();
}

Return<void> MlkProjectConfigs::answer(const ProjectItemRow& row,
                                       const FlagCallback& callback) const {
    return answer(row, TextCallback([&](const OptionalString& text) {
                      callback({true, text.value == "true"});
                  }));
}

Return<void> MlkProjectConfigs::getHDMIEdidPath(int32_t port, EdidVer version,
                                                getHDMIEdidPath_cb _hidl_cb) {
    constexpr size_t kRow = projectItem("getHDMIEdidPath");
    return answer(kProjectItems[kRow], _hidl_cb, uint32_t(port), uint32_t(version));
}

Return<void> MlkProjectConfigs::getHDMIHdcpPath(HdcpVer version, getHDMIHdcpPath_cb _hidl_cb) {
    constexpr size_t kRow = projectItem("getHDMIHdcpPath");
    return answer(kProjectItems[kRow], _hidl_cb, uint32_t(version));
}

Return<void> MlkProjectConfigs::getPowerOnMode(getPowerOnMode_cb _hidl_cb) {
    constexpr size_t kRow = projectItem("getPowerOnMode");
    constexpr KnownItem kItem = kKnownItems[kProjectItems[kRow].first];
    return answer(kProjectItems[kRow], TextCallback([&](const OptionalString& text) {
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
    answerValue(mSet.items(), nameOf(key), _hidl_cb);
    return Void();
}

Return<void> MlkProjectConfigs::getConfigsByCategory(const hidl_string& category,
                                                     getConfigsByCategory_cb _hidl_cb) {
    hidl_vec<ConfigKeyValue> answer;
    if (category.c_str() != nullptr) {
        const auto infos = mSet.items().getInfosByCategory(std::string(untilNul(category)));
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
