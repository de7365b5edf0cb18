#pragma once

#include <android/hidl/allocator/1.0/IAllocator.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/memory/AvailableMemory.h"

namespace mlk::host {

/**
 * Allocates blocks of memory that processes share (SharedBlock.h), under the name "ashmem". It
 * keeps no reference to a block: the memory is freed when the last process that has the descriptor
 * closes and unmaps it.
 *
 * It answers without success and logs one error for empty blocks, for requests above the limits
 * below or above half of the available memory (filling it up would let the kernel kill any
 * process), and when the system lacks memory or descriptors. Thread-safe.
 */
class AshmemAllocator : public ::android::hidl::allocator::V1_0::IAllocator {
  public:
    /** The largest size of one request: of the block, or of all blocks of a batch together. */
    static constexpr uint64_t kMaxBytes = uint64_t{1} << 30;
    /** The largest number of blocks of one request: each is a descriptor in one reply. */
    static constexpr uint64_t kMaxBlocks = 128;

    /**
     * `available` returns the number of bytes that the system can allocate; any thread may call it.
     */
    explicit AshmemAllocator(std::function<uint64_t()> available = [] {
        return availableMemory();
    });

    /** Allocates one block of exactly `size` bytes. */
    ::android::hardware::Return<void> allocate(uint64_t size, allocate_cb answer) override;

    /**
     * Allocates `count` blocks of exactly `size` bytes each; a count of 0 gives the empty batch.
     */
    ::android::hardware::Return<void> batchAllocate(uint64_t size, uint64_t count,
                                                    batchAllocate_cb answer) override;

  private:
    // Each handle owns its descriptor.
    using Blocks = std::vector<::android::hardware::hidl_handle>;

    bool make(uint64_t size, uint64_t count, Blocks* blocks) const;
    std::string tryToMake(uint64_t size, uint64_t count, Blocks* blocks) const;

    const std::function<uint64_t()> mAvailable;
};

}  // namespace mlk::host
