#pragma once

#include <android/hidl/memory/1.0/IMemory.h>
#include <hidl/HidlSupport.h>

#include <cstddef>
#include <cstdint>

namespace mlk::ctl {

/**
 * A memory block of an answer, mapped while the object lives. An empty block has no bytes. Throws
 * Failure NO_ANSWER if the platform cannot map it; the platform's log says why.
 */
class SharedMemory {
  public:
    explicit SharedMemory(const ::android::hardware::hidl_memory& memory);

    const uint8_t* data() const { return mData; }
    size_t size() const { return mSize; }

  private:
    ::android::sp<::android::hidl::memory::V1_0::IMemory> mMapped;
    const uint8_t* mData = nullptr;
    size_t mSize = 0;
};

}  // namespace mlk::ctl
