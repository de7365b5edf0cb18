#include "common/SaveFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <string_view>

#include "common/File.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr mode_t kMode = 0644;
constexpr int kMostLinks = 40;  // as many as the kernel follows

// Whether a call failed because the file system does not support it.
bool isNotOffered(int error) {
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
}

bool writeAt(int fd, off_t offset, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = TEMP_FAILURE_RETRY(pwrite(fd, text.data(), text.size(), offset));
        if (count <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<size_t>(count));
        offset += count;
    }
    return true;
}

bool sync(int fd) {
    return TEMP_FAILURE_RETRY(fsync(fd)) == 0 || isNotOffered(errno);
}

bool resize(int fd, off_t size) {
    return TEMP_FAILURE_RETRY(ftruncate(fd, size)) == 0;
}

// Appends zeros and allocates the blocks of the whole file.
bool growTo(int fd, off_t size, off_t formerSize) {
    if (TEMP_FAILURE_RETRY(fallocate(fd, 0, 0, size)) == 0) {
        return true;
    }
    return isNotOffered(errno) &&
           writeAt(fd, formerSize, std::string(static_cast<size_t>(size - formerSize), '\0'));
}

bool overwrite(int fd, off_t formerSize, std::string& text) {
    const auto size = static_cast<off_t>(text.size());
    // The new size must be on storage before the text: the new text cut to the old size could mean
    // something else.
    if (size > formerSize && !(growTo(fd, size, formerSize) && sync(fd))) {
        const int error = errno;
        resize(fd, formerSize);
        errno = error;
        return false;
    }
    if (size < formerSize) {
        text += '\0';
    }
    return writeAt(fd, 0, text) && sync(fd) && (size >= formerSize || resize(fd, size));
}

// Resolves symbolic links; the result need not exist.
std::string targetOf(std::string path) {
    char target[PATH_MAX];
    for (int links = 0; links < kMostLinks; ++links) {
        const ssize_t size = readlink(path.c_str(), target, sizeof target);
        if (size <= 0 || size == sizeof target) {
            break;
        }
        // A relative link is relative to its own folder.
        path.resize(target[0] == '/' ? 0 : path.rfind('/') + 1);
        path.append(target, static_cast<size_t>(size));
    }
    return path;
}

// Removes the file and keeps errno.
Saved withoutFile(const std::string& path, Saved result) {
    const int error = errno;
    unlink(path.c_str());
    errno = error;
    return result;
}

}  // namespace

Saved saveFile(const std::string& path, std::string text) {
    const File file(path, O_WRONLY);
    if (file.isMissing()) {
        return createFile(path, text);
    }
    if (!file.isOpen()) {
        errno = file.error();
        return Saved::NOT_OPENED;
    }
    return overwrite(file.descriptor(), static_cast<off_t>(file.size()), text) ? Saved::DONE
                                                                               : Saved::NOT_WRITTEN;
}

Saved createFile(const std::string& path, const std::string& text) {
    const std::string target = targetOf(path);
    struct stat about {};
    if (lstat(target.c_str(), &about) == 0) {
        errno = EEXIST;
    }
    if (errno != ENOENT) {
        return Saved::NOT_OPENED;
    }
    const std::string fresh = target + ".new";
    unlink(fresh.c_str());  // left by a process that ended before renaming it
    {
        const File file(fresh, O_WRONLY | O_CREAT | O_EXCL, kMode);
        if (!file.isOpen()) {
            errno = file.error();
            return Saved::NOT_OPENED;
        }
        const int fd = file.descriptor();
        // A failure is harmless: the file system has no modes.
        if (fstat(fd, &about) == 0 && (about.st_mode & ALLPERMS) != kMode) {
            static_cast<void>(fchmod(fd, kMode));
        }
        if (!writeAt(fd, 0, text) || !sync(fd)) {
            return withoutFile(fresh, Saved::NOT_WRITTEN);
        }
    }
    if (rename(fresh.c_str(), target.c_str()) != 0) {
        return withoutFile(fresh, Saved::NOT_OPENED);
    }
    syncFolderOf(target);
    return Saved::DONE;
}

void syncFolderOf(const std::string& path) {
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        sync(fd);
        close(fd);
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
