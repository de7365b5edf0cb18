#include "tools/mlkctl/Folder.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace mlk::ctl {

Folder readFolder(const std::string& path) {
    struct Closer {
        void operator()(DIR* folder) const { (void)closedir(folder); }
    };
    const std::unique_ptr<DIR, Closer> stream(opendir(path.c_str()));
    if (stream == nullptr) {
        return {errno};
    }
    Folder folder;
    while (const dirent* entry = readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            folder.names.push_back(name);
        }
    }
    std::sort(folder.names.begin(), folder.names.end());
    return folder;
}

}  // namespace mlk::ctl
