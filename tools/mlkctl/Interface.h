#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/mlkctl/Method.h"

namespace mlk::ctl {

/// An interface of the service with all its own methods, in declared order. The base interface's
/// methods are not among them.
struct Interface {
    std::string_view name;  ///< Without its package: "IMlkTvConfigs".
    std::vector<Method> methods;
    /// A new proxy of the instance "default"; null when it is not registered. Does not wait. May be
    /// called from any thread.
    ::android::sp<IBase> (*find)();

    /// The method of this name; throws Failure USAGE, which says what was probably meant.
    const Method& method(std::string_view methodName) const;
    std::vector<std::string_view> methodNames() const;
};

/// The table of each interface, made at the first call. Generated: service/interfaces/methods.
const Interface& projectInterface();
const Interface& tvInterface();
const Interface& frameworkInterface();

/// All three.
const std::vector<const Interface*>& interfaces();

/// The interface of this name; throws Failure USAGE, which says what was probably meant.
const Interface& interfaceOf(std::string_view name);

/// The arguments as a manual writes them: "PORT VERSION"; empty for none.
std::string synopsis(const Method& method);

/// Which values the method serves of those arguments that are limited: "PORT is 0 to 3"; empty if
/// none is.
std::string limits(const Method& method);

/// The call of a method with arguments of any number. Throws Failure USAGE for what is wrong with
/// them, Form::RAW of an answer that is no bytes included; the message names interface and method.
BoundCall bind(const Interface& interface, const Method& method,
               const std::vector<Argument>& arguments, Form form);

/// The failure with the interface in front of its message.
Failure about(const Interface& interface, const Failure& failure);

/// The failure with interface and method in front of its message.
Failure about(const Interface& interface, const Method& method, const Failure& failure);

template <typename I>
Interface makeInterface(std::string_view name, std::vector<Method> methods) {
    return {name, std::move(methods),
            []() -> ::android::sp<IBase> { return I::tryGetService("default"); }};
}

}  // namespace mlk::ctl
