// How HIDL's own types stand in parcels, and how interfaces become objects and proxies.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlSupport.h>
#include <hidl/MQDescriptor.h>
#include <hidl/Status.h>
#include <hwbinder/IBinder.h>
#include <hwbinder/Parcel.h>

namespace android::hardware {

// Passes the death of a remote object on to a HIDL recipient; made by generated proxies.
class hidl_binder_death_recipient : public IBinder::DeathRecipient {
  public:
    // recipient: told cookie and base; none of them is kept alive.
    hidl_binder_death_recipient(const sp<hidl_death_recipient>& recipient, uint64_t cookie,
                                const sp<::android::hidl::base::V1_0::IBase>& base);
    void binderDied(const wp<IBinder>& who) override;
    wp<hidl_death_recipient> getRecipient() const { return mRecipient; }

  private:
    const wp<hidl_death_recipient> mRecipient;
    const uint64_t mCookie;
    const wp<::android::hidl::base::V1_0::IBase> mBase;
};

// Embedded values: the object is a part of a buffer that the parcel already holds as parentHandle,
// at parentOffset. Reading checks and repairs the pointers in place; BAD_VALUE when what arrived is
// not the value, as Parcel says.
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

// Of a vector, only the block of its elements: generated code goes on with what they embed.
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

// The description of a queue: its grantors and its handle.
template <typename T, MQFlavor flavor>
status_t readEmbeddedFromParcel(const MQDescriptor<T, flavor>& queue, const Parcel& parcel,
                                size_t parentHandle, size_t parentOffset) {
    using Queue = MQDescriptor<T, flavor>;
    size_t grantors;
    status_t status = readEmbeddedFromParcel(queue.grantors(), parcel, parentHandle,
                                             parentOffset + Queue::kOffsetOfGrantors, &grantors);
    if (status != OK) return status;
    const native_handle_t* handle;
    return parcel.readNullableEmbeddedNativeHandle(parentHandle,
                                                   parentOffset + Queue::kOffsetOfHandle, &handle);
}
template <typename T, MQFlavor flavor>
status_t writeEmbeddedToParcel(const MQDescriptor<T, flavor>& queue, Parcel* parcel,
                               size_t parentHandle, size_t parentOffset) {
    using Queue = MQDescriptor<T, flavor>;
    size_t grantors;
    status_t status = writeEmbeddedToParcel(queue.grantors(), parcel, parentHandle,
                                            parentOffset + Queue::kOffsetOfGrantors, &grantors);
    if (status != OK) return status;
    return parcel->writeEmbeddedNativeHandle(queue.handle(), parentHandle,
                                             parentOffset + Queue::kOffsetOfHandle);
}

// How the method ended: the first thing in an answer. NOT_ENOUGH_DATA when it is not there.
status_t readFromParcel(Status* status, const Parcel& parcel);
status_t writeToParcel(const Status& status, Parcel* parcel);

// The object to send for an interface: a proxy's remote object, or the one stub of an
// implementation of this process, made when there is none. Null when the interface is null or no
// stub is known for it. Thread-safe.
sp<IBinder> getOrCreateCachedBinder(::android::hidl::base::V1_0::IBase* interface);

// The same for a strong pointer.
template <typename IType>
sp<IBinder> toBinder(const sp<IType>& interface) {
    return getOrCreateCachedBinder(interface.get());
}

namespace details {
// The implementation behind a stub of this process; null when that is no stub.
sp<::android::hidl::base::V1_0::IBase> implementationOf(BHwBinder* stub);
}  // namespace details

// The interface to use an object that arrived: the implementation itself when it lives in this
// process, else a new proxy. Null for null, and for a local object of another interface.
template <typename IType, typename ProxyType, typename StubType>
sp<IType> fromBinder(const sp<IBinder>& binder) {
    if (binder == nullptr) return nullptr;
    BHwBinder* local = binder->localBinder();
    if (local == nullptr) return sp<IType>(new ProxyType(binder));
    return IType::castFrom(details::implementationOf(local)).withDefault(nullptr);
}

}  // namespace android::hardware
