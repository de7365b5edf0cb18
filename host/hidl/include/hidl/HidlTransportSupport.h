// The RPC pool of this process, and checked casts of interfaces.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlBinderSupport.h>
#include <hidl/HidlSupport.h>
#include <hidl/ServiceManagement.h>

namespace android::hardware {

// How many threads may answer calls to this process's objects, the one that joins the pool among
// them when callerWillJoin. To be called before the first registration, with at least 1.
void configureRpcThreadpool(size_t maxThreads, bool callerWillJoin);

// Makes the calling thread one of the pool's; it never returns.
void joinRpcThreadpool();

namespace details {

// Whether the object implements the interface of this descriptor; asks a remote object. A failed
// call is reported in the result when emitError, else it is a plain no.
Return<bool> canCastInterface(::android::hidl::base::V1_0::IBase* object, const char* descriptor,
                              bool emitError);

// The parent as the interface of this descriptor: itself, or a new proxy for the same remote
// object. Null when it is null or does not implement it; DEAD_OBJECT when it cannot be asked and
// emitError.
template <typename IChild, typename IParent, typename BpChild>
Return<sp<IChild>> castInterface(const sp<IParent>& parent, const char* childIndicator,
                                 bool emitError) {
    if (parent == nullptr) return sp<IChild>();
    Return<bool> can = canCastInterface(parent.get(), childIndicator, emitError);
    if (!can.isOk()) return Status::fromStatusT(DEAD_OBJECT);
    if (!can) return sp<IChild>();
    if (parent->isRemote()) return sp<IChild>(new BpChild(toBinder(parent)));
    return sp<IChild>(static_cast<IChild*>(parent.get()));
}

}  // namespace details
}  // namespace android::hardware
