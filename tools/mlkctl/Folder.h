#pragma once

#include <string>
#include <vector>

namespace mlk::ctl {

/** What is in a folder. */
struct Folder {
    int error = 0;                        // an errno if it cannot be read
    std::vector<std::string> names = {};  // in ascending order, without "." and ".."
};

Folder readFolder(const std::string& path);

}  // namespace mlk::ctl
