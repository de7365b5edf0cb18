// Passthrough objects: implementations that a process uses directly. A device wraps them.
#pragma once

#include <utils/StrongPointer.h>

namespace android::hardware::details {

/** Returns the object itself: on a host, a process uses its own objects without a wrapper. */
template <typename IType>
sp<IType> wrapPassthrough(const sp<IType>& object) {
    return object;
}

}  // namespace android::hardware::details
