// The process of the three configuration services. It takes no argument but --help, and has no
// configuration of its own.

#include <hidl/HidlTransportSupport.h>
#include <malloc.h>

#include <csignal>

#include "frameworkconfigs/MlkFrameworkConfigs.h"
#include "projectconfigs/MlkProjectConfigs.h"
#include "projectconfigs/MlkProjectConfigsStub.h"
#include "service/CommandLine.h"
#include "service/Services.h"
#include "tvconfigs/MlkTvConfigs.h"

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;

namespace {

constexpr size_t kThreads = 10;  // the main thread among them

// Gives the memory that reading the files needed, and that is free now, back to the system.
void giveBackFreeMemory() {
#ifdef M_PURGE  // Android's allocators
    (void)mallopt(M_PURGE, 0);
#else
    (void)malloc_trim(0);
#endif
}

}  // namespace

int main(int argc, char** argv) {
    if (const auto status = answerArguments(argc, argv)) {
        return *status;
    }
    // A write beyond the limit of a file's size fails and is logged; it must not end the process.
    (void)signal(SIGXFSZ, SIG_IGN);
    android::hardware::configureRpcThreadpool(kThreads, true /* callerWillJoin */);
    installMlkProjectConfigsStub();
    const Services services(
            {[] { return new MlkProjectConfigs; },
             [](const char* tvConfigPath) { return new MlkTvConfigs(tvConfigPath); },
             [] { return new MlkFrameworkConfigs; }});
    giveBackFreeMemory();
    android::hardware::joinRpcThreadpool();
    return 0;
}
