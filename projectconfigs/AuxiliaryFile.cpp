#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/AuxiliaryFile.h"

#include <log/log.h>

#include "common/Paths.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

std::string loadAuxiliaryFile(const ProjectParser& items, const AuxiliaryFileSource& source,
                              IniProjectParser& parser) {
    const std::string path = items.getInfo(source.item);
    if (source.pathLabel != nullptr) {
        ALOGD("%s%s", source.pathLabel, path.c_str());
    }
    if (path.empty()) {
        ALOGE("%s", source.missing);
        return {};
    }
    parser.update(path.c_str());
    parser.dumpDetail();
    std::string name(fileNameOf(path));
    if (name.size() == path.size() || name.size() >= kFileNameSize) {
        return {};
    }
    ALOGD("%s%s", source.nameLabel, name.c_str());
    return name;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
