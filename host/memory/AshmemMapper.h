#pragma once

#include <android/hidl/memory/1.0/IMapper.h>

namespace mlk::host {

/// Maps blocks of the "ashmem" allocator, whoever handed them over. It holds nothing: any number of
/// threads may use it.
class AshmemMapper : public ::android::hidl::memory::V1_0::IMapper {
  public:
    /// The block, shared with all who have it, to be read and written. A sender may claim anything,
    /// and touching a page that is not there kills the process (SIGBUS): null, with one error line,
    /// unless the memory has exactly one descriptor, that is a memfd which is sealed against
    /// shrinking, at least as large as the memory's size says, and that size is not 0; null also
    /// when the system does not map it.
    ::android::hardware::Return<::android::sp<::android::hidl::memory::V1_0::IMemory>> mapMemory(
            const ::android::hardware::hidl_memory& memory) override;
};

}  // namespace mlk::host
