#include "tvconfigs/tests/FileCalls.h"

#include <sys/types.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <utility>

namespace {

std::atomic<FileCalls*> gCalls{nullptr};

int failed(int error) {
    errno = error;
    return -1;
}

}  // namespace

FileCalls::FileCalls(Judge judge) : mJudge(std::move(judge)) {
    gCalls = this;
}

FileCalls::~FileCalls() {
    gCalls = nullptr;
}

FileCallFate FileCalls::ask(FileCall call) {
    FileCalls* self = gCalls;
    if (self == nullptr) {
        return {};
    }
    self->mCalls.push_back(call);
    return self->mJudge ? self->mJudge(call, self->mCalls.size() - 1) : FileCallFate{};
}

// The linker turns calls of NAME into calls of __wrap_NAME, and __real_NAME into NAME.
extern "C" {

ssize_t __real_write(int fd, const void* data, size_t size);
int __real_fdatasync(int fd);
int __real_ftruncate(int fd, off_t size);

ssize_t __wrap_write(int fd, const void* data, size_t size) {
    const FileCallFate fate = FileCalls::ask(FileCall::WRITE);
    return fate.error != 0 ? failed(fate.error) : __real_write(fd, data, std::min(size, fate.most));
}

int __wrap_fdatasync(int fd) {
    const FileCallFate fate = FileCalls::ask(FileCall::FDATASYNC);
    return fate.error != 0 ? failed(fate.error) : __real_fdatasync(fd);
}

int __wrap_ftruncate(int fd, off_t size) {
    const FileCallFate fate = FileCalls::ask(FileCall::FTRUNCATE);
    return fate.error != 0 ? failed(fate.error) : __real_ftruncate(fd, size);
}
}
