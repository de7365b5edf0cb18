#include "tvconfigs/PropConfigEditor.h"

#include <cutils/properties.h>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

static_assert(ConfigEditor::kValueSize == PROPERTY_VALUE_MAX);

bool PropConfigEditor::Set(const char* key, const char* value) {
    return key != nullptr && value != nullptr && property_set(key, value) == 0;
}

bool PropConfigEditor::Get(const char* key, char* value) const {
    return key != nullptr && value != nullptr && property_get(key, value, nullptr) > 0;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
