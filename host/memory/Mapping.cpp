#define LOG_TAG "hidlmemory"

#include <hidlmemory/mapping.h>
#include <log/log.h>

#include "host/memory/AshmemMapper.h"
#include "host/memory/SharedBlock.h"

namespace android::hardware {

sp<::android::hidl::memory::V1_0::IMemory> mapMemory(const hidl_memory& memory) {
    const char* obstacle = nullptr;
    if (!memory.valid()) {
        obstacle = "it is empty";
    } else if (memory.name() != mlk::host::kAshmem) {
        obstacle = "there is no mapper for its kind";
    }
    if (obstacle != nullptr) {
        ALOGE("cannot map memory of kind \"%s\": %s", memory.name().c_str(), obstacle);
        return nullptr;
    }
    const sp<mlk::host::AshmemMapper> mapper = new mlk::host::AshmemMapper;
    return mapper->mapMemory(memory);
}

}  // namespace android::hardware
