// The RPC pool of this process, and checked casts of interfaces.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlBinderSupport.h>
#include <hidl/HidlSupport.h>
#include <hidl/ServiceManagement.h>

namespace android::hardware {

/**
 * Sets how many threads may answer calls to this process's objects. With callerWillJoin, the thread
 * that joins the pool is one of them. Call it before the first registration, with at least 1.
 */
void configureRpcThreadpool(size_t maxThreads, bool callerWillJoin);

/** Makes the calling thread a thread of the pool. Never returns. */
void joinRpcThreadpool();

namespace details {

/**
 * Whether the object implements the interface with this descriptor; asks a remote object. With
 * emitError, a failed call is an error; otherwise it means no.
 */
Return<bool> canCastInterface(::android::hidl::base::V1_0::IBase* object, const char* descriptor,
                              bool emitError);

/**
 * Returns the parent as the interface with this descriptor: itself, or a new proxy for the same
 * remote object. Null when the parent is null or does not implement the interface; with emitError,
 * DEAD_OBJECT when it cannot be asked.
 */
template <typename IChild, typename IParent, typename BpChild>
Return<sp<IChild>> castInterface(const sp<IParent>& parent, const char* childIndicator,
                                 bool emitError) {
    if (parent == nullptr) {
        return sp<IChild>();
    }
    Return<bool> can = canCastInterface(parent.get(), childIndicator, emitError);
    if (!can.isOk()) {
        return Status::fromStatusT(DEAD_OBJECT);
    }
    if (!can) {
        return sp<IChild>();
    }
    if (parent->isRemote()) {
        return sp<IChild>(new BpChild(toBinder(parent)));
    }
    return sp<IChild>(static_cast<IChild*>(parent.get()));
}

}  // namespace details
}  // namespace android::hardware
