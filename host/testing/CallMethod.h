#pragma once

#include <cstddef>
#include <tuple>
#include <type_traits>

namespace mlk::testing {

/**
 * Calls a method of a HIDL interface whose last argument is the callback for its answer. All other
 * arguments are value-initialised; `fill` may change them. `answered` is called with each answer.
 * Returns what the method returns.
 */
template <typename Interface, typename Result, typename... Arguments, typename Fill,
          typename Answered>
Result callWith(Interface& object, Result (Interface::*method)(Arguments...), const Fill& fill,
                const Answered& answered) {
    constexpr size_t kCallback = sizeof...(Arguments) - 1;
    std::tuple<std::decay_t<Arguments>...> arguments{};
    std::get<kCallback>(arguments) = answered;
    using Callback = std::tuple_element_t<kCallback, decltype(arguments)>;
    const auto fillOne = [&](auto& argument) {
        if constexpr (!std::is_same_v<std::decay_t<decltype(argument)>, Callback>) {
            fill(argument);
        }
    };
    return std::apply(
            [&](auto&... each) {
                (fillOne(each), ...);
                return (object.*method)(each...);
            },
            arguments);
}

/** The same with value-initialised arguments. */
template <typename Interface, typename Result, typename... Arguments, typename Answered>
Result callWithDefaults(Interface& object, Result (Interface::*method)(Arguments...),
                        const Answered& answered) {
    return callWith(
            object, method, [](auto&) {}, answered);
}

}  // namespace mlk::testing
