#pragma once

#include <hidl/HidlSupport.h>

#include <cstddef>
#include <cstdint>

namespace mlk::ctl {

/// A memory block of an answer, mapped for reading while the object lives. The block may be empty:
/// then it has no bytes. Throws Failure NO_ANSWER when it cannot be mapped, or is smaller than it
/// says: reading beyond the end of a block would kill the reader.
class SharedMemory {
  public:
    explicit SharedMemory(const ::android::hardware::hidl_memory& memory);
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    const uint8_t* data() const { return mData; }
    size_t size() const { return mSize; }

  private:
    uint8_t* mData = nullptr;
    size_t mSize = 0;
};

}  // namespace mlk::ctl
