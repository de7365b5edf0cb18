#include "tvconfigs/RewriteInPlace.h"

#include <android-base/file.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::base::unique_fd;

namespace {

unique_fd openRegular(const std::string& path, off_t* size) {
    struct stat about {};
    // Opening a device may already set something off.
    if (stat(path.c_str(), &about) == 0 && !S_ISREG(about.st_mode)) {
        return {};
    }
    // O_NONBLOCK: what is under the path may have become a FIFO meanwhile.
    constexpr int kFlags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK;
    int result = -1;
    do {
        result = open(path.c_str(), kFlags, 0666);
    } while (result < 0 && errno == EINTR);
    unique_fd fd(result);
    if (!fd.ok() || fstat(fd.get(), &about) != 0 || !S_ISREG(about.st_mode)) {
        return {};
    }
    *size = about.st_size;
    return fd;
}

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(fd, text.data(), text.size());
        if (count > 0) {
            text.remove_prefix(static_cast<size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool cut(int fd, off_t size) {
    int result = 0;
    do {
        result = ftruncate(fd, size);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

}  // namespace

Rewritten rewriteInPlace(const std::string& path, std::string text) {
    off_t formerSize = 0;
    const unique_fd fd = openRegular(path, &formerSize);
    if (!fd.ok()) {
        return Rewritten::NOT_OPENED;
    }
    const auto size = static_cast<off_t>(text.size());
    if (size >= formerSize) {
        return writeAll(fd.get(), text) ? Rewritten::DONE : Rewritten::NOT_WRITTEN;
    }
    text += '\0';
    if (!writeAll(fd.get(), text)) {
        return Rewritten::NOT_WRITTEN;
    }
    // A new size can reach storage long before new bytes do; the old bytes, cut, would lose their
    // last lines.
    fdatasync(fd.get());
    return cut(fd.get(), size) ? Rewritten::DONE : Rewritten::NOT_WRITTEN;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
