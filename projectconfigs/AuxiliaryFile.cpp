#include "projectconfigs/AuxiliaryFile.h"

#include <android/log.h>

#include "common/Paths.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kTag = "MlkProjectConfigs";

}  // namespace

std::string loadAuxiliaryFile(const ProjectParser& items, const AuxiliaryFileSource& source,
                              IniProjectParser& parser) {
    const std::string path = items.getInfo({source.category, source.key});
    if (source.pathLabel != nullptr) {
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "%s%s", source.pathLabel, path.c_str());
    }
    if (path.empty()) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "%s", source.missing);
        return {};
    }
    parser.update(path.c_str());
    parser.dumpDetail();
    const std::string name(fileNameOf(path));
    if (name.size() == path.size() || name.size() >= kFileNameSize) {
        return {};
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "%s%s", source.nameLabel, name.c_str());
    return name;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
