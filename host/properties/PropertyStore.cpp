#include "host/properties/PropertyStore.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#if __has_include(<sys/system_properties.h>)
#include <sys/system_properties.h>
#endif
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <memory>

#include <android-base/unique_fd.h>

// A build machine of a platform has no such header, but the values of trees have the same limit.
#ifndef PROP_VALUE_MAX
#define PROP_VALUE_MAX 92
#endif

namespace mlk::host {

using android::base::unique_fd;

namespace {

constexpr std::string_view kSetOnce = "ro.";

bool isKeyCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("_.@:-").find(c) != std::string_view::npos;
}

int openFile(const std::string& path, int flags) {
    return static_cast<int>(TEMP_FAILURE_RETRY(open(path.c_str(), flags | O_CLOEXEC, 0644)));
}

unique_fd openRegular(const std::string& path) {
    // A pipe in the place of a value must not block the reader.
    unique_fd fd(openFile(path, O_RDONLY | O_NONBLOCK | O_NOCTTY));
    struct stat info {};
    if (!fd.ok() || fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return {};
    }
    return fd;
}

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = TEMP_FAILURE_RETRY(write(fd, text.data(), text.size()));
        if (written <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

}  // namespace

PropertyStore PropertyStore::ofThisSet() {
    const char* root = getenv("MLK_ROOT");
    return PropertyStore(std::string(root == nullptr ? "" : root) + "/data/property");
}

bool PropertyStore::isKey(std::string_view key) {
    return !key.empty() && key.size() <= NAME_MAX && key.front() != '.' && key.back() != '.' &&
           key.find("..") == std::string_view::npos &&
           std::all_of(key.begin(), key.end(), isKeyCharacter);
}

std::string PropertyStore::pathOf(std::string_view key) const {
    return mFolder + "/" + std::string(key);
}

std::optional<std::string> PropertyStore::get(std::string_view key) const {
    if (!isKey(key)) {
        return {};
    }
    const unique_fd fd = openRegular(pathOf(key));
    if (!fd.ok()) {
        return {};
    }
    std::array<char, PROP_VALUE_MAX - 1> value{};
    size_t size = 0;
    while (size < value.size()) {
        const ssize_t got =
                TEMP_FAILURE_RETRY(read(fd.get(), value.data() + size, value.size() - size));
        if (got <= 0) {
            break;
        }
        size += static_cast<size_t>(got);
    }
    const std::string_view text(value.data(), size);
    return std::string(text.substr(0, text.find('\0')));
}

int PropertyStore::createTemporary(std::string* path) const {
    // Keys do not begin with a dot, so nobody takes the file for a property. If a killed process of
    // the same id left its file, the next number is tried.
    static std::atomic<unsigned> count{0};
    int fd = -1;
    do {
        *path = mFolder + "/.new-" + std::to_string(getpid()) + "-" + std::to_string(count++);
        fd = openFile(*path, O_WRONLY | O_CREAT | O_EXCL);
    } while (fd < 0 && errno == EEXIST);
    return fd;
}

bool PropertyStore::set(std::string_view key, std::string_view value) const {
    if (!isKey(key) || value.size() >= PROP_VALUE_MAX) {
        errno = EINVAL;
        return false;
    }
    std::string temporary;
    unique_fd fd(createTemporary(&temporary));
    if (!fd.ok() && errno == ENOENT) {
        mkdir(mFolder.substr(0, mFolder.rfind('/')).c_str(), 0755);
        mkdir(mFolder.c_str(), 0755);
        fd.reset(createTemporary(&temporary));
    }
    if (!fd.ok()) {
        return false;
    }
    bool done = writeAll(fd.get(), value);
    if (done && key.substr(0, kSetOnce.size()) == kSetOnce) {
        // Unlike rename(2), link(2) fails if the name exists.
        done = link(temporary.c_str(), pathOf(key).c_str()) == 0;
    } else if (done) {
        done = rename(temporary.c_str(), pathOf(key).c_str()) == 0;
    }
    const int error = errno;
    unlink(temporary.c_str());
    errno = error;
    return done;
}

std::vector<std::string> PropertyStore::keys() const {
    std::vector<std::string> result;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(mFolder.c_str()), closedir);
    while (folder != nullptr) {
        const dirent* entry = readdir(folder.get());
        if (entry == nullptr) {
            break;
        }
        if (isKey(entry->d_name) && openRegular(pathOf(entry->d_name)).ok()) {
            result.emplace_back(entry->d_name);
        }
    }
    std::sort(result.begin(), result.end());
    return result;
}

}  // namespace mlk::host
