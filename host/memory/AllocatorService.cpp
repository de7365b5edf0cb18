// The process of the "ashmem" allocator. It takes no argument but --help.

#define LOG_TAG "ashmem"

#include <hidl/HidlTransportSupport.h>
#include <log/log.h>
#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "host/memory/AshmemAllocator.h"
#include "host/memory/SharedBlock.h"

using ::android::OK;
using ::android::sp;
using ::android::hidl::allocator::V1_0::IAllocator;

namespace {

// Allocating a block takes microseconds; the second thread works while the first sends a large
// reply.
constexpr size_t kThreads = 2;  // the main thread among them

constexpr const char* kHelp =
        R"(android.hidl.allocator@1.0-service - allocates the shared memory of a Linux host

Usage: android.hidl.allocator@1.0-service [--help]

Registers android.hidl.allocator@1.0::IAllocator as "ashmem", from which the configuration service
gets the memory for the answers of getVendorPartitionFile, and answers calls until something ends it.

Options:
  -h, --help  this text

Environment:
  MLK_RUNTIME_DIR   where its socket is; default $XDG_RUNTIME_DIR/mlkconfigs, else /run/mlkconfigs
  ANDROID_LOG_TAGS  which log lines go to standard error, default *:I

Exit status:
  0  the help was printed
  1  it cannot register, or the help could not be written
  2  the command line is wrong
)";

// Answers any argument. Returns the exit status.
int answerArgument(std::string_view argument) {
    if (argument == "--help" || argument == "-h") {
        return fputs(kHelp, stdout) >= 0 && fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    fprintf(stderr, "android.hidl.allocator@1.0-service: it takes no argument '%.*s'; see --help\n",
            static_cast<int>(argument.size()), argument.data());
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 1) {
        return answerArgument(argv[1]);
    }
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
