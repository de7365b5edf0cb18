#include "common/ConfigKey.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

bool ConfigKey::operator<(const ConfigKey& other) const {
    if (category == other.category) {
        return CompareStr(key, other.key);
    }
    return CompareStr(category, other.category);
}

bool ConfigKey::CompareStr(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return a.size() < b.size();
    }
    return a.compare(b) < 0;  // char_traits compares bytes as unsigned
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
