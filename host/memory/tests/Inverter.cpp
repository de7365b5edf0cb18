// Another process that receives blocks of shared memory. IMapper/inverter maps a block, inverts
// each byte of it, and answers with the mapped memory.

#include <android/hidl/memory/1.0/IMapper.h>
#include <hidl/HidlTransportSupport.h>
#include <hidlmemory/mapping.h>

#include <algorithm>
#include <cstdio>

using ::android::OK;
using ::android::sp;
using ::android::hardware::hidl_memory;
using ::android::hardware::Return;
using ::android::hidl::memory::V1_0::IMapper;
using ::android::hidl::memory::V1_0::IMemory;

namespace {

class Inverter : public IMapper {
  public:
    Return<sp<IMemory>> mapMemory(const hidl_memory& memory) override {
        sp<IMemory> mapped = android::hardware::mapMemory(memory);
        if (mapped != nullptr) {
            auto* bytes = static_cast<uint8_t*>(static_cast<void*>(mapped->getPointer()));
            std::transform(bytes, bytes + mapped->getSize(), bytes,
                           [](uint8_t byte) { return static_cast<uint8_t>(~byte); });
        }
        return mapped;
    }
};

}  // namespace

int main() {
    android::hardware::configureRpcThreadpool(1, true /* callerWillJoin */);
    const sp<IMapper> inverter = new Inverter;
    if (inverter->registerAsService("inverter") != OK) {
        return 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    android::hardware::joinRpcThreadpool();
    return 0;
}
