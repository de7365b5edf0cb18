#include "tools/mlkctl/SharedMemory.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "tools/mlkctl/Failure.h"

namespace mlk::ctl {

SharedMemory::SharedMemory(const ::android::hardware::hidl_memory& memory) {
    if (memory.size() == 0) return;
    const native_handle_t* handle = memory.handle();
    if (handle == nullptr || handle->numFds < 1)
        throw Failure(ExitStatus::NO_ANSWER, "the answer is shared memory without a descriptor");
    // What is no file (a device's own kind of block) says 0 and has no end to run over here.
    struct stat status {};
    const bool isFile = fstat(handle->data[0], &status) == 0 && S_ISREG(status.st_mode);
    if (isFile && static_cast<uint64_t>(status.st_size) < memory.size())
        throw Failure(ExitStatus::NO_ANSWER,
                      "the answer is shared memory of " + std::to_string(status.st_size) +
                              " bytes that claims to have " + std::to_string(memory.size()));
    void* start = mmap(nullptr, memory.size(), PROT_READ, MAP_SHARED, handle->data[0], 0);
    if (start == MAP_FAILED)
        throw Failure(
                ExitStatus::NO_ANSWER,
                std::string("the answer's shared memory cannot be mapped: ") + strerror(errno));
    mData = static_cast<uint8_t*>(start);
    mSize = memory.size();
}

SharedMemory::~SharedMemory() {
    if (mData != nullptr) munmap(mData, mSize);
}

}  // namespace mlk::ctl
