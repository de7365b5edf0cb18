#include "platform/Platform.h"

#include <TvPartitionPath.h>
#include <cutils/properties.h>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

class SystemProperties : public Properties {
  public:
    std::string get(const char* key) const override {
        char value[PROPERTY_VALUE_MAX];
        const int length = property_get(key, value, "");
        return {value, static_cast<size_t>(length > 0 ? length : 0)};
    }
    bool getBool(const char* key, bool defaultValue) const override {
        return property_get_bool(key, defaultValue ? 1 : 0) != 0;
    }
    int32_t getInt32(const char* key, int32_t defaultValue) const override {
        return property_get_int32(key, defaultValue);
    }
    bool set(const char* key, const char* value) override { return property_set(key, value) == 0; }
};

}  // namespace

Partitions systemPartitions() {
    const TvPartitionPath& paths = *TvPartitionPath::GetInstance();
    Partitions partitions;
    partitions.impdata = paths.GetImpdataPath();
    partitions.tvdata = paths.GetTvdataPath();
    partitions.tvconfigs = paths.GetTvconfigsPath();
    return partitions;
}

Properties& systemProperties() {
    // Never destroyed: threads of the pool may still answer calls while the process exits.
    static auto& properties = *new SystemProperties;
    return properties;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
