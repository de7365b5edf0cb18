#include "tools/mlktree/FolderFiles.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace mlk::tree {

namespace {

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

bool isRegularFile(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool isFolder(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::string pathIn(const std::string& folder, const std::string& name) {
    std::string path = folder;
    path += '/';
    return path += name;
}

std::string folderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash);
}

FolderFiles filesIn(const std::string& hostFolder, std::string_view ending, size_t most) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(hostFolder.c_str()), closedir);
    if (folder == nullptr) {
        return {};
    }
    while (const dirent* const entry = readdir(folder.get())) {
        std::string name = entry->d_name;
        if (!endsWith(name, ending) || !isRegularFile(pathIn(hostFolder, name))) {
            continue;
        }
        if (names.size() == most) {
            return {{}, true};
        }
        names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end());
    return {std::move(names), false};
}

}  // namespace mlk::tree
