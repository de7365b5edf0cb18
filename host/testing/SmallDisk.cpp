#include "host/testing/SmallDisk.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace mlk::testing {

namespace {

constexpr const char* kFiller = "filler";

}  // namespace

SmallDisk::SmallDisk() {
    // Uses a separate mount namespace, so that no mount is left when the process is killed.
    if (succeeded(unshare(CLONE_NEWNS), "unshare") &&
        succeeded(mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), "private mounts")) {
        succeeded(mount("tmpfs", mDir.path().c_str(), "tmpfs", 0, "size=64k,mode=0755"), "mount");
    }
}

SmallDisk::~SmallDisk() {
    while (umount2(mDir.path().c_str(), MNT_DETACH) == 0) {
    }
}

bool SmallDisk::succeeded(int result, const char* what) {
    if (result == 0) {
        return true;
    }
    mProblem = std::string("no file system can be mounted here: ") + what + ": " + strerror(errno);
    return false;
}

void SmallDisk::fill() const {
    const int fd = open(mDir.path(kFiller).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const std::string block(4096, 'f');
    while (write(fd, block.data(), block.size()) > 0) {
    }
    const int error = errno;
    close(fd);
    if (error != ENOSPC) {
        throw std::runtime_error("cannot fill the disk");
    }
}

void SmallDisk::drain() const {
    unlink(mDir.path(kFiller).c_str());
}

bool SmallDisk::keepWritableOnly(std::string_view file) {
    const std::string path = mDir.path(file);
    return succeeded(mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr), "bind") &&
           succeeded(mount("", mDir.path().c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY,
                           nullptr),
                     "remount");
}

}  // namespace mlk::testing
