#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <utility>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Clears the bytes between the fields of an answer, OptionalInt32 or OptionalString.
 *
 * An answer travels as it lies in memory: without this it would show its client what happened to
 * lie where the compiler left a gap. A copy need not have what was cleared in its original.
 */
template <typename Answer>
void clearPadding(Answer& answer) {
    // Through pointers to bytes: a compiler may leave padding out of any initialisation.
    uint8_t* const gap = reinterpret_cast<uint8_t*>(&answer.success) + sizeof(answer.success);
    const uint8_t* const end = reinterpret_cast<uint8_t*>(&answer.value);
    memset(gap, 0, static_cast<size_t>(end - gap));
}

/**
 * Calls back with an answer whose padding is clear.
 *
 * @param callback  what the generated interface wants called, with OptionalInt32 or OptionalString
 * @param success   goes to the field of this name
 * @param value     goes to the field of this name
 */
template <typename Answer, typename Value>
void answerWith(const std::function<void(const Answer&)>& callback, bool success, Value&& value) {
    Answer answer{};
    answer.success = success;
    answer.value = std::forward<Value>(value);
    clearPadding(answer);
    callback(answer);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
