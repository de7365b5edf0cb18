#include "tools/mlkctl/PropertyList.h"

#include <cutils/properties.h>

#include <algorithm>

namespace mlk::ctl {

Properties allProperties() {
    Properties properties;
    property_list([](const char* key, const char* value,
                     void* cookie) { static_cast<Properties*>(cookie)->emplace_back(key, value); },
                  &properties);
    std::sort(properties.begin(), properties.end());
    return properties;
}

}  // namespace mlk::ctl
