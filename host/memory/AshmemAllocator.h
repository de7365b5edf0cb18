#pragma once

#include <android/hidl/allocator/1.0/IAllocator.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/memory/AvailableMemory.h"

namespace mlk::host {

/// Gives out blocks of memory that processes share (SharedBlock.h), under the name "ashmem". It
/// keeps nothing of a block: the memory is freed when the last process that got the descriptor has
/// closed and unmapped it.
///
/// What it refuses is answered without success and leaves one error line: blocks without a byte,
/// what exceeds the limits below, what takes more than half of the memory that the system has
/// available (filling it up would let the kernel kill whichever process it likes), and what
/// the system has no memory or no descriptors for. Any number of threads may call it.
class AshmemAllocator : public ::android::hidl::allocator::V1_0::IAllocator {
  public:
    /// Bytes of one request: of the block, or of all blocks of a batch together.
    static constexpr uint64_t kMaxBytes = uint64_t{1} << 30;
    /// Blocks of one request: each is a descriptor in one reply.
    static constexpr uint64_t kMaxBlocks = 128;

    /// `available` tells how many bytes the system can give out; called from any thread.
    explicit AshmemAllocator(std::function<uint64_t()> available = [] {
        return availableMemory();
    });

    /// One block of exactly `size` bytes.
    ::android::hardware::Return<void> allocate(uint64_t size, allocate_cb answer) override;

    /// `count` blocks of exactly `size` bytes each; with a count of 0, the empty batch.
    ::android::hardware::Return<void> batchAllocate(uint64_t size, uint64_t count,
                                                    batchAllocate_cb answer) override;

  private:
    /// Each owns its descriptor.
    using Blocks = std::vector<::android::hardware::hidl_handle>;

    bool make(uint64_t size, uint64_t count, Blocks* blocks) const;
    std::string tryToMake(uint64_t size, uint64_t count, Blocks* blocks) const;

    const std::function<uint64_t()> mAvailable;
};

}  // namespace mlk::host
