#pragma once

#include <gtest/gtest.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/testing/Ask.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** An answer as text: "true", "4"; after "refused " if success is false. */
inline std::string textOf(const OptionalBool& answer) {
    return std::string(answer.success ? "" : "refused ") + (answer.value ? "true" : "false");
}
inline std::string textOf(const OptionalInt32& answer) {
    return (answer.success ? "" : "refused ") + std::to_string(answer.value);
}

template <typename Answer>
using Callback = std::function<void(const Answer&)>;
template <typename Answer, typename... Arguments>
using Method = ::android::hardware::Return<void> (IMlkTvConfigs::*)(Arguments..., Callback<Answer>);

/** Calls the method; gives its answer. Fails the test unless there is exactly one. */
template <typename Answer, typename Result, typename... Parameters, typename... Arguments>
std::string askFor(IMlkTvConfigs& service, Result (IMlkTvConfigs::*method)(Parameters...),
                   Arguments&&... arguments) {
    const std::optional<Answer> answer = ::mlk::testing::ask(service, method, arguments...);
    EXPECT_TRUE(answer.has_value());
    return answer ? textOf(*answer) : "no answer";
}

/** A flag of the interface, as the tests want it to be. */
struct TvFlag {
    const char* name; /**< as dumped */
    ConfigType type;
    Method<OptionalBool> getter;
    Method<OptionalBool, bool> setter;
    const char* key;
    const char* master; /**< key of the flag without which it is loaded as false; null: none */
    bool isCaption = false;

    std::string get(IMlkTvConfigs& service) const { return askFor<OptionalBool>(service, getter); }
    std::string set(IMlkTvConfigs& service, bool enabled) const {
        return askFor<OptionalBool>(service, setter, enabled);
    }
};

/** All 24, in the order of their types. */
const std::vector<TvFlag>& tvFlags();

/** The flag with that key. */
const TvFlag& tvFlag(const std::string& key);

/** A system of the interface. */
struct TvSystem {
    const char* name; /**< as dumped */
    Method<OptionalInt32> getter;
    Method<OptionalInt32, int32_t> setter;
    const char* key;
    int32_t least;
    int32_t most;

    std::string get(IMlkTvConfigs& service) const { return askFor<OptionalInt32>(service, getter); }
    std::string set(IMlkTvConfigs& service, int32_t system) const {
        return askFor<OptionalInt32>(service, setter, system);
    }
};

/** The analogue one and the digital one. */
const std::vector<TvSystem>& tvSystems();

inline std::string getFlag(IMlkTvConfigs& service, ConfigType type) {
    return askFor<OptionalBool>(service, &IMlkTvConfigs::getFlag, type);
}
inline std::string setFlag(IMlkTvConfigs& service, ConfigType type, bool enabled) {
    return askFor<OptionalBool>(service, &IMlkTvConfigs::setFlag, type, enabled);
}
inline std::string reload(IMlkTvConfigs& service, const ::android::hardware::hidl_string& path) {
    return askFor<OptionalBool>(service, &IMlkTvConfigs::reloadTvConfig, path);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
