#include "host/testing/ReadHook.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace mlk::testing {

namespace {

thread_local ReadHook::Read sRead;
thread_local int sCalls = 0;
thread_local bool sInside = false;

}  // namespace

ReadHook::ReadHook(Read read) {
    sRead = std::move(read);
    sCalls = 0;
}

ReadHook::~ReadHook() {
    sRead = nullptr;
}

int ReadHook::calls() {
    return sCalls;
}

ssize_t ReadHook::read(int descriptor, void* bytes, size_t size) {
    return syscall(SYS_read, descriptor, bytes, size);
}

ssize_t ReadHook::fail(int error) {
    errno = error;
    return -1;
}

}  // namespace mlk::testing

// Replaces the C library's function in a program that uses a hook.
extern "C" ssize_t read(int descriptor, void* bytes, size_t size) {
    using namespace mlk::testing;
    if (sRead == nullptr || sInside) {
        return ReadHook::read(descriptor, bytes, size);
    }
    // Also when the function throws.
    struct Inside {
        Inside() { sInside = true; }
        ~Inside() { sInside = false; }
    } const inside;
    ++sCalls;
    return sRead(descriptor, bytes, size);
}
