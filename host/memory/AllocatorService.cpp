// The process of the "ashmem" allocator. It has no command line and no configuration of its own.

#include <android/log.h>
#include <hidl/HidlTransportSupport.h>
#include <signal.h>

#include <cstdlib>

#include "host/memory/AshmemAllocator.h"
#include "host/memory/SharedBlock.h"

using ::android::OK;
using ::android::sp;
using ::android::hidl::allocator::V1_0::IAllocator;

namespace {

// A block takes microseconds; the second thread is there while the first gives a large reply.
constexpr size_t kThreads = 2;  // the main thread among them

}  // namespace

int main() {
    // Where the size of files is limited (ulimit -f), a block beyond the limit is an error of that
    // request. By default the signal would end the process for it.
    (void)signal(SIGXFSZ, SIG_IGN);
    android::hardware::configureRpcThreadpool(kThreads, true /* callerWillJoin */);
    const sp<IAllocator> allocator = new mlk::host::AshmemAllocator;
    if (allocator->registerAsService(mlk::host::kAshmem) != OK) {
        __android_log_print(ANDROID_LOG_ERROR, mlk::host::kAshmem, "could not register IAllocator");
        return EXIT_FAILURE;
    }
    __android_log_print(ANDROID_LOG_DEBUG, mlk::host::kAshmem, "registered IAllocator");
    android::hardware::joinRpcThreadpool();
    return EXIT_SUCCESS;
}
