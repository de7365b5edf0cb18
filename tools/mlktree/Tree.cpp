#include "tools/mlktree/Tree.h"

#include <sys/stat.h>

#include <filesystem>
#include <system_error>
#include <utility>

#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

std::string withoutSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

// True if the path is the folder or lies in it.
bool isIn(std::string_view path, std::string_view folder) {
    return beginsWith(path, folder) &&
           (path.size() == folder.size() || folder == "/" || path[folder.size()] == '/');
}

}  // namespace

Tree::Tree(std::string root, const Apart& apart) : mRoot(withoutSlashes(std::move(root))) {
    const std::string& base = mRoot == "/" ? "" : mRoot;
    const auto folder = [&](const std::string& given, const char* name) {
        return given.empty() ? base + "/" + name : withoutSlashes(given);
    };
    mPartitions.tvconfigs = folder(apart.tvconfigs, "tvconfigs");
    mPartitions.tvdata = folder(apart.tvdata, "tvdata");
    mPartitions.impdata = folder(apart.impdata, "impdata");
    if (!isFolder(mPartitions.tvconfigs)) {
        throw UsageError("no partition tree: there is no folder " + mPartitions.tvconfigs +
                         "; name a folder that has tvconfigs/, or the partition with --tvconfigs");
    }
    for (const auto& [given, option] :
         {std::pair{apart.tvdata, "--tvdata"}, std::pair{apart.impdata, "--impdata"}}) {
        if (!given.empty() && !isFolder(given)) {
            throw UsageError(std::string(option) + ": there is no folder " + given);
        }
    }
}

std::string Tree::relative(std::string_view hostPath) const {
    for (const auto& [name, mountPoint] : kPartitionNames) {
        const std::string& folder = mPartitions.*mountPoint;
        if (isIn(hostPath, folder)) {
            std::string path(name.substr(1));
            path += hostPath.substr(folder.size());
            // Two slashes are one to the system: a file has one name.
            for (size_t at = path.find("//"); at != std::string::npos; at = path.find("//", at)) {
                path.erase(at, 1);
            }
            return path;
        }
    }
    if (isIn(hostPath, mRoot) && hostPath.size() > mRoot.size()) {
        return std::string(hostPath.substr(mRoot == "/" ? 1 : mRoot.size() + 1));
    }
    return std::string(hostPath);
}

std::string Tree::written(std::string_view hostPath) const {
    for (const auto& [name, mountPoint] : kPartitionNames) {
        const std::string& folder = mPartitions.*mountPoint;
        if (beginsWith(hostPath, folder)) {
            return std::string(name).append(hostPath.substr(folder.size()));
        }
    }
    return std::string(hostPath);
}

std::string Tree::host(std::string_view relativePath) const {
    if (beginsWith(relativePath, "/")) {
        return std::string(relativePath);
    }
    for (const auto& [name, mountPoint] : kPartitionNames) {
        const std::string_view folder = name.substr(1);
        if (isIn(relativePath, folder)) {
            return std::string(mPartitions.*mountPoint).append(relativePath.substr(folder.size()));
        }
    }
    return (mRoot == "/" ? "" : mRoot) + "/" + std::string(relativePath);
}

std::string Tree::hostOfWritten(std::string_view writtenPath) const {
    for (const auto& [name, mountPoint] : kPartitionNames) {
        if (beginsWith(writtenPath, name)) {
            return std::string(mPartitions.*mountPoint).append(writtenPath.substr(name.size()));
        }
    }
    return std::string(writtenPath);
}

// The name below partitions() of an existing file; the path itself if it lies outside.
std::string Tree::nameInPartitions(const std::string& hostPath) const {
    namespace fs = std::filesystem;
    std::string plain = fs::path(hostPath).lexically_normal();
    std::error_code error;
    // A link in a folder has a name of its own: only the way to the folder is resolved.
    const std::string folder = fs::canonical(fs::absolute(plain).parent_path(), error);
    for (const auto& each : kPartitionNames) {
        const std::string& partition = mPartitions.*each.mountPoint;
        if (isIn(plain, partition)) {
            return plain;
        }
        const std::string real = fs::canonical(partition, error);
        if (!real.empty() && isIn(folder, real)) {
            return partition + folder.substr(real.size()) + '/' +
                   fs::path(plain).filename().string();
        }
    }
    return hostPath;
}

std::string Tree::hostOfArgument(const std::string& argument) const {
    if (argument.empty()) {
        throw UsageError("an empty word names no file");
    }
    const auto exists = [](const std::string& path) {
        struct stat info {};
        return stat(path.c_str(), &info) == 0;
    };
    const std::string asWritten = hostOfWritten(argument);
    const std::string asRelative = host(argument);
    for (const std::string& path : {asWritten, asRelative, argument}) {
        if (exists(path)) {
            return nameInPartitions(path);
        }
    }
    return beginsWith(argument, "/") ? asWritten : asRelative;
}

}  // namespace mlk::tree
