#include "tools/mlktree/rules/NearFiles.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "common/Paths.h"
#include "tools/mlktree/FolderFiles.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"
#include "tools/mlktree/rules/Meaning.h"
#include "tools/mlktree/rules/MeaningPath.h"

namespace mlk::tree {

namespace {

using vendor::morlak::mlkconfigs::V1_0::implementation::fileNameOf;
using vendor::morlak::mlkconfigs::V1_0::implementation::pathExists;

std::string folderIn(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

// The name that is meant: with another ending, or with a typing mistake. Names that differ in
// their numbers only are different files.
std::string nearName(const std::string& name, const std::vector<std::string>& names) {
    const auto stem = [](std::string_view text) { return text.substr(0, text.find_last_of(".,")); };
    std::vector<std::string_view> stems;
    for (const std::string& other : names) {
        if (stem(other) == stem(name) || stem(other) == name) {
            return other;
        }
        stems.push_back(stem(other));
    }
    const std::string_view found = nearestName(stem(name), stems);
    const auto whole = std::find(stems.begin(), stems.end(), found);
    return found.empty() ? "" : names[static_cast<size_t>(whole - stems.begin())];
}

}  // namespace

std::optional<std::string> linkTarget(const std::string& host) {
    constexpr size_t kMostBytes = 4096;
    std::array<char, kMostBytes> target{};
    const ssize_t size = readlink(host.c_str(), target.data(), target.size());
    return size > 0 && !pathExists(host)
                   ? std::optional(std::string(target.data(), static_cast<size_t>(size)))
                   : std::nullopt;
}

const NearFiles::Folder& NearFiles::folderAt(const std::string& path) {
    constexpr size_t kMostEntries = 100'000;  // of a larger folder, those that are found first
    constexpr size_t kMostNames = 2'000;      // each is compared with each missing file
    const auto [at, isNew] = mFolders.try_emplace(path);
    Folder& folder = at->second;
    if (!isNew) {
        return folder;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(path.c_str()), closedir);
    for (const dirent* entry = nullptr; open != nullptr && folder.byCase.size() < kMostEntries &&
                                        (entry = readdir(open.get())) != nullptr;) {
        std::string name = entry->d_name;
        if (name.front() != '.') {
            folder.names.push_back(name);
        }
        std::string& first = folder.byCase[lowerCase(name)];
        first = first.empty() ? name : std::min(first, name);
    }
    std::sort(folder.names.begin(), folder.names.end());
    folder.names.resize(std::min(folder.names.size(), kMostNames));
    return folder;
}

std::string NearFiles::inAnotherCase(const std::string& host) {
    std::string found = host.front() == '/' ? "" : ".";
    size_t at = 0;
    while (at < host.size()) {
        const size_t begin = host.find_first_not_of('/', at);
        if (begin == std::string::npos) {
            break;
        }
        const size_t end = std::min(host.find('/', begin), host.size());
        const std::string part = host.substr(begin, end - begin);
        at = end;
        std::string next = pathIn(found, part);
        if (!pathExists(next)) {
            const Folder& folder = folderAt(found.empty() ? "/" : found);
            const auto other = folder.byCase.find(lowerCase(part));
            next = other != folder.byCase.end() ? pathIn(found, other->second) : "";
            if (next.empty() || !pathExists(next)) {
                return {};
            }
        }
        found = std::move(next);
    }
    return host.front() == '/' ? found : found.substr(2);
}

std::string NearFiles::nearFile(const std::string& host) {
    const Tree& tree = mTree;
    // A whole path in place of a name, as in a map of plans.
    const std::string whole = pathInside(tree.written(host));
    if (!whole.empty() && isRegularFile(tree.hostOfWritten(whole))) {
        return tree.hostOfWritten(whole);
    }
    const std::string folder = folderIn(host);
    const std::string name(fileNameOf(host));
    const std::string above = folderIn(folder);
    if (pathExists(folder) && !isRegularFile(folder)) {
        const std::string near = nearName(name, folderAt(folder).names);
        return near.empty() || !isRegularFile(folder + "/" + near) ? "" : folder + "/" + near;
    }
    if (isRegularFile(above + "/" + name)) {
        return above + "/" + name;
    }
    for (const std::string& other : folderAt(above).names) {
        std::string near = pathIn(pathIn(above, other), name);
        if (isMeant(fileNameOf(folder), other) && isRegularFile(near)) {
            return near;
        }
    }
    const std::string written = tree.written(host);
    const std::string rest = written.substr(std::min(written.find('/', 1), written.size()));
    for (const auto& partition : kPartitionNames) {
        std::string other = tree.hostOfWritten(std::string(partition.name) + rest);
        if (!rest.empty() && isRegularFile(other)) {
            return other;
        }
    }
    return {};
}

}  // namespace mlk::tree
