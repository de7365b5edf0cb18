#include "tools/mlktree/rules/MeaningPath.h"

#include <algorithm>
#include <vector>

#include "projectconfigs/KnownItems.h"
#include "tools/mlktree/Nearest.h"
#include "tools/mlktree/Texts.h"

namespace mlk::tree {

namespace {

namespace product = vendor::morlak::mlkconfigs::V1_0::implementation;

// The first folder of a path, with the "/" before it.
std::string_view firstFolderOf(std::string_view path) {
    return path.substr(0, path.find('/', 1));
}

bool isOfBoardId(const Naming& naming) {
    return naming.file != nullptr && naming.file->format() == FileFormat::BOARD_ID;
}

}  // namespace

bool leavesPartition(std::string_view path) {
    const bool isInPartition =
            std::any_of(kPartitionNames.begin(), kPartitionNames.end(),
                        [&](const auto& each) { return firstFolderOf(path) == each.name; });
    if (!isInPartition || path.find("/..") == std::string_view::npos) {
        return false;
    }
    int depth = 0;
    for (size_t begin = firstFolderOf(path).size() + 1; begin < path.size();) {
        const size_t end = std::min(path.find('/', begin), path.size());
        const std::string_view part = path.substr(begin, end - begin);
        if (part == "..") {
            if (--depth < 0) {
                return true;
            }
        } else if (!part.empty() && part != ".") {
            ++depth;
        }
        begin = end + 1;
    }
    return false;
}

PathForm formOf(std::string_view path) {
    if (!beginsWith(path, "/")) {
        return PathForm::RELATIVE;
    }
    if (beginsWith(path, "//")) {
        const size_t begin = path.find_first_not_of('/');
        const PathForm form = begin != std::string_view::npos ? formOf(path.substr(begin - 1))
                                                              : PathForm::OUTSIDE;
        return form == PathForm::INSIDE ? PathForm::BESIDE : form;
    }
    const std::string_view folder = firstFolderOf(path);
    for (const auto& each : kPartitionNames) {
        if (folder == each.name) {
            return leavesPartition(path) ? PathForm::OUTSIDE : PathForm::INSIDE;
        }
    }
    return partitionMeantBy(path).empty() ? PathForm::OUTSIDE : PathForm::BESIDE;
}

std::string_view partitionMeantBy(std::string_view path) {
    const std::string_view folder = firstFolderOf(path);
    std::vector<std::string_view> names;
    for (const auto& each : kPartitionNames) {
        if (beginsWith(folder, each.name)) {
            return each.name;
        }
        names.push_back(each.name);
    }
    return nearest(folder, names);
}

std::string pathInside(std::string_view path) {
    std::string plain(path);
    std::replace(plain.begin(), plain.end(), '\\', '/');
    size_t last = 0;
    for (const auto& each : kPartitionNames) {
        const size_t at = plain.rfind(std::string(each.name) + "/");
        last = at != std::string::npos ? std::max(last, at) : last;
    }
    return last > 0 ? plain.substr(last) : std::string();
}

std::string pathIn(const Naming& naming) {
    std::string path(naming.line->value);
    if (isOfBoardId(naming)) {
        path.erase(std::remove_if(path.begin(), path.end(),
                                  [](char c) { return c == '"' || c == ';'; }),
                   path.end());
        path = std::string(trimmed(path.substr(0, path.find('#'))));
    }
    return path;
}

PathForm formOf(const Naming& naming) {
    return isOfBoardId(naming) ? formOf(pathIn(naming)) : formOf(naming.line->value);
}

bool isWholePath(const Naming& naming) {
    if (naming.file == nullptr || naming.line == nullptr) {
        return false;
    }
    switch (naming.file->format()) {
        case FileFormat::CUSTOMER:
        case FileFormat::SYSTEM:
        case FileFormat::PROJECT:
        case FileFormat::BOARD_ID:
            return true;
        case FileFormat::TV_SYSTEMS:
            return !naming.line->section.empty();  // an item; another rule has the path of the map
        default:
            return false;
    }
}

bool isOfService(const Naming& naming) {
    const FileFormat format = naming.file->format();
    return (format != FileFormat::PROJECT && format != FileFormat::TV_SYSTEMS) ||
           product::findKnownItem({naming.line->section, naming.line->key}) != nullptr;
}

}  // namespace mlk::tree
