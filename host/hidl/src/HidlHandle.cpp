#include <hidl/HidlHandle.h>

#include <utility>

namespace android::hardware {

hidl_handle::hidl_handle() : mHandle(nullptr), mOwnsHandle(false), mPad{} {}
hidl_handle::hidl_handle(const native_handle_t* handle) : hidl_handle() {
    mHandle = handle;
}
hidl_handle::hidl_handle(const hidl_handle& other) : hidl_handle() {
    *this = other;
}
hidl_handle::hidl_handle(hidl_handle&& other) noexcept : hidl_handle() {
    *this = std::move(other);
}
hidl_handle::~hidl_handle() {
    release();
}

void hidl_handle::release() {
    if (mOwnsHandle && getNativeHandle() != nullptr) {
        native_handle_close(mHandle);
        native_handle_delete(const_cast<native_handle_t*>(getNativeHandle()));
    }
    mHandle = nullptr;
    mOwnsHandle = false;
}

hidl_handle& hidl_handle::operator=(const hidl_handle& other) {
    if (this == &other) {
        return *this;
    }
    release();
    if (other.getNativeHandle() == nullptr) {
        return *this;
    }
    mHandle = native_handle_clone(other.mHandle);
    if (getNativeHandle() == nullptr) {
        details::logAlwaysFatal("cannot duplicate a handle");
    }
    mOwnsHandle = true;
    return *this;
}

hidl_handle& hidl_handle::operator=(hidl_handle&& other) noexcept {
    if (this == &other) {
        return *this;
    }
    release();
    mHandle = other.getNativeHandle();
    mOwnsHandle = other.mOwnsHandle;
    other.mHandle = nullptr;
    other.mOwnsHandle = false;
    return *this;
}

hidl_handle& hidl_handle::operator=(const native_handle_t* handle) {
    release();
    mHandle = handle;
    return *this;
}

void hidl_handle::setTo(native_handle_t* handle, bool shouldOwn) {
    release();
    mHandle = handle;
    mOwnsHandle = shouldOwn;
}

hidl_memory::hidl_memory(hidl_memory&& other) noexcept
    : mHandle(std::move(other.mHandle)),
      mSize(std::exchange(other.mSize, 0)),
      mName(std::move(other.mName)) {}

hidl_memory& hidl_memory::operator=(hidl_memory&& other) noexcept {
    mHandle = std::move(other.mHandle);
    mSize = std::exchange(other.mSize, 0);
    mName = std::move(other.mName);
    return *this;
}

}  // namespace android::hardware
