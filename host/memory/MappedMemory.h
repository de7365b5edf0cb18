#pragma once

#include <android/hidl/memory/1.0/IMemory.h>

#include <cstddef>
#include <cstdint>

namespace mlk::host {

/// A mapped block of shared memory, unmapped when the last reference to this goes. All processes
/// have the same pages: there is nothing to bring up to date, so the announcements only check that
/// what is announced lies in the block, and answer EX_ILLEGAL_ARGUMENT when it does not. It never
/// changes: any thread may use it. Ordering the accesses of several threads and processes is the
/// callers' business.
class MappedMemory : public ::android::hidl::memory::V1_0::IMemory {
  public:
    /// Takes over the mapping of `size` bytes, at least 1, at `address`.
    MappedMemory(void* address, size_t size) : mAddress(address), mSize(size) {}
    ~MappedMemory() override;

    ::android::hardware::Return<void> update() override;
    ::android::hardware::Return<void> updateRange(uint64_t start, uint64_t length) override;
    ::android::hardware::Return<void> read() override;
    ::android::hardware::Return<void> readRange(uint64_t start, uint64_t length) override;
    ::android::hardware::Return<void> commit() override;

    /// Address of the first byte, never null. Good while the object lives.
    ::android::hardware::Return<void*> getPointer() override;
    ::android::hardware::Return<uint64_t> getSize() override;

  private:
    ::android::hardware::Return<void> announce(uint64_t start, uint64_t length) const;

    void* const mAddress;
    const size_t mSize;
};

}  // namespace mlk::host
