#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/vts/Ask.h"
#include "tests/vts/PlainSet.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

/** One flag of IMlkTvConfigs. */
struct TvFlagRow {
    using Callback = std::function<void(const OptionalBool&)>;
    using Getter = ::android::hardware::Return<void> (IMlkTvConfigs::*)(Callback);
    using Setter = ::android::hardware::Return<void> (IMlkTvConfigs::*)(bool, Callback);

    ConfigType type;
    const char* getterName;
    Getter getter;
    const char* setterName;
    Setter setter;
    const char* key;
    ConfigType master; /**< a start loads this flag as false without that one; its own type: no
                          master */
};

/** All flags, each after its master. */
const std::vector<TvFlagRow>& tvFlagRows();

inline constexpr const char* kAtvSystemKey = "persist.vendor.mlk.tv.atv_system";
inline constexpr const char* kDtvSystemKey = "persist.vendor.mlk.tv.dtv_system";

/** The values that a start loads from the TV feature file and the properties. */
struct PlainFeatures {
    explicit PlainFeatures(const std::string& tvConfigPath);

    int32_t atvSystem = 0;
    int32_t dtvSystem = 0;
    std::map<ConfigType, bool> flags;
};

/** A value of the TV feature file; false if the file does not have the key. */
bool tvFileValue(const std::string& tvConfigPath, const std::string& key, std::string& value);

/** Every getter, and getFlag for every number around the enumeration. */
Questions tvQuestions(const ::android::sp<IMlkTvConfigs>& service, const PlainFeatures& features);

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
