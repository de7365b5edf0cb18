#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/Status.h>

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "tools/mlkctl/Answer.h"
#include "tools/mlkctl/Argument.h"
#include "tools/mlkctl/Failure.h"
#include "tools/mlkctl/MethodDescription.h"
#include "tools/mlkctl/Parameter.h"

/**
 * A method of an interface is a row of a table that is generated from the interface's definition:
 *
 *     {"getEQPath", method(&IMlkProjectConfigs::getEQPath, "index"), &kIMlkProjectConfigs[13]},
 *
 * The type of the member function determines the types of arguments and answer; the overloads of
 * Parameter.h and Answer.h read and print them.
 */
namespace mlk::ctl {

using ::android::hardware::Return;
using ::android::hidl::base::V1_0::IBase;

/** How an answer is printed: as JSON, or as its bytes (--raw). */
enum class Form { JSON, RAW };

/**
 * A call with its arguments. It takes an object that implements the method's interface and returns
 * the answer as it is printed, without a newline. Throws Failure: UNREACHABLE if the object is
 * dead, NO_ANSWER if the call failed or ended without an answer.
 */
using BoundCall = std::function<std::string(IBase&)>;

/** How a method is called. method() makes it. */
struct Call {
    std::vector<Word> words;  // what a user writes after the method's name
    bool hasBytes;            // the answer is bytes: Form::RAW is possible

    /**
     * Reads the arguments for these words; there are as many. Throws Failure USAGE if one of them
     * is wrong.
     */
    std::function<BoundCall(const std::vector<Word>&, const std::vector<Argument>&, Form)> bind;
};

/** A row of a table. */
struct Method {
    std::string_view name;
    Call call;
    const MethodDescription* description;  // from the interface's definition
};

/** Throws a Failure that says what became of a returned call, unless it was answered. */
void checkOutcome(const ::android::hardware::details::return_status& outcome, bool answered);

namespace details {

/**
 * The type of the answer: the last parameter of a member function is the callback, the others are
 * arguments.
 */
template <typename Callback>
struct AnswerOf;
template <typename Result>
struct AnswerOf<std::function<void(Result)>> {
    using Type = std::decay_t<Result>;
};

template <typename Answer>
std::string printed(const Answer& answer, [[maybe_unused]] Form form) {
    if constexpr (kHasBytes<Answer>) {
        if (form == Form::RAW) {
            return rawBytes(answer);
        }
    }
    std::string out;
    print(out, answer);
    return out;
}

/**
 * Makes the call with a callback, and returns what `convert` makes of the answer that the callback
 * receives. Throws Failure as BoundCall does.
 */
template <typename Answer, typename Caller, typename Converter>
auto answerOf(const Caller& caller, const Converter& convert) {
    std::optional<std::invoke_result_t<const Converter&, const Answer&>> converted;
    std::optional<Failure> failure;
    const auto outcome = caller([&](const Answer& answer) {
        // No exception may pass through the transport.
        try {
            checkSound(answer);
            converted = convert(answer);
        } catch (const Failure& thrown) {
            failure = thrown;
        }
    });
    if (failure) {
        throw Failure(*failure);
    }
    checkOutcome(outcome, converted.has_value());
    return std::move(*converted);
}

template <typename I, typename... Params, size_t... Index>
Call makeCall(Return<void> (I::*pointer)(Params...), std::index_sequence<Index...>,
              const std::array<Parameter, sizeof...(Index)>& parameters) {
    using All = std::tuple<Params...>;
    using Callback = std::tuple_element_t<sizeof...(Index), All>;
    using Answer = typename AnswerOf<Callback>::Type;
    using Values = std::tuple<std::decay_t<std::tuple_element_t<Index, All>>...>;

    Call call{{}, kHasBytes<Answer>, nullptr};
    (describe(Type<std::tuple_element_t<Index, Values>>(), parameters[Index], &call.words), ...);
    call.bind = [pointer](const std::vector<Word>& words, const std::vector<Argument>& arguments,
                          Form form) {
        Values values;
        ArgumentReader reader(words, arguments);
        (read(reader, &std::get<Index>(values)), ...);
        return [pointer, form, values = std::move(values)](IBase& object) {
            return answerOf<Answer>(
                    [&](const auto& callback) {
                        return (static_cast<I&>(object).*pointer)(std::get<Index>(values)...,
                                                                  callback);
                    },
                    [form](const Answer& answer) { return printed(answer, form); });
        };
    };
    return call;
}

}  // namespace details

/**
 * Makes the Call of a member function. The other parameters are the names of its arguments, in
 * declared order; a name may carry names for numbers (Parameter).
 */
template <typename I, typename... Params, typename... Names>
Call method(Return<void> (I::*pointer)(Params...), const Names&... names) {
    static_assert(sizeof...(Names) + 1 == sizeof...(Params), "one name a parameter");
    return details::makeCall(pointer, std::make_index_sequence<sizeof...(Names)>(),
                             {Parameter(names)...});
}

}  // namespace mlk::ctl
