#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

namespace android::hidl::manager::V1_0 {

/** A client that wants to hear of registrations. A host never calls it. */
struct IServiceNotification : public virtual RefBase {
    /**
     * fqName, name: the interface and the instance. preexisting: whether the service was registered
     * before the client asked.
     */
    virtual ::android::hardware::Return<void> onRegistration(
            const ::android::hardware::hidl_string& fqName,
            const ::android::hardware::hidl_string& name, bool preexisting) = 0;
};

}  // namespace android::hidl::manager::V1_0
