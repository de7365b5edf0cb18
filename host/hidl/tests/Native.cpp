#include "Native.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <system_error>

namespace mlk::test {

namespace {
[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}
}  // namespace

hidl_handle handleOf(std::vector<unique_fd> descriptors, const std::vector<int>& numbers) {
    native_handle_t* native = native_handle_create(static_cast<int>(descriptors.size()),
                                                   static_cast<int>(numbers.size()));
    if (native == nullptr) {
        fail("native_handle_create");
    }
    int* next = &native->data[0];
    for (unique_fd& descriptor : descriptors) {
        *next++ = descriptor.release();
    }
    for (const int number : numbers) {
        *next++ = number;
    }
    hidl_handle handle;
    handle.setTo(native, true);
    return handle;
}

Pipe::Pipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        fail("pipe2");
    }
    out.reset(ends[0]);
    in.reset(ends[1]);
}

unique_fd fileWith(const std::string& text) {
    unique_fd file(memfd_create("test", MFD_CLOEXEC));
    if (!file.ok() || write(file.get(), text.data(), text.size()) < 0) {
        fail("memfd_create");
    }
    return file;
}

hidl_memory memoryWith(const std::string& text) {
    std::vector<unique_fd> descriptors;
    descriptors.push_back(fileWith(text));
    const hidl_handle handle = handleOf(std::move(descriptors));
    const hidl_memory borrowed("ashmem", handle, text.size());
    return {borrowed};
}

std::string contentOf(int file) {
    std::string text(1 << 20, '\0');
    const ssize_t got = pread(file, text.data(), text.size(), 0);
    if (got < 0) {
        fail("pread");
    }
    text.resize(static_cast<size_t>(got));
    return text;
}

std::string readFrom(int pipe, size_t most) {
    std::string text(most, '\0');
    size_t filled = 0;
    while (filled < most) {
        const ssize_t got = TEMP_FAILURE_RETRY(read(pipe, text.data() + filled, most - filled));
        if (got < 0) {
            fail("read");
        }
        if (got == 0) {
            break;
        }
        filled += static_cast<size_t>(got);
    }
    text.resize(filled);
    return text;
}

std::vector<int> inheritable() {
    std::vector<int> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), &closedir);
    while (const dirent* entry = readdir(folder.get())) {
        const int descriptor = atoi(entry->d_name);
        const int flags = fcntl(descriptor, F_GETFD);
        if (flags >= 0 && (flags & FD_CLOEXEC) == 0) {
            found.push_back(descriptor);
        }
    }
    return found;
}

}  // namespace mlk::test
