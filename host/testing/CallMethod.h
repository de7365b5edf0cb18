#pragma once

#include <cstddef>
#include <tuple>
#include <type_traits>

namespace mlk::testing {

/// Calls a method of a HIDL interface whose last argument is its answer's callback, with every
/// other argument at its type's default: zero, empty. `answered` is called with each answer; gives
/// what the method returns.
template <typename Interface, typename Result, typename... Arguments, typename Answered>
Result callWithDefaults(Interface& object, Result (Interface::*method)(Arguments...),
                        const Answered& answered) {
    std::tuple<std::decay_t<Arguments>...> arguments{};
    std::get<sizeof...(Arguments) - 1>(arguments) = answered;
    return std::apply([&](auto&... each) { return (object.*method)(each...); }, arguments);
}

}  // namespace mlk::testing
