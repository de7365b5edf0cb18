#include "common/Paths.h"

#include <unistd.h>

#include <utility>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

std::string_view fileNameOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

bool pathExists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

NamedFile findFile(const std::string& name) {
    if (name.empty() || name.front() != '"') {
        return {name, pathExists(name)};
    }
    const size_t closing = name.rfind('"');
    if (closing == 0) {
        return {name, false};
    }
    std::string path = name.substr(1, closing - 1);
    const bool exists = pathExists(path);
    return {std::move(path), exists};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
