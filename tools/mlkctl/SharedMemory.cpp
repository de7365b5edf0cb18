#include "tools/mlkctl/SharedMemory.h"

#include <hidlmemory/mapping.h>

#include <string>

#include "tools/mlkctl/Failure.h"

namespace mlk::ctl {

SharedMemory::SharedMemory(const ::android::hardware::hidl_memory& memory) {
    if (memory.size() == 0) {
        return;
    }
    mMapped = ::android::hardware::mapMemory(memory);
    if (mMapped == nullptr) {
        throw Failure(ExitStatus::NO_ANSWER, "the answer's shared memory of " +
                                                     std::to_string(memory.size()) +
                                                     " bytes cannot be mapped");
    }
    mMapped->read();
    mData = static_cast<const uint8_t*>(static_cast<void*>(mMapped->getPointer()));
    mMapped->commit();
    mSize = static_cast<size_t>(memory.size());
}

}  // namespace mlk::ctl
