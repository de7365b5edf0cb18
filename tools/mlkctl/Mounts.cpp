#include "tools/mlkctl/Mounts.h"

#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <algorithm>

#include "common/Partitions.h"
#include "tools/mlkctl/Ask.h"

namespace mlk::ctl {

namespace {

using V1_0::IMlkProjectConfigs;
using V1_0::implementation::kPartitionNames;
using V1_0::implementation::Partitions;

// The rest of a path after a folder: "" or "/x". Nothing if the path is not below the folder.
std::optional<std::string_view> below(std::string_view path, std::string_view folder) {
    if (folder.empty() || path.substr(0, folder.size()) != folder) {
        return {};
    }
    path.remove_prefix(folder.size());
    return path.empty() || path.front() == '/' ? std::optional(path) : std::nullopt;
}

// The rest of a path after a partition's name.
std::optional<std::string_view> afterName(std::string_view path, std::string_view name) {
    const auto rest = below(path, name);
    return rest ? rest : below(path, name.substr(1));
}

}  // namespace

std::optional<Mounted> Mounts::find(std::string_view path) const {
    for (const Mount& mount : mMounts) {
        if (const auto rest = afterName(path, mount.name)) {
            return Mounted{mount.name, mount.mountPoint, mount.mountPoint + std::string(*rest)};
        }
    }
    return {};
}

std::string Mounts::asWritten(const std::string& path) const {
    for (const Mount& mount : mMounts) {
        const auto rest = below(path, mount.mountPoint);
        if (rest && !rest->empty()) {
            return mount.name + std::string(*rest);
        }
    }
    return path;
}

Mounts mountsOf(Services& services) {
    return services.ask(projectInterface(), [](IBase& object) {
        using P = IMlkProjectConfigs;
        const Partitions points{ask(object, &P::getTvconfigsPath).value,
                                ask(object, &P::getTvdataPath).value,
                                ask(object, &P::getImpdataPath).value};
        std::vector<Mounts::Mount> mounts;
        for (const auto& [name, mountPoint] : kPartitionNames) {
            if (!(points.*mountPoint).empty()) {
                mounts.push_back({std::string(name), points.*mountPoint});
            }
        }
        return Mounts(std::move(mounts));
    });
}

bool beginsAPartition(std::string_view text) {
    return text.size() > 1 &&
           std::any_of(kPartitionNames.begin(), kPartitionNames.end(), [text](const auto& each) {
               return each.name.substr(0, text.size()) == text;
           });
}

bool beginsWithPartition(std::string_view path) {
    return std::any_of(kPartitionNames.begin(), kPartitionNames.end(),
                       [path](const auto& each) { return afterName(path, each.name).has_value(); });
}

}  // namespace mlk::ctl
