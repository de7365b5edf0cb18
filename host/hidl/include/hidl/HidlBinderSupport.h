// How HIDL's own types are stored in parcels, and how interfaces become objects and proxies.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <hwbinder/IBinder.h>
#include <hwbinder/Parcel.h>

namespace android::hardware {

/** Passes the death of a remote object on to a HIDL recipient. Generated proxies create it. */
class hidl_binder_death_recipient : public IBinder::DeathRecipient {
  public:
    /** recipient: receives cookie and base. This object keeps neither of them alive. */
    hidl_binder_death_recipient(const sp<hidl_death_recipient>& recipient, uint64_t cookie,
                                const sp<::android::hidl::base::V1_0::IBase>& base);
    void binderDied(const wp<IBinder>& who) override;
    wp<hidl_death_recipient> getRecipient() const { return mRecipient; }

  private:
    const wp<hidl_death_recipient> mRecipient;
    const uint64_t mCookie;
    const wp<::android::hidl::base::V1_0::IBase> mBase;
};

/**
 * Embedded values: the object is part of a buffer that the parcel already holds as parentHandle, at
 * parentOffset. Reading checks the pointers and repairs them in place; BAD_VALUE when what arrived
 * is not such a value (see Parcel).
 */
status_t readEmbeddedFromParcel(const hidl_handle& handle, const Parcel& parcel,
                                size_t parentHandle, size_t parentOffset);
status_t writeEmbeddedToParcel(const hidl_handle& handle, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset);
status_t readEmbeddedFromParcel(const hidl_memory& memory, const Parcel& parcel,
                                size_t parentHandle, size_t parentOffset);
status_t writeEmbeddedToParcel(const hidl_memory& memory, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset);
status_t readEmbeddedFromParcel(const hidl_string& text, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset);
status_t writeEmbeddedToParcel(const hidl_string& text, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset);

/**
 * Handles only the block of the vector's elements; generated code continues with the values
 * embedded in them.
 */
template <typename T>
status_t readEmbeddedFromParcel(const hidl_vec<T>& vec, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset, size_t* handle) {
    const void* elements;
    return parcel.readNullableEmbeddedBuffer(vec.size() * sizeof(T), handle, parentHandle,
                                             parentOffset + hidl_vec<T>::kOffsetOfBuffer,
                                             &elements);
}
template <typename T>
status_t writeEmbeddedToParcel(const hidl_vec<T>& vec, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset, size_t* handle) {
    return parcel->writeEmbeddedBuffer(vec.data(), vec.size() * sizeof(T), handle, parentHandle,
                                       parentOffset + hidl_vec<T>::kOffsetOfBuffer);
}

/** The status of the method, which comes first in an answer. NOT_ENOUGH_DATA when it is missing. */
status_t readFromParcel(Status* status, const Parcel& parcel);
status_t writeToParcel(const Status& status, Parcel* parcel);

/**
 * Returns the object to send for an interface: a proxy's remote object, or the one stub of a local
 * implementation, which is created if needed. Null when the interface is null or has no known stub.
 * Thread-safe.
 */
sp<IBinder> getOrCreateCachedBinder(::android::hidl::base::V1_0::IBase* interface);

/** The same for a strong pointer. */
template <typename IType>
sp<IBinder> toBinder(const sp<IType>& interface) {
    return getOrCreateCachedBinder(interface.get());
}

namespace details {
/** Returns the implementation that a local stub wraps; null when the object is not a stub. */
sp<::android::hidl::base::V1_0::IBase> implementationOf(BHwBinder* stub);
}  // namespace details

/**
 * Returns the interface of an object that arrived: the implementation itself when it lives in this
 * process, otherwise a new proxy. Null for null, and for a local object of another interface.
 */
template <typename IType, typename ProxyType, typename StubType>
sp<IType> fromBinder(const sp<IBinder>& binder) {
    if (binder == nullptr) {
        return nullptr;
    }
    BHwBinder* local = binder->localBinder();
    if (local == nullptr) {
        return sp<IType>(new ProxyType(binder));
    }
    return IType::castFrom(details::implementationOf(local)).withDefault(nullptr);
}

}  // namespace android::hardware
