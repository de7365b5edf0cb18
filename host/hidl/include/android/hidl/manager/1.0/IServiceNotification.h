// IServiceNotification: who wants to hear of a registration.
#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

namespace android::hidl::manager::V1_0 {

// Never called on a host.
struct IServiceNotification : public virtual RefBase {
    // fqName, name: the interface and the instance; preexisting: registered before one asked.
    virtual ::android::hardware::Return<void> onRegistration(
            const ::android::hardware::hidl_string& fqName,
            const ::android::hardware::hidl_string& name, bool preexisting) = 0;
};

}  // namespace android::hidl::manager::V1_0
