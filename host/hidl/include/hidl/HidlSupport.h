// The types that HIDL methods exchange, in the layout that is sent: text, vector, array, handle and
// memory block.
#pragma once

#include <cutils/native_handle.h>
#include <hidl/HidlInternal.h>
#include <log/log.h>
#include <utils/Errors.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

#include <hidl/HidlArray.h>
#include <hidl/HidlHandle.h>
#include <hidl/HidlString.h>
#include <hidl/HidlToString.h>
#include <hidl/HidlVec.h>

// Generated code relies on this header to include some of these.
#include <array>
#include <cinttypes>
#include <cstddef>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <type_traits>
#include <vector>

namespace android::hidl::base::V1_0 {
struct IBase;
}

namespace android::hardware {

/** Receives the death of the process that a proxy's object lives in. */
struct hidl_death_recipient : public virtual RefBase {
    /**
     * cookie: the value given to linkToDeath. who: the proxy, while it lives. Runs on a thread of
     * the RPC pool.
     */
    virtual void serviceDied(uint64_t cookie,
                             const ::android::wp<::android::hidl::base::V1_0::IBase>& who) = 0;
};

/** The type in which a combination of an enumeration's values is sent. */
template <typename T>
using hidl_bitfield = std::underlying_type_t<T>;

namespace details {

/** All values of an enumeration in declared order. Generated code specialises it. */
template <typename T>
inline constexpr std::array<T, 0> hidl_enum_values = {};

template <typename T>
struct hidl_enum_range_ {
    constexpr auto begin() const { return hidl_enum_values<T>.begin(); }
    constexpr auto end() const { return hidl_enum_values<T>.end(); }
};

/** Destroys a member of a safe union. */
template <typename T>
void destructElement(T* element) {
    element->~T();
}

}  // namespace details

/** For loops over an enumeration: for (auto value : hidl_enum_range<ConfigType>()). */
template <typename T>
using hidl_enum_range = details::hidl_enum_range_<T>;

}  // namespace android::hardware
