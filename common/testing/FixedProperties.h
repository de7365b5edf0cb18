#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "common/Decimal.h"
#include "common/Properties.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** Properties that a test keeps in memory. Flags are "true", numbers are decimal. One thread. */
class FixedProperties : public Properties {
  public:
    FixedProperties() = default;
    explicit FixedProperties(std::map<std::string, std::string> values)
        : mValues(std::move(values)) {}

    std::string get(const char* key) const override {
        const auto found = mValues.find(key);
        return found != mValues.end() ? found->second : "";
    }
    bool getBool(const char* key, bool defaultValue) const override {
        const std::string value = get(key);
        return value.empty() ? defaultValue : value == "true";
    }
    int32_t getInt32(const char* key, int32_t defaultValue) const override {
        const std::string value = get(key);
        return value.empty() ? defaultValue : parseDecimal(value);
    }
    bool set(const char* key, const char* value) override {
        mValues[key] = value;
        return true;
    }

  private:
    std::map<std::string, std::string> mValues;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
