// hidl_test_server [INSTANCE [THREADS [DESCRIPTORS]]]: a server of the tests' interface.
//
// Registers it and writes "ready". THREADS (default 4) is the pool's maximum. With "+join", as in
// "10+join", the first thread joins the pool. Otherwise the server ends with its standard input, so
// that the sanitizers can report. DESCRIPTORS permanently limits its open descriptors.
#include <hidl/HidlTransportSupport.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "Everything.h"

using ::android::hardware::configureRpcThreadpool;
using ::android::hardware::joinRpcThreadpool;

int main(int argc, char** argv) {
    const std::string instance = argc > 1 ? argv[1] : "default";
    const std::string pool = argc > 2 ? argv[2] : "4";
    const bool join = pool.find("+join") != std::string::npos;
    if (argc > 3) {
        const rlim_t limit = strtoul(argv[3], nullptr, 10);
        const rlimit both{limit, limit};
        if (setrlimit(RLIMIT_NOFILE, &both) != 0) {
            return 2;
        }
    }
    configureRpcThreadpool(strtoul(pool.c_str(), nullptr, 10), join);
    const ::android::sp<mlk::test::IEverything> service = new mlk::test::Everything;
    if (service->registerAsService(instance) != ::android::OK) {
        (void)fprintf(stderr, "not registered\n");
        return 1;
    }
    (void)printf("ready\n");
    (void)fflush(stdout);
    if (join) {
        joinRpcThreadpool();
    }
    char byte;
    while (read(STDIN_FILENO, &byte, 1) > 0) {
    }
    return 0;
}
