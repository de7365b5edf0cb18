#define LOG_TAG "MlkProjectConfigs"

#include "regional/ListFile.h"

#include <log/log.h>

#include <algorithm>
#include <optional>

#include "common/LineReader.h"
#include "common/Paths.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kBufferSize = 256;

}  // namespace

ReadResult readListFile(const std::string& path,
                        const std::function<void(std::string_view)>& take) {
    if (path.empty()) {
        return ReadResult::MISSING;
    }
    const std::optional<std::string> file = withoutQuotes(path);
    const char* const name = (file ? *file : path).c_str();
    ALOGD("filePath:%s", name);
    if (!file || !pathExists(*file)) {
        ALOGE("%s don't exist.", name);
        return ReadResult::MISSING;
    }
    LineReader reader(*file, kBufferSize, LOG_TAG, kMostListBytes);
    std::string_view line;
    while (reader.next(line)) {
        if (line.empty()) {
            continue;
        }
        line.remove_prefix(std::min(line.find_first_not_of(','), line.size()));
        if (line.empty()) {
            reader.complain("nothing but commas, line skipped");
            continue;
        }
        take(line.substr(0, line.find(',')));
    }
    return reader.failed() ? ReadResult::UNREADABLE : ReadResult::DONE;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
