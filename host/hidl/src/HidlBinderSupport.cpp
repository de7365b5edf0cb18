#include <hidl/HidlBinderSupport.h>

namespace android::hardware {

hidl_binder_death_recipient::hidl_binder_death_recipient(
        const sp<hidl_death_recipient>& recipient, uint64_t cookie,
        const sp<::android::hidl::base::V1_0::IBase>& base)
    : mRecipient(recipient), mCookie(cookie), mBase(base) {}

void hidl_binder_death_recipient::binderDied(const wp<IBinder>&) {
    const sp<hidl_death_recipient> recipient = mRecipient.promote();
    if (recipient != nullptr) {
        recipient->serviceDied(mCookie, mBase);
    }
}

status_t readEmbeddedFromParcel(const hidl_handle&, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset) {
    const native_handle_t* handle;
    return parcel.readNullableEmbeddedNativeHandle(
            parentHandle, parentOffset + hidl_handle::kOffsetOfNativeHandle, &handle);
}

status_t writeEmbeddedToParcel(const hidl_handle& handle, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset) {
    return parcel->writeEmbeddedNativeHandle(handle.getNativeHandle(), parentHandle,
                                             parentOffset + hidl_handle::kOffsetOfNativeHandle);
}

status_t readEmbeddedFromParcel(const hidl_string& text, const Parcel& parcel, size_t parentHandle,
                                size_t parentOffset) {
    size_t handle;
    const void* buffer;
    const status_t status =
            parcel.readEmbeddedBuffer(text.size() + 1, &handle, parentHandle,
                                      parentOffset + hidl_string::kOffsetOfBuffer, &buffer);
    if (status != OK) {
        return status;
    }
    // Users of the text rely on its NUL.
    return static_cast<const char*>(buffer)[text.size()] == '\0' ? OK : BAD_VALUE;
}

status_t writeEmbeddedToParcel(const hidl_string& text, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset) {
    size_t handle;
    return parcel->writeEmbeddedBuffer(text.c_str(), text.size() + 1, &handle, parentHandle,
                                       parentOffset + hidl_string::kOffsetOfBuffer);
}

namespace {
template <typename T>
const T& partOf(const hidl_memory& memory, size_t offset) {
    return *reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(&memory) + offset);
}
}  // namespace

status_t readEmbeddedFromParcel(const hidl_memory& memory, const Parcel& parcel,
                                size_t parentHandle, size_t parentOffset) {
    const status_t status = readEmbeddedFromParcel(
            partOf<hidl_handle>(memory, hidl_memory::kOffsetOfHandle), parcel, parentHandle,
            parentOffset + hidl_memory::kOffsetOfHandle);
    if (status != OK) {
        return status;
    }
    return readEmbeddedFromParcel(partOf<hidl_string>(memory, hidl_memory::kOffsetOfName), parcel,
                                  parentHandle, parentOffset + hidl_memory::kOffsetOfName);
}

status_t writeEmbeddedToParcel(const hidl_memory& memory, Parcel* parcel, size_t parentHandle,
                               size_t parentOffset) {
    const status_t status =
            writeEmbeddedToParcel(partOf<hidl_handle>(memory, hidl_memory::kOffsetOfHandle), parcel,
                                  parentHandle, parentOffset + hidl_memory::kOffsetOfHandle);
    if (status != OK) {
        return status;
    }
    return writeEmbeddedToParcel(partOf<hidl_string>(memory, hidl_memory::kOffsetOfName), parcel,
                                 parentHandle, parentOffset + hidl_memory::kOffsetOfName);
}

status_t writeToParcel(const Status& status, Parcel* parcel) {
    const status_t written = parcel->writeInt32(status.exceptionCode());
    // The transport's own errors are sent in the message header.
    if (written != OK || status.isOk()) {
        return written;
    }
    return parcel->writeCString(status.exceptionMessage());
}

status_t readFromParcel(Status* status, const Parcel& parcel) {
    int32_t exception;
    const status_t read = parcel.readInt32(&exception);
    if (read != OK) {
        return read;
    }
    if (exception == Status::EX_NONE) {
        *status = Status::ok();
        return OK;
    }
    const char* message = parcel.readCString();
    if (message == nullptr) {
        return NOT_ENOUGH_DATA;
    }
    *status = Status::fromExceptionCode(exception, message);
    return OK;
}

}  // namespace android::hardware
