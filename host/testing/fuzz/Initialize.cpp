// Linked into every fuzzer as an object: an engine finds the function only in the program itself.

#include <android/log.h>
#include <stdlib.h>
#include <unistd.h>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

int LLVMFuzzerInitialize(int* /* argc */, char*** /* argv */) {
    constexpr const char* kMemory = "/dev/shm";
    if (access(kMemory, W_OK) == 0) {
        setenv("TMPDIR", kMemory, 0);
    }
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger([](const __android_logger_data*, const char*) {});
    return 0;
}
