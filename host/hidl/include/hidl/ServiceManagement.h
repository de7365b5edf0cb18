// Registers services and finds them by name.
//
// A host has no manager process. A service is a listening socket in the runtime folder, named after
// its interface and its instance.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <android/hidl/manager/1.0/IServiceManager.h>
#include <hidl/HidlBinderSupport.h>

#include <string>
#include <vector>

namespace android::hardware {

/** Returns the service manager; never null on a host. */
sp<::android::hidl::manager::V1_0::IServiceManager> defaultServiceManager();

/**
 * Returns the instances of the interface that are running, in ascending order. A device returns
 * what its manifest declares; a host declares nothing in advance.
 */
std::vector<std::string> getAllHalInstanceNames(const std::string& descriptor);

namespace details {

/**
 * Registers the implementation under its interface's name and the instance, and starts the RPC
 * pool. The service stays registered while the process lives. A later registration takes the name
 * over.
 *
 * Every error has a log line: BAD_VALUE when the interface has no known stub, the object is remote
 * or the name is invalid; PERMISSION_DENIED when the runtime folder cannot be used; an errno as a
 * status when the socket cannot be created. Thread-safe.
 */
status_t registerAsServiceInternal(const sp<::android::hidl::base::V1_0::IBase>& service,
                                   const std::string& instance);

/**
 * Returns the service of that name as a plain IBase proxy, or null when no server answers. A host
 * declares no service in advance, so there is nothing to wait for and retry has no effect. It has
 * no passthrough implementations either: with getStub the result is null.
 *
 * A service of the same process is also reached through its socket; a thread of the pool answers
 * its calls. A server whose threads are all busy for more than a few seconds counts as not
 * answering.
 */
sp<::android::hidl::base::V1_0::IBase> getRawServiceInternal(const std::string& descriptor,
                                                             const std::string& instance,
                                                             bool retry, bool getStub);

/** The same, as a proxy of the interface. */
template <typename BpType, typename IType = typename BpType::Pure>
sp<IType> getServiceInternal(const std::string& instance, bool retry, bool getStub) {
    sp<::android::hidl::base::V1_0::IBase> base =
            getRawServiceInternal(IType::descriptor, instance, retry, getStub);
    if (base == nullptr) {
        return nullptr;
    }
    return sp<IType>(new BpType(getOrCreateCachedBinder(base.get())));
}

/** The process id that a service may reveal; a host always reveals it. */
int32_t getPidIfSharable();
/** Whether addresses of objects may be revealed. */
bool debuggable();

}  // namespace details
}  // namespace android::hardware
