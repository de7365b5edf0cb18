#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/ProjectID.h"

#include <log/log.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>

#include "common/Decimal.h"
#include "common/FileLimits.h"
#include "common/SaveFile.h"
#include "projectconfigs/ChainKeywords.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kChunk = 256;

}  // namespace

ProjectID::ProjectID(const std::string& directory, unsigned int defaultIndex)
    : mFilePath(directory + keyword::kProjectIdFile) {
    if (!Read()) {
        mId = defaultIndex;
    }
}

bool ProjectID::Read() {
    // Opened for writing too, so that the log tells now whether a later change can be stored.
    File file(mFilePath, O_RDWR);
    if (file.isOpen()) {
        return ReadFrom(file);
    }
    if (file.isMissing() && createFile(mFilePath, "") == Saved::DONE) {
        return true;
    }
    ALOGD("Open %s fail!", mFilePath.c_str());
    File readOnly(mFilePath);
    return readOnly.isOpen() && ReadFrom(readOnly);
}

bool ProjectID::ReadFrom(File& file) {
    // Each chunk is searched by itself. A short last one leaves the end of the chunk before in the
    // buffer, which is searched with it.
    char buffer[kChunk] = {};
    size_t total = 0;
    ssize_t count = 0;
    while ((count = file.readUpTo(buffer, sizeof buffer)) > 0) {
        const std::string_view text(buffer, strnlen(buffer, sizeof buffer));
        const size_t keyword = text.find(keyword::kProjectId);
        if (keyword != std::string_view::npos) {
            const size_t equals = text.find('=', keyword);
            if (equals != std::string_view::npos) {
                mId = static_cast<uint32_t>(parseDecimal(text.substr(equals + 1)));
            }
            return true;
        }
        total += static_cast<size_t>(count);
        if (total >= kMostIdentityBytes) {
            ALOGE("%s: no index in the first %zu bytes", mFilePath.c_str(), kMostIdentityBytes);
            return true;
        }
    }
    if (count < 0) {
        const std::string reason = std::generic_category().message(errno);
        ALOGE("%s: cannot be read: %s", mFilePath.c_str(), reason.c_str());
    }
    return count == 0;
}

bool ProjectID::SetId(unsigned int index, const std::string& /* processName */, int /* pid */) {
    return Set(index);
}

bool ProjectID::Set(unsigned int index) {
    if (index == mId && mIsWritten) {
        return true;
    }
    mId = index;
    mIsWritten = false;
    const std::string line = std::string(keyword::kProjectId) + "=" +
                             std::to_string(static_cast<int32_t>(index)) + "\n";
    const Saved saved = saveFile(mFilePath, line);
    if (saved == Saved::DONE) {
        mIsWritten = true;
        return true;
    }
    const std::string reason = std::generic_category().message(errno);
    if (saved == Saved::NOT_OPENED) {
        ALOGD("Open %s fail!", mFilePath.c_str());
    }
    ALOGE("%s: cannot be written: %s", mFilePath.c_str(), reason.c_str());
    return false;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
