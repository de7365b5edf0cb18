// Names of services: registering them and finding them.
//
// A host has no manager process. A service is a listening socket in the runtime folder, named after
// its interface and its instance.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <android/hidl/manager/1.0/IServiceManager.h>
#include <hidl/HidlBinderSupport.h>

#include <string>

namespace android::hardware {

// What knows which services are registered; never null on a host.
sp<::android::hidl::manager::V1_0::IServiceManager> defaultServiceManager();

namespace details {

// Makes the implementation reachable under its interface's name and the instance, and starts the
// RPC pool. A name that is taken goes over to the later one. Not OK when the name cannot be made:
// no stub is known for the interface, the runtime folder cannot be used, or the name is not one.
status_t registerAsServiceInternal(const sp<::android::hidl::base::V1_0::IBase>& service,
                                   const std::string& instance);

// The service of that name as a plain IBase proxy, or null when nobody answers under it. Nothing is
// declared in advance on a host, so there is nothing to wait for: retry makes no difference. Nor is
// there a passthrough implementation: getStub gives null.
sp<::android::hidl::base::V1_0::IBase> getRawServiceInternal(const std::string& descriptor,
                                                             const std::string& instance,
                                                             bool retry, bool getStub);

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
