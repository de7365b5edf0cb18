#pragma once

#include <android/hidl/manager/1.0/IServiceNotification.h>
#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

#include <functional>

namespace android::hidl::manager::V1_0 {

/**
 * The part of the service manager that clients use. Answers within the process, from the runtime
 * folder that the environment names. Thread-safe.
 */
struct IServiceManager : public virtual RefBase {
    using list_cb = std::function<void(const ::android::hardware::hidl_vec<
                                       ::android::hardware::hidl_string>& fqInstanceNames)>;

    /**
     * Calls back with every running service, as "package@version::IInterface/instance", in
     * ascending order. Connects to each service and waits at most 0.3 s for the greetings of all
     * together, and then a millisecond for each. A service that is silent counts as running.
     * EX_ILLEGAL_ARGUMENT without a callback.
     */
    virtual ::android::hardware::Return<void> list(list_cb callback) = 0;

    /** Always false: a host does not announce registrations. */
    virtual ::android::hardware::Return<bool> registerForNotifications(
            const ::android::hardware::hidl_string& fqName,
            const ::android::hardware::hidl_string& name,
            const ::android::sp<IServiceNotification>& callback) = 0;
};

}  // namespace android::hidl::manager::V1_0
