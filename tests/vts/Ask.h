#pragma once

#include <gtest/gtest.h>
#include <hidl/Status.h>
#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/vts/Methods.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

// Answers are compared as text, so that a failure shows them. This is not host/testing/Ask.h: the
// program runs on devices, and a refused call is an answer here.

/** The text of a call that was refused: not OK, and the service lives on. */
inline constexpr const char* kRefused = "refused";

/** A text in quotes; a byte that is not printable is written as "\x0A". */
std::string printable(std::string_view text);
/** The number of bytes and their checksum. */
std::string bytesText(std::string_view bytes);

std::string textOf(uint32_t answer);
std::string textOf(const std::string& answer);
std::string textOf(const ::android::hardware::hidl_string& answer);
std::string textOf(const OptionalBool& answer);
std::string textOf(const OptionalInt32& answer);
std::string textOf(const OptionalString& answer);
std::string textOf(const ConfigKeyValue& answer);
std::string textOf(const HidlFreqListItem& answer);
std::string textOf(const ::android::hardware::hidl_vec<uint8_t>& answer);
/** The bytes of the block, which the function maps. */
std::string textOf(const ::android::hardware::hidl_memory& answer);

template <typename List>
std::string listText(const List& list) {
    std::string text = "[";
    for (const auto& each : list) {
        text += (text.size() > 1 ? ", " : "") + textOf(each);
    }
    return text + "]";
}
template <typename Element>
std::string textOf(const ::android::hardware::hidl_vec<Element>& answer) {
    return listText(answer);
}

/** The text of an answer that is a flag, a number or a text. */
std::string textOfFlag(bool value);
std::string textOfNumber(int32_t value);
std::string textOfText(const std::string& value);

#define MLK_METHOD(Interface, method) #method, &Interface::method

/**
 * Calls a method, `MLK_METHOD(IMlkTvConfigs, getFlag)`, with these arguments. Gives the answer's
 * text or kRefused, or else "dead object", "no answer" or "2 answers".
 */
template <typename Interface, typename... Parameters, typename... Arguments>
std::string ask(Interface& service, const char* name,
                ::android::hardware::Return<void> (Interface::*method)(Parameters...),
                const Arguments&... arguments) {
    noteCall(Interface::descriptor, name);
    std::vector<std::string> answers;
    const auto status = (service.*method)(
            arguments..., [&](const auto& answer) { answers.push_back(textOf(answer)); });
    if (!status.isOk()) {
        return status.isDeadObject() ? "dead object" : kRefused;
    }
    if (answers.size() != 1) {
        return answers.empty() ? "no answer" : std::to_string(answers.size()) + " answers";
    }
    return answers[0];
}

/** One call and its answer according to the set. */
struct Question {
    std::string call; /**< "getEQPath(1)" */
    std::function<std::string()> ask;
    std::string expected;
};
using Questions = std::vector<Question>;

/** Asks the questions in turn. Each wrong answer fails the test and names the call. */
void check(const Questions& questions);

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
