// What the karaoke, key and DDC/CI files say, and how every auxiliary file is loaded.

#include <android/log.h>

#include <algorithm>
#include <cstring>

#include "common/Answer.h"
#include "common/Decimal.h"
#include "common/Paths.h"
#include "projectconfigs/MlkProjectConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::Return;

namespace {

constexpr const char* kTag = "MlkProjectConfigs";

}  // namespace

bool MlkProjectConfigs::assign(Name& name, std::string_view text) {
    if (text.size() > name.size()) {
        return false;
    }
    name.fill('\0');
    std::copy(text.begin(), text.end(), name.begin());
    return true;
}

std::string MlkProjectConfigs::textOf(const Name& name) {
    // A name may fill its buffer to the last byte.
    return {name.data(), strnlen(name.data(), name.size())};
}

void MlkProjectConfigs::loadAuxiliaryFile(const AuxiliaryFile& file) {
    const std::string path = GetValue(file.category, file.key);
    if (file.pathLabel != nullptr) {
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "%s%s", file.pathLabel, path.c_str());
    }
    if (path.empty()) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "%s", file.missing);
        return;
    }
    IniProjectParser& parser = *(this->*file.parser);
    parser.update(path.c_str());
    parser.dumpDetail();
    Name& name = this->*file.name;
    const std::string_view fileName = fileNameOf(path);
    if (fileName.size() < path.size() && fileName.size() < name.size()) {
        assign(name, fileName);
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "%s%s", file.nameLabel, name.data());
    }
}

void MlkProjectConfigs::GetKaraokeConfigPathInternal() {
    loadAuxiliaryFile({"[KARAOKE]", "KARAOKE_CONFIG_PATH", &MlkProjectConfigs::mKaraokeIniParser,
                       &MlkProjectConfigs::mKarakeName,
                       "mKarakeName:", "Can't get karaoke config path!"});
}

void MlkProjectConfigs::GetGlobalKeyConfigPathInternal() {
    loadAuxiliaryFile({"[KEY]", "KEY_CONFIG_PATH", &MlkProjectConfigs::mGlobalKeyIniParser,
                       &MlkProjectConfigs::mGlobalKeyName,
                       "mGlobalKeyName:", "Can't get key config path!"});
}

void MlkProjectConfigs::GetCustomerDdcciConfigPathInternal() {
    loadAuxiliaryFile({"[DDCCI]", "CUSTOMER_DDCCI_PATH",
                       &MlkProjectConfigs::mCustomerDdcciIniParser,
                       &MlkProjectConfigs::mCustomerDdcciName,
                       "[DDCCI] mCustomerDdcciName: ", "Can't get Customer DDCCI config path!",
                       "[DDCCI] customerDdcciConfigPath = "});
}

Return<void> MlkProjectConfigs::getKaraokeConfig(const ProjectConfigKey& key,
                                                 getKaraokeConfig_cb _hidl_cb) {
    const std::string text = mKaraokeIniParser->getInfo(mKarakeName.data(), nameOf(key));
    const int32_t number = parseDecimal(text);
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "%s: %s: %i", __func__, text.c_str(), number);
    answerWith(_hidl_cb, true, number);
    return {};
}

Return<void> MlkProjectConfigs::getGlobalKeyConfig(const ProjectConfigKey& key,
                                                   getGlobalKeyConfig_cb _hidl_cb) {
    const std::string text = mGlobalKeyIniParser->getInfo(mGlobalKeyName.data(), nameOf(key));
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "%s: %s: %s: %s", __func__, key.category.c_str(),
                        key.key.c_str(), text.c_str());
    answerWith(_hidl_cb, true, text);
    return {};
}

std::string MlkProjectConfigs::customerDdcciConfig(const ProjectConfigKey& key) const {
    return mCustomerDdcciIniParser->getInfo(mCustomerDdcciName.data(), nameOf(key));
}

Return<void> MlkProjectConfigs::getCustomerDdcciConfigInt(const ProjectConfigKey& key,
                                                          getCustomerDdcciConfigInt_cb _hidl_cb) {
    const std::string text = customerDdcciConfig(key);
    const int32_t number = parseDecimal(text);
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "[DDCCI] %s: %s: %s: %s, %d", __func__,
                        key.category.c_str(), key.key.c_str(), text.c_str(), number);
    answerWith(_hidl_cb, true, number);
    return {};
}

Return<void> MlkProjectConfigs::getCustomerDdcciConfigString(
        const ProjectConfigKey& key, getCustomerDdcciConfigString_cb _hidl_cb) {
    const std::string text = customerDdcciConfig(key);
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "[DDCCI] %s: %s: %s: %s", __func__,
                        key.category.c_str(), key.key.c_str(), text.c_str());
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "[DDCCI] %s", text.c_str());
    answerWith(_hidl_cb, true, text);
    return {};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
