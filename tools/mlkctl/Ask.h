#pragma once

#include <optional>
#include <utility>

#include "tools/mlkctl/Method.h"

namespace mlk::ctl {

/**
 * Calls a method of the object, which implements the method's interface, and returns the answer.
 * Throws Failure as BoundCall does.
 */
template <typename I, typename... Params, typename... Arguments>
auto ask(IBase& object, Return<void> (I::*pointer)(Params...), const Arguments&... arguments) {
    using Callback = std::tuple_element_t<sizeof...(Arguments), std::tuple<Params...>>;
    std::optional<typename details::AnswerOf<std::decay_t<Callback>>::Type> answer;
    std::optional<Failure> failure;
    const auto outcome = (static_cast<I&>(object).*pointer)(arguments..., [&](const auto& given) {
        // No exception may pass through the transport.
        try {
            checkSound(given);
            answer = given;
        } catch (const Failure& thrown) {
            failure = thrown;
        }
    });
    if (failure) {
        throw Failure(*failure);
    }
    checkOutcome(outcome, answer.has_value());
    return std::move(*answer);
}

}  // namespace mlk::ctl
