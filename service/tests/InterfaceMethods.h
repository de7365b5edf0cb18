#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "host/testing/CallMethod.h"

namespace vendor::morlak::mlkconfigs::V1_0 {

/// One method of an interface. `call` calls it with default arguments; gives whether the call went
/// through, and counts its answers.
template <typename Interface>
struct MethodRow {
    uint32_t code;
    const char* name;
    std::function<bool(Interface& object, int* answers)> call;
};

/// All methods of the interface in their declared order.
template <typename Interface>
const std::vector<MethodRow<Interface>>& methodRows();

template <>
const std::vector<MethodRow<IMlkTvConfigs>>& methodRows();
template <>
const std::vector<MethodRow<IMlkFrameworkConfigs>>& methodRows();
template <>
const std::vector<MethodRow<IMlkProjectConfigs>>& methodRows();

template <typename Interface, typename... Arguments>
auto callerOf(::android::hardware::Return<void> (Interface::*method)(Arguments...)) {
    return [method](Interface& object, int* answers) {
        return ::mlk::testing::callWithDefaults(object, method, [&](const auto&) { ++*answers; })
                .isOk();
    };
}

}  // namespace vendor::morlak::mlkconfigs::V1_0
