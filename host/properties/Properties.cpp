// Implements the functions of <cutils/properties.h>, which documents them, over the property store
// of this process's set. Every call looks the set up: that is one environment variable, and tests
// have several sets.

#include <cutils/properties.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

#include "host/properties/PropertyStore.h"
#include "host/properties/PropertyValue.h"

using mlk::host::PropertyStore;

namespace {

std::string valueOf(const char* key) {
    return key == nullptr ? "" : PropertyStore::ofThisSet().get(key).value_or("");
}

template <typename Integer>
Integer integerOf(const char* key, Integer defaultValue) {
    return static_cast<Integer>(
            mlk::host::numberOf(valueOf(key), std::numeric_limits<Integer>::min(),
                                std::numeric_limits<Integer>::max(), defaultValue));
}

}  // namespace

int property_get(const char* key, char* value, const char* default_value) {
    std::string text = valueOf(key);
    if (text.empty() && default_value != nullptr) {
        text.assign(default_value, std::min<size_t>(strlen(default_value), PROPERTY_VALUE_MAX - 1));
    }
    memcpy(value, text.c_str(), text.size() + 1);
    return static_cast<int>(text.size());
}

int8_t property_get_bool(const char* key, int8_t default_value) {
    // A caller may have a default that is neither 0 nor 1.
    const std::optional<bool> value = mlk::host::switchOf(valueOf(key));
    return value ? static_cast<int8_t>(*value) : default_value;
}

int64_t property_get_int64(const char* key, int64_t default_value) {
    return integerOf(key, default_value);
}

int32_t property_get_int32(const char* key, int32_t default_value) {
    return integerOf(key, default_value);
}

int property_set(const char* key, const char* value) {
    const bool done =
            key != nullptr && PropertyStore::ofThisSet().set(key, value == nullptr ? "" : value);
    return done ? 0 : -1;
}

int property_list(void (*propfn)(const char* key, const char* value, void* cookie), void* cookie) {
    const PropertyStore store = PropertyStore::ofThisSet();
    for (const std::string& key : store.keys()) {
        // A property may be removed after its name was read.
        if (const auto value = store.get(key)) {
            propfn(key.c_str(), value->c_str(), cookie);
        }
    }
    return 0;
}
