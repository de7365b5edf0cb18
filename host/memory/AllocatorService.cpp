// The process of the "ashmem" allocator. It has neither a command line nor a configuration.

#define LOG_TAG "ashmem"

#include <hidl/HidlTransportSupport.h>
#include <log/log.h>
#include <signal.h>

#include <cstdlib>

#include "host/memory/AshmemAllocator.h"
#include "host/memory/SharedBlock.h"

using ::android::OK;
using ::android::sp;
using ::android::hidl::allocator::V1_0::IAllocator;

namespace {

// Allocating a block takes microseconds; the second thread works while the first sends a large
// reply.
constexpr size_t kThreads = 2;  // the main thread among them

}  // namespace

int main() {
    // Where the size of files is limited (ulimit -f), a block beyond the limit fails only its
    // request. The default action of the signal would end the process.
    (void)signal(SIGXFSZ, SIG_IGN);
    android::hardware::configureRpcThreadpool(kThreads, true /* callerWillJoin */);
    const sp<IAllocator> allocator = new mlk::host::AshmemAllocator;
    if (allocator->registerAsService(mlk::host::kAshmem) != OK) {
        ALOGE("could not register IAllocator");
        return EXIT_FAILURE;
    }
    ALOGD("registered IAllocator");
    android::hardware::joinRpcThreadpool();
    return EXIT_SUCCESS;
}
