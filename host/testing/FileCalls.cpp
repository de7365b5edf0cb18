#include "host/testing/FileCalls.h"

#include <signal.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <system_error>
#include <utility>

namespace mlk::testing {

namespace {

std::atomic<FileCalls*> gCalls{nullptr};

// Makes the call, unless it is to fail.
template <typename Call>
auto pass(FileCall name, const Call& call) -> decltype(call(FileCallFate{})) {
    const FileCallFate fate = FileCalls::ask(name);
    if (fate.error != 0) {
        errno = fate.error;
        return -1;
    }
    return call(fate);
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
    size_t number = 0;
    {
        const std::lock_guard<std::mutex> lock(self->mMutex);
        number = self->mCalls.size();
        self->mCalls.push_back(call);
    }
    return self->mJudge ? self->mJudge(call, number) : FileCallFate{};
}

FileCalls::Judge failing(FileCall call, int error) {
    return [=](FileCall made, size_t) { return FileCallFate{made == call ? error : 0}; };
}

FileCalls::Judge withoutWaiting() {
    return failing(FileCall::FSYNC, EINVAL);  // like a file system that does not support it
}

bool isKilledAt(size_t number, const std::function<void()>& function) {
    const pid_t child = fork();
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child == 0) {
        const FileCalls calls([number](FileCall call, size_t before) {
            if (before == number) {
                ::kill(getpid(), SIGKILL);
            }
            return withoutWaiting()(call, before);
        });
        function();
        _exit(0);
    }
    int status = 0;
    TEMP_FAILURE_RETRY(waitpid(child, &status, 0));
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

}  // namespace mlk::testing

// The linker replaces calls of NAME by __wrap_NAME, and __real_NAME by NAME.
extern "C" {

using ::mlk::testing::FileCall;
using ::mlk::testing::FileCallFate;
using ::mlk::testing::pass;

ssize_t __real_pwrite(int fd, const void* data, size_t size, off_t offset);
int __real_fallocate(int fd, int mode, off_t offset, off_t size);
int __real_fchmod(int fd, mode_t mode);
int __real_fsync(int fd);
int __real_ftruncate(int fd, off_t size);
int __real_rename(const char* from, const char* to);
int __real_unlink(const char* path);

ssize_t __wrap_pwrite(int fd, const void* data, size_t size, off_t offset) {
    return pass(FileCall::PWRITE, [&](const FileCallFate& fate) {
        return __real_pwrite(fd, data, std::min(size, fate.most), offset);
    });
}

int __wrap_fallocate(int fd, int mode, off_t offset, off_t size) {
    return pass(FileCall::FALLOCATE,
                [&](const FileCallFate&) { return __real_fallocate(fd, mode, offset, size); });
}

int __wrap_fchmod(int fd, mode_t mode) {
    return pass(FileCall::FCHMOD, [&](const FileCallFate&) { return __real_fchmod(fd, mode); });
}

int __wrap_fsync(int fd) {
    return pass(FileCall::FSYNC, [&](const FileCallFate&) { return __real_fsync(fd); });
}

int __wrap_ftruncate(int fd, off_t size) {
    return pass(FileCall::FTRUNCATE,
                [&](const FileCallFate&) { return __real_ftruncate(fd, size); });
}

int __wrap_rename(const char* from, const char* to) {
    return pass(FileCall::RENAME, [&](const FileCallFate&) { return __real_rename(from, to); });
}

int __wrap_unlink(const char* path) {
    return pass(FileCall::UNLINK, [&](const FileCallFate&) { return __real_unlink(path); });
}
}
