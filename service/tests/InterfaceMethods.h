#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "host/testing/CallMethod.h"
#include "service/tests/RandomArguments.h"

namespace vendor::morlak::mlkconfigs::V1_0 {

/**
 * One method of an interface. `call` calls it with default arguments, gives true if the call
 * succeeded, and counts its answers. `callAnyhow` calls it with random arguments, and gives false
 * if the object was dead.
 */
template <typename Interface>
struct MethodRow {
    uint32_t code;
    const char* name;
    std::function<bool(Interface& object, int* answers)> call;
    std::function<bool(Interface& object, RandomArguments& arguments)> callAnyhow;
};

/** All methods of the interface in their declared order. Generated: service/interfaces/methods. */
template <typename Interface>
const std::vector<MethodRow<Interface>>& methodRows();

template <>
const std::vector<MethodRow<IMlkTvConfigs>>& methodRows();
template <>
const std::vector<MethodRow<IMlkFrameworkConfigs>>& methodRows();
template <>
const std::vector<MethodRow<IMlkProjectConfigs>>& methodRows();

template <typename Interface, typename... Arguments>
auto anyhowCallerOf(::android::hardware::Return<void> (Interface::*method)(Arguments...)) {
    return [method](Interface& object, RandomArguments& random) {
        int answers = 0;
        const auto status = ::mlk::testing::callWith(
                object, method, [&](auto& argument) { random(argument); },
                [&](const auto&) { ++answers; });
        return status.isOk() ? answers == 1 : !status.isDeadObject() && answers == 0;
    };
}

template <typename Interface, typename... Arguments>
auto callerOf(::android::hardware::Return<void> (Interface::*method)(Arguments...)) {
    return [method](Interface& object, int* answers) {
        return ::mlk::testing::callWithDefaults(object, method, [&](const auto&) { ++*answers; })
                .isOk();
    };
}

}  // namespace vendor::morlak::mlkconfigs::V1_0
