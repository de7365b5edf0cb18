#pragma once

#include <hidl/HidlSupport.h>
#include <vendor/morlak/mlkconfigs/1.0/types.h>

#include <cstdint>
#include <string>
#include <vector>

/** Prints answers as compact JSON without a newline. Each type has one overload. */
namespace mlk::ctl {

namespace V1_0 = ::vendor::morlak::mlkconfigs::V1_0;
using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;

void print(std::string& out, bool value);
void print(std::string& out, int32_t value);
void print(std::string& out, uint32_t value);
void print(std::string& out, const hidl_string& value);

/** {"success":true,"value":...} */
void print(std::string& out, const V1_0::OptionalBool& value);
void print(std::string& out, const V1_0::OptionalInt32& value);
void print(std::string& out, const V1_0::OptionalString& value);

/** {"key":"...","value":"..."} */
void print(std::string& out, const V1_0::ConfigKeyValue& value);

/**
 * {"channel":21,"frequency":474000,"bandwidth":8000000,"label":"E21","modulation":18}; the label
 * ends at its first NUL.
 */
void print(std::string& out, const V1_0::HidlFreqListItem& value);

/** {"size":N,"base64":"..."}. Throws Failure NO_ANSWER if the memory cannot be mapped. */
void print(std::string& out, const hidl_vec<uint8_t>& bytes);
void print(std::string& out, const hidl_memory& memory);

/**
 * Throws Failure NO_ANSWER if a bool of the answer is neither true nor false: the sender may send
 * any byte, and such a bool must not be read or copied.
 */
void checkSound(const V1_0::OptionalBool& answer);
void checkSound(const V1_0::OptionalInt32& answer);
void checkSound(const V1_0::OptionalString& answer);
/** Other answers hold no bool. */
template <typename T>
void checkSound(const T& /* answer */) {}

/** [...] */
template <typename T>
void print(std::string& out, const hidl_vec<T>& values) {
    const char* separator = "[";
    for (const T& value : values) {
        out += separator;
        print(out, value);
        separator = ",";
    }
    out += values.size() == 0 ? "[]" : "]";
}

/** The bytes of the answer, for --raw. */
std::string rawBytes(const hidl_vec<uint8_t>& bytes);
/** Throws Failure NO_ANSWER if the memory cannot be mapped. */
std::string rawBytes(const hidl_memory& memory);

/** Whether rawBytes() takes this type. */
template <typename T>
inline constexpr bool kHasBytes = false;
template <>
inline constexpr bool kHasBytes<hidl_vec<uint8_t>> = true;
template <>
inline constexpr bool kHasBytes<hidl_memory> = true;

}  // namespace mlk::ctl
