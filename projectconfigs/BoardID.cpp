#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/BoardID.h"

#include <log/log.h>

#include <string_view>

#include "common/LineReader.h"
#include "projectconfigs/ChainKeywords.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

BoardID::BoardID(const std::string& directory, ReadObserver* observer) {
    const std::string path = directory + keyword::kBoardIdFile;
    LineReader reader(path, kListBufferSize, LOG_TAG, kMostIdentityBytes, observer);
    if (!reader.isOpen()) {
        ALOGD("Open %s fail!", path.c_str());
        return;
    }
    std::string_view line;
    std::string_view value;
    while (reader.next(line)) {
        if (line.find(keyword::kBoardId) == std::string_view::npos) {
            reader.tell(line, LineUse::NOTHING);
        } else if (!reader.valueOf(line, value)) {
            reader.tell(line, LineUse::IGNORED);
        } else {
            reader.tellItem(line, keyword::kBoardId, value);
            mBoardId = value;
            return;
        }
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
