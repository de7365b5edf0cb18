#define LOG_TAG "MlkTvConfigs"

#include "tvconfigs/PropConfigEditor.h"

#include <log/log.h>

#include <cstdio>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

bool PropConfigEditor::Set(const char* key, const char* value) {
    if (key == nullptr || value == nullptr) {
        return false;
    }
    if (!mProperties.set(key, value)) {
        ALOGE("ERROR: Set property %s fail!", key);
        return false;
    }
    return true;
}

bool PropConfigEditor::Get(const char* key, char* value) const {
    if (key == nullptr || value == nullptr) {
        return false;
    }
    const std::string text = mProperties.get(key);
    snprintf(value, kValueSize, "%s", text.c_str());
    return !text.empty();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
