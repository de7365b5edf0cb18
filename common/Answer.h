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
 * An answer is sent to the client byte by byte from memory. Without this, its padding would reveal
 * bytes of the service's memory. A copy of the answer may again have other padding.
 */
template <typename Answer>
void clearPadding(Answer& answer) {
    // As bytes: an initialisation need not touch padding.
    uint8_t* const gap = reinterpret_cast<uint8_t*>(&answer.success) + sizeof(answer.success);
    const uint8_t* const end = reinterpret_cast<uint8_t*>(&answer.value);
    memset(gap, 0, static_cast<size_t>(end - gap));
}

/**
 * Calls back with an answer whose padding is cleared.
 *
 * @param callback  the callback of the generated interface, for OptionalInt32 or OptionalString
 * @param success   becomes the field of this name
 * @param value     becomes the field of this name
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
