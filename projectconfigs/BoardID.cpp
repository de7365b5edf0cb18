#include "projectconfigs/BoardID.h"

#include <android/log.h>

#include <string_view>
#include <utility>

#include "common/LineReader.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kTag = "MlkProjectConfigs";
constexpr std::string_view kKeyword = "BOARD_ID";
constexpr size_t kBufferSize = 256;

}  // namespace

BoardID::BoardID(std::string directory)
    : mDirectory(std::move(directory)), mFilePath(mDirectory + "/board_id.bin") {
    LineReader reader(mFilePath, kBufferSize, kTag, kMostIdentityBytes);
    if (!reader.isOpen()) {
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "Open %s fail!", mFilePath.c_str());
        return;
    }
    std::string_view line;
    std::string_view value;
    while (reader.next(line)) {
        if (line.find(kKeyword) != std::string_view::npos && reader.valueOf(line, value)) {
            mBoardId = value;
            return;
        }
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
