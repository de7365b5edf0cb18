// hidl_handle and hidl_memory: descriptors that travel.
#pragma once

#include <cutils/native_handle.h>
#include <hidl/HidlInternal.h>
#include <hidl/HidlString.h>

#include <cstdint>

namespace android::hardware {

// A set of descriptors and numbers, or none. A copy duplicates the descriptors and owns the
// duplicates; a handle made from a native_handle_t refers to it only.
//
// Not thread-safe. A copy that finds no descriptors left is fatal.
class hidl_handle {
  public:
    // None.
    hidl_handle();
    // Refers to the handle, which must outlive this one.
    hidl_handle(const native_handle_t* handle);
    hidl_handle(const hidl_handle& other);
    // Takes over what the other one has and owns; none is left there.
    hidl_handle(hidl_handle&& other) noexcept;
    // Closes and deletes what it owns, as each assignment does.
    ~hidl_handle();

    hidl_handle& operator=(const hidl_handle& other);
    hidl_handle& operator=(hidl_handle&& other) noexcept;
    hidl_handle& operator=(const native_handle_t* handle);

    // Refers to the handle; shouldOwn makes this one close and delete it.
    void setTo(native_handle_t* handle, bool shouldOwn = false);

    // The handle, or null.
    const native_handle_t* getNativeHandle() const { return mHandle; }
    const native_handle_t* operator->() const { return mHandle; }
    operator const native_handle_t*() const { return mHandle; }

    // Where the pointer to the handle stands inside the object, for the transport.
    static constexpr size_t kOffsetOfNativeHandle = 0;

  private:
    void release();

    details::hidl_pointer<const native_handle_t> mHandle;
    bool mOwnsHandle;
    [[maybe_unused]] uint8_t mPad[7];  // travels: it must not carry what happened to be in memory
};
static_assert(sizeof(hidl_handle) == 16);

// A block of shared memory that is not mapped yet: its kind ("ashmem"), its descriptor, its size.
// Not thread-safe.
class hidl_memory {
  public:
    // No memory.
    hidl_memory() = default;
    // Refers to the handle, does not own it; size in bytes.
    hidl_memory(const hidl_string& name, const native_handle_t* handle, size_t size)
        : mHandle(handle), mSize(size), mName(name) {}
    // A copy duplicates the descriptors.
    hidl_memory(const hidl_memory& other) = default;
    hidl_memory& operator=(const hidl_memory& other) = default;
    // Takes over what the other one has; no memory is left there.
    hidl_memory(hidl_memory&& other) noexcept;
    hidl_memory& operator=(hidl_memory&& other) noexcept;

    // The handle, or null; its kind; its size in bytes; whether there is any.
    const native_handle_t* handle() const { return mHandle; }
    const hidl_string& name() const { return mName; }
    uint64_t size() const { return mSize; }
    bool valid() const { return handle() != nullptr; }

    // Where the two parts that hold pointers stand inside the object, for the transport.
    static constexpr size_t kOffsetOfHandle = 0;
    static constexpr size_t kOffsetOfName = 24;

  private:
    hidl_handle mHandle;
    uint64_t mSize = 0;
    hidl_string mName;
};
static_assert(sizeof(hidl_memory) == 40);

}  // namespace android::hardware
