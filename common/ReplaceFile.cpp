#include "common/ReplaceFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "common/File.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

// Brings a changed folder to storage. Not every file system can: then it does so in its own time.
void syncFolderOf(const std::string& path) {
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

// Leaves errno as it is.
void removeFile(const std::string& path) {
    const int error = errno;
    unlink(path.c_str());
    errno = error;
}

}  // namespace

Replaced replaceFile(const std::string& path, std::string_view text, mode_t mode) {
    const std::string fresh = path + ".new";
    {
        File file(fresh, O_WRONLY | O_CREAT | O_TRUNC, mode);
        if (!file.isOpen()) {
            errno = file.error();
            return Replaced::NOT_CREATED;
        }
        if (!file.writeAndSync(text)) {
            removeFile(fresh);
            return Replaced::NOT_WRITTEN;
        }
    }
    if (rename(fresh.c_str(), path.c_str()) != 0) {
        removeFile(fresh);
        return Replaced::NOT_CREATED;
    }
    syncFolderOf(path);
    return Replaced::DONE;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
