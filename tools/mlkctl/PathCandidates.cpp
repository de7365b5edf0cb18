#include "tools/mlkctl/PathCandidates.h"

#include <sys/stat.h>

#include <algorithm>

#include "tools/mlkctl/Folder.h"
#include "tools/mlkctl/Mounts.h"

namespace mlk::ctl {

namespace {

// What is in the folder of a path and has the path as its beginning, in alphabetical order.
Candidates entriesAt(const std::string& path) {
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    const std::string begin = path.substr(folder.size());
    Candidates candidates;
    for (const std::string& name : readFolder(folder.empty() ? "." : folder).names) {
        const bool isHidden = name.front() == '.' && begin.empty();
        if (isHidden || name.rfind(begin, 0) != 0) {
            continue;
        }
        struct stat status {};
        const bool isFolder =
                stat((folder + name).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        candidates.push_back({folder + name + (isFolder ? "/" : "")});
    }
    return candidates;
}

}  // namespace

Candidates pathCandidates(const Completing& at) {
    Candidates candidates = entriesAt(at.current);
    const bool isEmpty = at.current.empty();
    const bool isPart = beginsAPartition(at.current);
    if (!isEmpty && (!candidates.empty() || !(isPart || beginsWithPartition(at.current)))) {
        return candidates;
    }
    try {
        const Mounts mounts = mountsOf(at.services);
        if (isEmpty || isPart) {
            for (const Mounts::Mount& mount : mounts.all()) {
                if (mount.name.rfind(at.current, 0) == 0) {
                    candidates.push_back({mount.mountPoint + '/', mount.name});
                }
            }
        } else if (const auto meant = mounts.find(at.current)) {
            return entriesAt(meant->path);
        }
    } catch (const Failure&) {
        // Without a service nobody knows the mount points.
    }
    return candidates;
}

bool standsForPath(const std::string& word, const Candidates& candidates) {
    return (beginsAPartition(word) || beginsWithPartition(word)) && !candidates.empty() &&
           std::all_of(candidates.begin(), candidates.end(), [&word](const Candidate& candidate) {
               return candidate.value.front() == '/' && candidate.value.rfind(word, 0) != 0;
           });
}

}  // namespace mlk::ctl
