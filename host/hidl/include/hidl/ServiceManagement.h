// Names of services: registering them and finding them.
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

// What knows which services are registered; never null on a host.
sp<::android::hidl::manager::V1_0::IServiceManager> defaultServiceManager();

// Instances of that interface which the set has, in ascending order. A device lists what its
// manifest declares; a host declares nothing in advance and lists what is served.
std::vector<std::string> getAllHalInstanceNames(const std::string& descriptor);

namespace details {

// Makes the implementation reachable under its interface's name and the instance, and starts the
// RPC pool. A name that is taken goes over to the later one. It stays registered while the process
// lives. BAD_VALUE when no stub is known for the interface, it is remote, or the name is none;
// PERMISSION_DENIED when the runtime folder cannot be used, an errno as a status when the socket
// cannot be made in it: each with a log line. Thread-safe.
status_t registerAsServiceInternal(const sp<::android::hidl::base::V1_0::IBase>& service,
                                   const std::string& instance);

// The service of that name as a plain IBase proxy, or null when nobody answers under it. Nothing is
// declared in advance on a host, so there is nothing to wait for: retry makes no difference. Nor is
// there a passthrough implementation: getStub gives null.
//
// A service of the same process is reached through its socket like any other: calls to it are
// answered by a thread of the pool. A server that lives, but all of whose threads are busy for more
// than some seconds, does not count as answering.
sp<::android::hidl::base::V1_0::IBase> getRawServiceInternal(const std::string& descriptor,
                                                             const std::string& instance,
                                                             bool retry, bool getStub);

// The same as a proxy of the interface.
template <typename BpType, typename IType = typename BpType::Pure>
sp<IType> getServiceInternal(const std::string& instance, bool retry, bool getStub) {
    sp<::android::hidl::base::V1_0::IBase> base =
            getRawServiceInternal(IType::descriptor, instance, retry, getStub);
    if (base == nullptr) return nullptr;
    return sp<IType>(new BpType(getOrCreateCachedBinder(base.get())));
}

// The process id that a service may tell: a host hides nothing.
int32_t getPidIfSharable();
// Whether addresses of objects may be told.
bool debuggable();

}  // namespace details
}  // namespace android::hardware
