// Readable texts of HIDL values, under the names that generated toString functions call.
#pragma once

#include <hidl/HidlArray.h>
#include <hidl/HidlHandle.h>
#include <hidl/HidlString.h>
#include <hidl/HidlVec.h>

#include <string>
#include <type_traits>

namespace android::hardware {

namespace details {
/** "0x2a", without leading zeros. */
std::string toHexString(uint64_t value);
}  // namespace details

/** A number in decimal; "true" or "false". */
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
std::string toString(T value) {
    if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else {
        return std::to_string(value);
    }
}

/** The text in quotes; the number of descriptors; kind and size; the address. */
std::string toString(const hidl_string& text);
std::string toString(const hidl_handle& handle);
std::string toString(const hidl_memory& memory);
std::string toString(const void* pointer);

namespace details {
/** "{a, b}". */
template <typename Iterator>
std::string joinStrings(Iterator first, Iterator last) {
    std::string joined = "{";
    for (Iterator it = first; it != last; ++it) {
        if (it != first) {
            joined += ", ";
        }
        joined += toString(*it);
    }
    return joined + "}";
}
}  // namespace details

/** "[2]{a, b}". */
template <typename T>
std::string toString(const hidl_vec<T>& vec) {
    return "[" + std::to_string(vec.size()) + "]" + details::joinStrings(vec.begin(), vec.end());
}

namespace details {
/** Formats the elements from this one on as an array of these dimensions. */
template <typename T, size_t First, size_t... Rest>
std::string dimensionsToString(const T* elements) {
    if constexpr (sizeof...(Rest) == 0) {
        return joinStrings(elements, elements + First);
    } else {
        std::string joined = "{";
        for (size_t i = 0; i < First; ++i) {
            if (i != 0) {
                joined += ", ";
            }
            joined += dimensionsToString<T, Rest...>(elements + i * (Rest * ...));
        }
        return joined + "}";
    }
}
}  // namespace details

/** "{{a, b}, {c, d}}". */
template <typename T, size_t First, size_t... Rest>
std::string toString(const hidl_array<T, First, Rest...>& array) {
    return details::dimensionsToString<T, First, Rest...>(array.data());
}

}  // namespace android::hardware
