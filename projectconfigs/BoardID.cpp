#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/BoardID.h"

#include <log/log.h>

#include <string_view>

#include "common/LineReader.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr std::string_view kKeyword = "BOARD_ID";
constexpr size_t kBufferSize = 256;

}  // namespace

BoardID::BoardID(const std::string& directory) {
    const std::string path = directory + "/board_id.bin";
    LineReader reader(path, kBufferSize, LOG_TAG, kMostIdentityBytes);
    if (!reader.isOpen()) {
        ALOGD("Open %s fail!", path.c_str());
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
