// A library to be preloaded into a program under test (LD_PRELOAD): it has one of the program's
// calls on files fail, or kills the program at it.
//
//   MLK_FAULT_BELOW   only calls on files below these folders count (full paths, ":" between them),
//                     and on descriptors opened there
//   MLK_FAULT_LOG     every such call is written there, its name a line
//   MLK_FAULT_AT      "NAME NUMBER ACTION": the call of that name and number, from 1 on, comes to
//                     ACTION: an errno (5), "kill", "short" (half of what would be done is done),
//                     "hold" (it waits until the FIFO MLK_FAULT_GATE is open for writing).
//                     NUMBER may be "3+": that call and all later ones. NAME may be "any", or
//                     "change": what changes files or folders.
//
// "memory" is a call too: each allocation by operator new; so is "trim", malloc_trim(). An open()
// that may write is "openw".

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <new>

namespace {

constexpr int kDescriptors = 4096;
constexpr int kNoFault = 0;
constexpr int kKill = -1;
constexpr int kShort = -2;
constexpr int kHold = -3;

struct Plan {
    const char* below = getenv("MLK_FAULT_BELOW");
    int log = -1;
    char name[32] = "";
    long number = 0;
    bool onwards = false;
    int action = kNoFault;

    Plan() {
        const char* const logPath = getenv("MLK_FAULT_LOG");
        if (logPath != nullptr) {
            log = static_cast<int>(syscall(SYS_openat, AT_FDCWD, logPath,
                                           O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
        }
        const char* at = getenv("MLK_FAULT_AT");
        const char* const space = at == nullptr ? nullptr : strchr(at, ' ');
        if (space == nullptr || static_cast<size_t>(space - at) >= sizeof name) {
            return;
        }
        memcpy(name, at, static_cast<size_t>(space - at));
        char* rest = nullptr;
        number = strtol(space, &rest, 10);
        onwards = *rest == '+';
        rest += onwards ? 1 : 0;
        rest += strspn(rest, " ");
        action = strcmp(rest, "kill") == 0    ? kKill
                 : strcmp(rest, "short") == 0 ? kShort
                 : strcmp(rest, "hold") == 0  ? kHold
                                              : atoi(rest);
    }
};

const Plan& plan() {
    static const Plan thePlan;
    return thePlan;
}

std::atomic<bool> sWatched[kDescriptors];
std::atomic<long> sCount{0};

bool isBelow(const char* path) {
    const char* folder = plan().below;
    while (folder != nullptr && path != nullptr) {
        const size_t size = strcspn(folder, ":");
        if (strncmp(path, folder, size) == 0) {
            return true;
        }
        folder = folder[size] == ':' ? folder + size + 1 : nullptr;
    }
    return false;
}

bool isWatched(int descriptor) {
    return descriptor >= 0 && descriptor < kDescriptors && sWatched[descriptor];
}

void watch(int descriptor, bool watched) {
    if (descriptor >= 0 && descriptor < kDescriptors) {
        sWatched[descriptor] = watched;
    }
}

bool isMeant(const char* call, const char* name) {
    if (strcmp(call, name) == 0) {
        return true;
    }
    if (strcmp(name, "change") == 0) {
        constexpr const char* kChanges[] = {"openw",  "write", "fallocate", "fsync", "ftruncate",
                                            "fchmod", "mkdir", "rename",    "unlink"};
        for (const char* const change : kChanges) {
            if (strcmp(call, change) == 0) {
                return true;
            }
        }
    }
    const bool isOnFiles = strcmp(call, "memory") != 0 && strcmp(call, "trim") != 0;
    return strcmp(name, "any") == 0 && isOnFiles;
}

// Waits until another process has opened the other end.
void waitAtGate() {
    const long gate = syscall(SYS_openat, AT_FDCWD, getenv("MLK_FAULT_GATE"), O_RDONLY | O_CLOEXEC);
    (void)syscall(SYS_close, gate);
}

// Returns the fate of this call: nothing, an errno, or kShort. Does not return for kKill.
int fateOf(const char* call) {
    const Plan& thePlan = plan();
    if (thePlan.log >= 0) {
        char line[40];
        const size_t size = strnlen(call, sizeof line - 1);
        memcpy(line, call, size);
        line[size] = '\n';
        (void)syscall(SYS_write, thePlan.log, line, size + 1);
    }
    if (thePlan.action == kNoFault || !isMeant(call, thePlan.name)) {
        return kNoFault;
    }
    const long number = ++sCount;
    if (thePlan.onwards ? number < thePlan.number : number != thePlan.number) {
        return kNoFault;
    }
    if (thePlan.action == kKill) {
        (void)syscall(SYS_kill, getpid(), SIGKILL);
    }
    if (thePlan.action == kHold) {
        waitAtGate();
        return kNoFault;
    }
    return thePlan.action;
}

// Half of the bytes that a read would return; of a file, half of the rest.
size_t halfOfWhatComes(int descriptor, size_t size) {
    struct stat about {};
    const off_t at = lseek(descriptor, 0, SEEK_CUR);
    if (at >= 0 && fstat(descriptor, &about) == 0 && S_ISREG(about.st_mode) && about.st_size > at) {
        const auto left = static_cast<size_t>(about.st_size - at);
        size = left < size ? left : size;
    }
    return size > 1 ? size / 2 : size;
}

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Makes the call, unless it is to fail.
template <typename Result, typename Call>
Result pass(const char* name, bool counts, const Call& call) {
    const int fate = counts ? fateOf(name) : kNoFault;
    if (fate > 0) {
        errno = fate;
        return -1;
    }
    return call();
}

int openAt(int folder, const char* path, int flags, mode_t mode) {
    const bool counts = isBelow(path);
    const char* const name = (flags & O_ACCMODE) == O_RDONLY ? "open" : "openw";
    const int descriptor = pass<int>(name, counts, [&] {
        return static_cast<int>(syscall(SYS_openat, folder, path, flags, mode));
    });
    watch(descriptor, counts);
    return descriptor;
}

mode_t modeOf(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openAt(AT_FDCWD, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openAt(AT_FDCWD, path, flags, mode);
}

int close(int descriptor) {
    const bool counts = isWatched(descriptor);
    watch(descriptor, false);
    const int fate = counts ? fateOf("close") : kNoFault;
    // Close the descriptor even when the call is to fail.
    const auto result = static_cast<int>(syscall(SYS_close, descriptor));
    if (fate > 0) {
        errno = fate;
        return -1;
    }
    return result;
}

ssize_t read(int descriptor, void* bytes, size_t size) {
    const int fate = isWatched(descriptor) ? fateOf("read") : kNoFault;
    if (fate > 0) {
        errno = fate;
        return -1;
    }
    return syscall(SYS_read, descriptor, bytes,
                   fate == kShort ? halfOfWhatComes(descriptor, size) : size);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
    const int fate = isWatched(descriptor) ? fateOf("write") : kNoFault;
    if (fate > 0) {
        errno = fate;
        return -1;
    }
    return syscall(SYS_write, descriptor, bytes, fate == kShort && size > 1 ? size / 2 : size);
}

ssize_t pwrite(int descriptor, const void* bytes, size_t size, off_t offset) {
    const int fate = isWatched(descriptor) ? fateOf("write") : kNoFault;
    if (fate > 0) {
        errno = fate;
        return -1;
    }
    return syscall(SYS_pwrite64, descriptor, bytes, fate == kShort && size > 1 ? size / 2 : size,
                   offset);
}

int fallocate(int descriptor, int mode, off_t offset, off_t size) {
    return pass<int>("fallocate", isWatched(descriptor), [&] {
        return static_cast<int>(syscall(SYS_fallocate, descriptor, mode, offset, size));
    });
}

int fchmod(int descriptor, mode_t mode) {
    return pass<int>("fchmod", isWatched(descriptor),
                     [&] { return static_cast<int>(syscall(SYS_fchmod, descriptor, mode)); });
}

int fsync(int descriptor) {
    return pass<int>("fsync", isWatched(descriptor),
                     [&] { return static_cast<int>(syscall(SYS_fsync, descriptor)); });
}

int fdatasync(int descriptor) {
    return pass<int>("fsync", isWatched(descriptor),
                     [&] { return static_cast<int>(syscall(SYS_fdatasync, descriptor)); });
}

int ftruncate(int descriptor, off_t size) {
    return pass<int>("ftruncate", isWatched(descriptor),
                     [&] { return static_cast<int>(syscall(SYS_ftruncate, descriptor, size)); });
}

int access(const char* path, int mode) {
    return pass<int>("access", isBelow(path), [&] {
        return static_cast<int>(syscall(SYS_faccessat, AT_FDCWD, path, mode));
    });
}

int mkdir(const char* path, mode_t mode) {
    return pass<int>("mkdir", isBelow(path),
                     [&] { return static_cast<int>(syscall(SYS_mkdirat, AT_FDCWD, path, mode)); });
}

int rename(const char* from, const char* to) {
    return pass<int>("rename", isBelow(to),
                     [&] { return next<decltype(rename)>("rename")(from, to); });
}

int malloc_trim(size_t padding) {
    if (fateOf("trim") > 0) {
        return 0;
    }
    using Trim = int(size_t);
    return next<Trim>("malloc_trim")(padding);
}

int unlink(const char* path) {
    return pass<int>("unlink", isBelow(path),
                     [&] { return next<decltype(unlink)>("unlink")(path); });
}

}  // extern "C"

void* operator new(size_t size) {
    void* const memory = fateOf("memory") > 0 ? nullptr : malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new[](size_t size) {
    return operator new(size);
}

void operator delete(void* memory) noexcept {
    free(memory);
}

void operator delete[](void* memory) noexcept {
    free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    free(memory);
}

void operator delete[](void* memory, size_t) noexcept {
    free(memory);
}
