// IServiceManager: the part of the service manager that clients use, answered in the process itself
// from the runtime folder.
#pragma once

#include <android/hidl/manager/1.0/IServiceNotification.h>
#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

#include <functional>

namespace android::hidl::manager::V1_0 {

// Answers for the sets whose environment the process has. Thread-safe.
struct IServiceManager : public virtual RefBase {
    using list_cb = std::function<void(const ::android::hardware::hidl_vec<
                                       ::android::hardware::hidl_string>& fqInstanceNames)>;

    // Every service that is served, as "package@version::IInterface/instance", in ascending order.
    // Connects to each, and waits for a second at most for those whose threads are all busy.
    // EX_ILLEGAL_ARGUMENT without a callback.
    virtual ::android::hardware::Return<void> list(list_cb callback) = 0;

    // Always false on a host: nobody tells of registrations.
    virtual ::android::hardware::Return<bool> registerForNotifications(
            const ::android::hardware::hidl_string& fqName,
            const ::android::hardware::hidl_string& name,
            const ::android::sp<IServiceNotification>& callback) = 0;
};

}  // namespace android::hidl::manager::V1_0
