#pragma once

#include <gtest/gtest.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/testing/Ask.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** An answer as text: "true", "17", "\"text\"". */
inline std::string textOf(const OptionalBool& answer) {
    return answer.value ? "true" : "false";
}
inline std::string textOf(const OptionalInt32& answer) {
    return std::to_string(answer.value);
}
inline std::string textOf(const OptionalString& answer) {
    return '"' + std::string(answer.value) + '"';
}

/**
 * Calls the method, in process or through a proxy; gives the answer's value as text. Fails the test
 * unless the method answers exactly once, with success true.
 */
template <typename Answer, typename Method, typename... Arguments>
std::string ask(IMlkFrameworkConfigs& service, Method method, Arguments... arguments) {
    const std::optional<Answer> answer = ::mlk::testing::ask(service, method, arguments...);
    EXPECT_TRUE(answer && answer->success);
    return answer ? textOf(*answer) : "no answer";
}

inline std::string setForceStr(IMlkFrameworkConfigs& service, bool enabled) {
    return ask<OptionalBool>(service, &IMlkFrameworkConfigs::setForceStrEnabled, enabled);
}

inline std::string setWow(IMlkFrameworkConfigs& service, bool enabled) {
    return ask<OptionalBool>(service, &IMlkFrameworkConfigs::setWowEnabled, enabled);
}

/** One getter of the interface, with its expected answers. */
struct GetterRow {
    const char* name;
    std::function<std::string(IMlkFrameworkConfigs&)> get;
    const char* property;     /**< null: none */
    const char* defaultValue; /**< the answer without the property */
    const char* stored;       /**< a value of the property */
    const char* value;        /**< the answer with that value */
};

/** All 23 getters: first those that a start reads from properties, in that order. */
const std::vector<GetterRow>& getterRows();

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
