#pragma once

#include <android/hidl/memory/1.0/IMapper.h>

namespace mlk::host {

/** Maps blocks of the "ashmem" allocator, whoever sent them. Stateless and thread-safe. */
class AshmemMapper : public ::android::hidl::memory::V1_0::IMapper {
  public:
    /**
     * Maps the block, shared and for reading and writing. A sender may claim anything, and touching
     * a missing page kills the process (SIGBUS). So the result is null, with one error line, unless
     * the memory has exactly one descriptor, which is a memfd sealed against shrinking and at least
     * as large as the memory's size, and that size is not 0. Also null when the system cannot map
     * it.
     */
    ::android::hardware::Return<::android::sp<::android::hidl::memory::V1_0::IMemory>> mapMemory(
            const ::android::hardware::hidl_memory& memory) override;
};

}  // namespace mlk::host
