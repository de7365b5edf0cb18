#pragma once

#include <gtest/gtest.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>

#include <functional>
#include <string>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// An answer as text: "true", "17", "\"text\"".
inline std::string textOf(const OptionalBool& answer) {
    return answer.value ? "true" : "false";
}
inline std::string textOf(const OptionalInt32& answer) {
    return std::to_string(answer.value);
}
inline std::string textOf(const OptionalString& answer) {
    return '"' + std::string(answer.value) + '"';
}

/// Calls the method, in process or through a proxy; gives the answer's value as text. Fails the
/// test unless it answers exactly once, with success true.
template <typename Answer, typename Method, typename... Arguments>
std::string ask(IMlkFrameworkConfigs& service, Method method, Arguments... arguments) {
    std::vector<std::string> answers;
    const auto status = (service.*method)(arguments..., [&](const Answer& answer) {
        EXPECT_TRUE(answer.success);
        answers.push_back(textOf(answer));
    });
    EXPECT_TRUE(status.isOk()) << status.description();
    EXPECT_EQ(answers.size(), 1U);
    return answers.empty() ? "no answer" : answers[0];
}

inline std::string setForceStr(IMlkFrameworkConfigs& service, bool enabled) {
    return ask<OptionalBool>(service, &IMlkFrameworkConfigs::setForceStrEnabled, enabled);
}

inline std::string setWow(IMlkFrameworkConfigs& service, bool enabled) {
    return ask<OptionalBool>(service, &IMlkFrameworkConfigs::setWowEnabled, enabled);
}

/// One getter of the interface, as the tests want it to be.
struct GetterRow {
    const char* name;
    std::function<std::string(IMlkFrameworkConfigs&)> get;
    const char* property;      ///< null: none
    const char* defaultValue;  ///< its answer without the property
    const char* stored;        ///< what the property may hold
    const char* value;         ///< its answer then
};

/// All 23 getters: first those that a start reads from properties, in that order.
const std::vector<GetterRow>& getterRows();

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
