#pragma once

#include <gtest/gtest.h>
#include <hidl/Status.h>

#include <functional>
#include <optional>
#include <tuple>
#include <utility>

namespace mlk::testing {

namespace details {

template <typename Answer>
Answer answerOf(const std::function<void(const Answer&)>&);

/** What a method with these parameters, its callback the last of them, answers. */
template <typename... Parameters>
using AnswerOf = decltype(answerOf(
        std::declval<
                std::tuple_element_t<sizeof...(Parameters) - 1, std::tuple<Parameters...>>>()));

}  // namespace details

/**
 * Calls a method of a HIDL interface, in process or through a proxy, and captures its answer:
 *
 *     const std::optional<OptionalString> panel = ask(service, &IMlkProjectConfigs::getPanelName);
 *
 * Fails the test if the call fails or is answered more than once.
 *
 * @param service    an object of the interface, or a proxy of one
 * @param method     the method; its last parameter is the callback
 * @param arguments  the other parameters
 * @return the answer; nothing if the method did not call its callback
 */
template <typename Object, typename Interface, typename... Parameters, typename... Arguments>
std::optional<details::AnswerOf<Parameters...>> ask(
        Object& service, ::android::hardware::Return<void> (Interface::*method)(Parameters...),
        const Arguments&... arguments) {
    std::optional<details::AnswerOf<Parameters...>> got;
    int answers = 0;
    const auto status = (service.*method)(arguments..., [&](const auto& answer) {
        got = answer;
        ++answers;
    });
    EXPECT_TRUE(status.isOk()) << status.description();
    EXPECT_LE(answers, 1);
    return got;
}

}  // namespace mlk::testing
