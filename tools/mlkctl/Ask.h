#pragma once

#include <tuple>
#include <type_traits>

#include "tools/mlkctl/Method.h"

namespace mlk::ctl {

/**
 * Calls a method of the object, which implements the method's interface, and returns the answer.
 * Throws Failure as BoundCall does.
 */
template <typename I, typename... Params, typename... Arguments>
auto ask(IBase& object, Return<void> (I::*pointer)(Params...), const Arguments&... arguments) {
    using Callback = std::tuple_element_t<sizeof...(Arguments), std::tuple<Params...>>;
    using Answer = typename details::AnswerOf<std::decay_t<Callback>>::Type;
    return details::answerOf<Answer>(
            [&](const auto& callback) {
                return (static_cast<I&>(object).*pointer)(arguments..., callback);
            },
            [](const Answer& answer) { return answer; });
}

}  // namespace mlk::ctl
