#pragma once

#include <cutils/native_handle.h>
#include <hidl/HidlInternal.h>
#include <hidl/HidlString.h>

#include <cstdint>

namespace android::hardware {

/**
 * A set of descriptors and numbers, possibly null. A copy duplicates the descriptors and owns the
 * duplicates; a handle made from a native_handle_t only refers to it.
 *
 * Not thread-safe. Running out of descriptors while copying is fatal.
 */
class hidl_handle {
  public:
    /** A null handle. */
    hidl_handle();
    /** Refers to the handle, which must outlive this object. */
    hidl_handle(const native_handle_t* handle);
    hidl_handle(const hidl_handle& other);
    /** Takes over what the other handle holds and owns; the other one becomes null. */
    hidl_handle(hidl_handle&& other) noexcept;
    /** Closes and deletes what this object owns, as every assignment does. */
    ~hidl_handle();

    hidl_handle& operator=(const hidl_handle& other);
    hidl_handle& operator=(hidl_handle&& other) noexcept;
    hidl_handle& operator=(const native_handle_t* handle);

    /** Refers to the handle. With shouldOwn, this object closes and deletes it. */
    void setTo(native_handle_t* handle, bool shouldOwn = false);

    /** Returns the handle, or null. */
    const native_handle_t* getNativeHandle() const { return mHandle; }
    const native_handle_t* operator->() const { return mHandle; }
    operator const native_handle_t*() const { return mHandle; }

    /** Offset of the pointer to the handle inside the object, for the transport. */
    static constexpr size_t kOffsetOfNativeHandle = 0;

  private:
    void release();

    details::hidl_pointer<const native_handle_t> mHandle;
    bool mOwnsHandle;
    [[maybe_unused]] uint8_t mPad[7];  // is sent along, so it must not leak what was in memory
};
static_assert(sizeof(hidl_handle) == 16);

/**
 * A block of shared memory that is not mapped yet: its kind ("ashmem"), its descriptor and its
 * size. Not thread-safe.
 */
class hidl_memory {
  public:
    /** No memory. */
    hidl_memory() = default;
    /** Refers to the handle without owning it. size: in bytes. */
    hidl_memory(const hidl_string& name, const native_handle_t* handle, size_t size)
        : mHandle(handle), mSize(size), mName(name) {}
    /** A copy duplicates the descriptors. */
    hidl_memory(const hidl_memory& other) = default;
    hidl_memory& operator=(const hidl_memory& other) = default;
    /** Takes over what the other object holds; the other one becomes empty. */
    hidl_memory(hidl_memory&& other) noexcept;
    hidl_memory& operator=(hidl_memory&& other) noexcept;

    /** The handle, or null; the kind; the size in bytes; whether there is a handle. */
    const native_handle_t* handle() const { return mHandle; }
    const hidl_string& name() const { return mName; }
    uint64_t size() const { return mSize; }
    bool valid() const { return handle() != nullptr; }

    /** Offsets of the two members that hold pointers, for the transport. */
    static constexpr size_t kOffsetOfHandle = 0;
    static constexpr size_t kOffsetOfName = 24;

  private:
    hidl_handle mHandle;
    uint64_t mSize = 0;
    hidl_string mName;
};
static_assert(sizeof(hidl_memory) == 40);

}  // namespace android::hardware
