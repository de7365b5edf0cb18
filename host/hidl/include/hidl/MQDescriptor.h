#pragma once

#include <cutils/native_handle.h>
#include <hidl/HidlSupport.h>

namespace android::hardware {

/** The place of one part of a queue in its shared memory. */
struct GrantorDescriptor {
    uint32_t flags;
    uint32_t fdIndex;
    uint32_t offset;
    uint64_t extent;
};
static_assert(sizeof(GrantorDescriptor) == 24);

/** Whether writers wait for readers. */
enum MQFlavor : uint32_t {
    kSynchronizedReadWrite = 0x01,
    kUnsynchronizedWrite = 0x02,
};

/**
 * Describes a fast message queue. The host's runtime has no queues; it passes their descriptors
 * through unchanged. Not thread-safe. quantum: the size of an element in bytes.
 */
template <typename T, MQFlavor flavor>
class MQDescriptor {
  public:
    /** Describes no queue. */
    MQDescriptor() = default;
    /** Owns the handle, which may be null: the destructor closes and deletes it. */
    MQDescriptor(const hidl_vec<GrantorDescriptor>& grantors, native_handle_t* handle,
                 size_t quantum)
        : mGrantors(grantors),
          mHandle(handle),
          mQuantum(static_cast<uint32_t>(quantum)),
          mFlags(flavor) {}
    /** A copy duplicates the descriptors. */
    MQDescriptor(const MQDescriptor& other) { *this = other; }
    MQDescriptor& operator=(const MQDescriptor& other) {
        if (this == &other) {
            return *this;
        }
        release();
        mGrantors = other.mGrantors;
        mHandle = other.mHandle == nullptr ? nullptr : native_handle_clone(other.mHandle);
        mQuantum = other.mQuantum;
        mFlags = other.mFlags;
        return *this;
    }
    ~MQDescriptor() { release(); }

    /** The constructor's arguments; the handle may be null. */
    const hidl_vec<GrantorDescriptor>& grantors() const { return mGrantors; }
    hidl_vec<GrantorDescriptor>& grantors() { return mGrantors; }
    const native_handle_t* handle() const { return mHandle; }
    size_t getQuantum() const { return mQuantum; }
    uint32_t getFlags() const { return mFlags; }

    /** Offsets of the two members that hold pointers, for the transport. */
    static constexpr size_t kOffsetOfGrantors = 0;
    static constexpr size_t kOffsetOfHandle = 16;

  private:
    void release() {
        if (mHandle == nullptr) {
            return;
        }
        native_handle_t* handle = mHandle;
        native_handle_close(handle);
        native_handle_delete(handle);
        mHandle = nullptr;
    }

    hidl_vec<GrantorDescriptor> mGrantors;
    details::hidl_pointer<native_handle_t> mHandle;
    uint32_t mQuantum = 0;
    uint32_t mFlags = flavor;
};
static_assert(sizeof(MQDescriptor<char, kSynchronizedReadWrite>) == 32);

/** The two kinds, under the names that generated code uses. */
template <typename T>
using MQDescriptorSync = MQDescriptor<T, kSynchronizedReadWrite>;
template <typename T>
using MQDescriptorUnsync = MQDescriptor<T, kUnsynchronizedWrite>;

/** The number of grantors. */
template <typename T, MQFlavor flavor>
std::string toString(const MQDescriptor<T, flavor>& queue) {
    return "queue of " + std::to_string(queue.grantors().size()) + " grantors";
}

}  // namespace android::hardware
