#include "tvconfigs/PropConfigEditor.h"

#include <android/log.h>
#include <cutils/properties.h>

#include "tvconfigs/LogTag.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

static_assert(ConfigEditor::kValueSize == PROPERTY_VALUE_MAX);

bool PropConfigEditor::Set(const char* key, const char* value) {
    if (key == nullptr || value == nullptr) {
        return false;
    }
    if (property_set(key, value) != 0) {
        __android_log_print(ANDROID_LOG_ERROR, kTvConfigsTag, "ERROR: Set property %s fail!", key);
        return false;
    }
    return true;
}

bool PropConfigEditor::Get(const char* key, char* value) const {
    return key != nullptr && value != nullptr && property_get(key, value, nullptr) > 0;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
