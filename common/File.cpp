#include "common/File.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

File::File(const std::string& path, int flags, mode_t mode) {
    struct stat about {};
    if (stat(path.c_str(), &about) == 0 && !S_ISREG(about.st_mode)) {
        mIsRegular = false;
        return;
    }
    // O_NONBLOCK: the path may lead to a FIFO by now.
    mFd = static_cast<int>(
            TEMP_FAILURE_RETRY(::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, mode)));
    if (mFd < 0) {
        mError = errno;
        return;
    }
    if (fstat(mFd, &about) != 0 || !S_ISREG(about.st_mode)) {
        mIsRegular = false;
        close(mFd);
        mFd = -1;
        return;
    }
    mSize = static_cast<size_t>(about.st_size);
}

File::~File() {
    if (isOpen()) {
        close(mFd);
    }
}

bool File::isMissing() const {
    return mError == ENOENT || mError == ENOTDIR;
}

std::string File::reason() const {
    return mIsRegular ? std::generic_category().message(mError) : "not a regular file";
}

ssize_t File::read(char* buffer, size_t size) {
    return TEMP_FAILURE_RETRY(::read(mFd, buffer, size));
}

ssize_t File::readUpTo(char* buffer, size_t size) {
    size_t filled = 0;
    while (filled < size) {
        const ssize_t count = read(buffer + filled, size - filled);
        if (count < 0) {
            return -1;
        }
        if (count == 0) {
            break;
        }
        filled += static_cast<size_t>(count);
    }
    return static_cast<ssize_t>(filled);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
