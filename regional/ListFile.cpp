#define LOG_TAG "MlkProjectConfigs"

#include "regional/ListFile.h"

#include <log/log.h>

#include <algorithm>

#include "common/LineReader.h"
#include "common/Paths.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

ReadResult readListFile(const std::string& path, const std::function<void(std::string_view)>& take,
                        ReadObserver* observer) {
    if (path.empty()) {
        return ReadResult::MISSING;
    }
    const NamedFile file = findFile(path);
    ALOGD("filePath:%s", file.path.c_str());
    if (!file.exists) {
        ALOGE("%s don't exist.", file.path.c_str());
        return ReadResult::MISSING;
    }
    LineReader reader(file.path, kListBufferSize, LOG_TAG, kMostListBytes, observer);
    std::string_view line;
    while (reader.next(line)) {
        if (line.empty()) {
            reader.tell(line, LineUse::NOTHING);
            continue;
        }
        std::string_view entry = line.substr(std::min(line.find_first_not_of(','), line.size()));
        if (entry.empty()) {
            reader.complain(ProblemKind::ONLY_COMMAS);
            reader.tell(line, LineUse::IGNORED);
            continue;
        }
        entry = entry.substr(0, entry.find(','));
        take(entry);
        reader.tellItem(line, entry, "");
    }
    return reader.failed() ? ReadResult::UNREADABLE : ReadResult::DONE;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
