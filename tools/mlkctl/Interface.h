#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/mlkctl/Method.h"

namespace mlk::ctl {

/**
 * An interface of the service with all its own methods, in declared order, without those of the
 * base interface.
 */
struct Interface {
    std::string_view name;       // without its package: "IMlkTvConfigs"
    std::string_view shortName;  // which a user may write instead: "tv"
    std::string_view summary;    // one sentence or more: what it answers
    std::vector<Method> methods;
    /**
     * Returns a new proxy of the instance "default", or null if it is not registered. Does not
     * wait. Any thread may call it.
     */
    ::android::sp<IBase> (*find)();

    /** The method of this name. Throws Failure USAGE, which suggests a similar name. */
    const Method& method(std::string_view methodName) const;
    std::vector<std::string_view> methodNames() const;
};

/** The table of each interface, made at the first call. service/interfaces/methods generates it. */
const Interface& projectInterface();
const Interface& tvInterface();
const Interface& frameworkInterface();

/** All three. */
const std::vector<const Interface*>& interfaces();

/** The interface of this name or short name, or null. */
const Interface* findInterface(std::string_view name);

/** The same. An unknown name throws Failure USAGE, which suggests a similar one. */
const Interface& interfaceOf(std::string_view name);

/** A method and its interface. */
struct MethodOf {
    const Interface* interface;
    const Method* method;
};

/** The methods of this name in all interfaces; at most one of each. */
std::vector<MethodOf> methodsNamed(std::string_view name);

/**
 * The method that the words begin with: interface and method, or only the method if its name is
 * unique. Sets `used` to the number of those words. There must be a word. Throws Failure USAGE,
 * which suggests a similar name; `verb` is the command in its message.
 */
MethodOf methodFrom(const std::vector<std::string>& words, std::string_view verb, size_t* used);

/** The arguments as a manual writes them: "PORT VERSION"; empty for none. */
std::string synopsis(const Method& method);

/**
 * The ranges of the arguments that have one: "PORT is 0 to 3"; empty if no argument has one.
 */
std::string limits(const Method& method);

/**
 * What is outside the range that the method serves: "INDEX 5 is out of its range, 0 or 1"; empty if
 * nothing is. The arguments must be bound already.
 */
std::string outsideRanges(const Method& method, const std::vector<Argument>& arguments);

/**
 * Binds the arguments to a method. Throws Failure USAGE if their number or values are wrong, or if
 * the form is RAW and the answer is not bytes; the message names interface and method.
 */
BoundCall bind(const Interface& interface, const Method& method,
               const std::vector<Argument>& arguments, Form form);

/** The failure with the interface in front of its message. */
Failure about(const Interface& interface, const Failure& failure);

/** The failure with interface and method in front of its message. */
Failure about(const Interface& interface, const Method& method, const Failure& failure);

/** Lets each word of the methods refer to the argument that it is, or is a part of. */
std::vector<Method> withArguments(std::vector<Method> methods);

template <typename I>
Interface makeInterface(std::string_view name, std::string_view shortName, std::string_view summary,
                        std::vector<Method> methods) {
    return {name, shortName, summary, withArguments(std::move(methods)),
            []() -> ::android::sp<IBase> { return I::tryGetService("default"); }};
}

}  // namespace mlk::ctl
