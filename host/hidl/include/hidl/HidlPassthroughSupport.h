// Passthrough objects: implementations that a process uses directly, through a wrapper of the
// interface.
#pragma once

#include <android/hidl/base/1.0/IBase.h>

namespace android::hardware::details {

/**
 * Returns the wrapper that runs an object's one-way methods on a separate thread; the object itself
 * when its interface has no known wrapper.
 */
sp<::android::hidl::base::V1_0::IBase> wrapPassthroughInternal(
        const sp<::android::hidl::base::V1_0::IBase>& object);

/** The same for an interface. Returns the object itself when it is remote or null. */
template <typename IType>
sp<IType> wrapPassthrough(const sp<IType>& object) {
    if (object == nullptr || object->isRemote()) {
        return object;
    }
    return sp<IType>(static_cast<IType*>(wrapPassthroughInternal(object).get()));
}

}  // namespace android::hardware::details
