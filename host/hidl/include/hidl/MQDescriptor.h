// MQDescriptor: what names a fast message queue when it travels. The queues themselves are not part
// of the host's runtime; their descriptors pass through it unchanged.
#pragma once

#include <cutils/native_handle.h>
#include <hidl/HidlSupport.h>

namespace android::hardware {

// Where one part of a queue lies in its shared memory.
struct GrantorDescriptor {
    uint32_t flags;
    uint32_t fdIndex;
    uint32_t offset;
    uint64_t extent;
};
static_assert(sizeof(GrantorDescriptor) == 24);

// Whether writers wait for readers.
enum MQFlavor : uint32_t {
    kSynchronizedReadWrite = 0x01,
    kUnsynchronizedWrite = 0x02,
};

// Not thread-safe. quantum: bytes of one of the queue's elements.
template <typename T, MQFlavor flavor>
class MQDescriptor {
  public:
    // Of no queue.
    MQDescriptor() = default;
    // Owns the handle, which may be null: it is closed and deleted with this object.
    MQDescriptor(const hidl_vec<GrantorDescriptor>& grantors, native_handle_t* handle,
                 size_t quantum)
        : mGrantors(grantors),
          mHandle(handle),
          mQuantum(static_cast<uint32_t>(quantum)),
          mFlags(flavor) {}
    // A copy duplicates the descriptors.
    MQDescriptor(const MQDescriptor& other) { *this = other; }
    MQDescriptor& operator=(const MQDescriptor& other) {
        if (this == &other) return *this;
        release();
        mGrantors = other.mGrantors;
        mHandle = other.mHandle == nullptr ? nullptr : native_handle_clone(other.mHandle);
        mQuantum = other.mQuantum;
        mFlags = other.mFlags;
        return *this;
    }
    ~MQDescriptor() { release(); }

    // What it was made of; the handle may be null.
    const hidl_vec<GrantorDescriptor>& grantors() const { return mGrantors; }
    hidl_vec<GrantorDescriptor>& grantors() { return mGrantors; }
    const native_handle_t* handle() const { return mHandle; }
    size_t getQuantum() const { return mQuantum; }
    uint32_t getFlags() const { return mFlags; }

    // Where the two parts that hold pointers stand inside the object, for the transport.
    static constexpr size_t kOffsetOfGrantors = 0;
    static constexpr size_t kOffsetOfHandle = 16;

  private:
    void release() {
        if (mHandle == nullptr) return;
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

// The two kinds by the names that generated code gives them.
template <typename T>
using MQDescriptorSync = MQDescriptor<T, kSynchronizedReadWrite>;
template <typename T>
using MQDescriptorUnsync = MQDescriptor<T, kUnsynchronizedWrite>;

// How many grantors it has.
template <typename T, MQFlavor flavor>
std::string toString(const MQDescriptor<T, flavor>& queue) {
    return "queue of " + std::to_string(queue.grantors().size()) + " grantors";
}

}  // namespace android::hardware
