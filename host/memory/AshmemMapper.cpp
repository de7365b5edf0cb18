#define LOG_TAG "hidlmemory"

#include "host/memory/AshmemMapper.h"

#include <fcntl.h>
#include <log/log.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <cinttypes>
#include <cstring>
#include <string>

#include "host/memory/MappedMemory.h"

namespace mlk::host {

using ::android::sp;
using ::android::hardware::hidl_memory;
using ::android::hardware::Return;
using ::android::hidl::memory::V1_0::IMemory;

namespace {

// Returns why the memory is not safe to map; empty when it is safe.
std::string findObstacle(const hidl_memory& memory) {
    const native_handle_t* handle = memory.handle();
    const int descriptors = handle == nullptr ? 0 : handle->numFds;
    if (descriptors != 1) {
        return "it has " + std::to_string(descriptors) + " descriptors instead of one";
    }
    if (memory.size() == 0) {
        return "it is empty";
    }
    const int block = handle->data[0];
    const int seals = fcntl(block, F_GET_SEALS);
    if (seals < 0) {
        return std::string("its descriptor is no shared memory: ") + strerror(errno);
    }
    // Check the seals before the size: only sealed memory keeps its size.
    if ((seals & F_SEAL_SHRINK) == 0) {
        return "it is not sealed: its owner could shrink it";
    }
    struct stat status {};
    if (fstat(block, &status) != 0) {
        return std::string("fstat: ") + strerror(errno);
    }
    if (static_cast<uint64_t>(status.st_size) < memory.size()) {
        return "its block has only " + std::to_string(status.st_size) + " bytes";
    }
    return {};
}

}  // namespace

Return<sp<IMemory>> AshmemMapper::mapMemory(const hidl_memory& memory) {
    std::string obstacle = findObstacle(memory);
    if (obstacle.empty()) {
        const auto size = static_cast<size_t>(memory.size());
        void* address = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED,
                             memory.handle()->data[0], 0);
        if (address != MAP_FAILED) {
            return sp<IMemory>(new MappedMemory(address, size));
        }
        obstacle = std::string("mmap: ") + strerror(errno);
    }
    ALOGE("cannot map memory of %" PRIu64 " bytes: %s", memory.size(), obstacle.c_str());
    return sp<IMemory>();
}

}  // namespace mlk::host
