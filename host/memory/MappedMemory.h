#pragma once

#include <android/hidl/memory/1.0/IMemory.h>

#include <cstddef>
#include <cstdint>

namespace mlk::host {

/**
 * A mapped block of shared memory, unmapped when the last reference is dropped. All processes share
 * the same pages, so the announcements need no synchronisation: they only check that the range lies
 * in the block, and otherwise answer EX_ILLEGAL_ARGUMENT. Immutable and thread-safe. Callers order
 * the accesses of several threads and processes themselves.
 */
class MappedMemory : public ::android::hidl::memory::V1_0::IMemory {
  public:
    /** Takes over the mapping of `size` bytes, at least 1, at `address`. */
    MappedMemory(void* address, size_t size) : mAddress(address), mSize(size) {}
    ~MappedMemory() override;

    ::android::hardware::Return<void> update() override;
    ::android::hardware::Return<void> updateRange(uint64_t start, uint64_t length) override;
    ::android::hardware::Return<void> read() override;
    ::android::hardware::Return<void> readRange(uint64_t start, uint64_t length) override;
    ::android::hardware::Return<void> commit() override;

    /** The address of the first byte, never null. Valid while the object lives. */
    ::android::hardware::Return<void*> getPointer() override;
    ::android::hardware::Return<uint64_t> getSize() override;

  private:
    ::android::hardware::Return<void> announce(uint64_t start, uint64_t length) const;

    void* const mAddress;
    const size_t mSize;
};

}  // namespace mlk::host
