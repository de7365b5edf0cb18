#include "common/Paths.h"

#include <unistd.h>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

std::string_view fileNameOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

std::optional<std::string> withoutQuotes(std::string path) {
    if (path.empty() || path.front() != '"') {
        return path;
    }
    path.erase(0, 1);
    const size_t closing = path.rfind('"');
    if (closing == std::string::npos) {
        return std::nullopt;
    }
    path.erase(closing);
    return path;
}

bool pathExists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
