#include "projectconfigs/ProjectID.h"

#include <android/log.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <system_error>
#include <utility>

#include "common/Decimal.h"
#include "common/SaveFile.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kTag = "MlkProjectConfigs";
constexpr std::string_view kKeyword = "PROJECT_ID";
constexpr size_t kChunk = 256;
constexpr size_t kFileSize = size_t{64} * 1024;  // a real file has one line

}  // namespace

ProjectID::ProjectID(std::string directory, unsigned int defaultIndex)
    : mDirectory(std::move(directory)), mFilePath(mDirectory + "/project_id.bin") {
    if (!Read()) {
        mId = defaultIndex;
    }
    char trace[64];
    snprintf(trace, sizeof trace, "Read id = %d", static_cast<int>(mId));
    WriteTestLog(trace);
}

bool ProjectID::Read() {
    // For writing too: whether a later change can be stored is told now.
    File file(mFilePath, O_RDWR);
    if (file.isOpen()) {
        return ReadFrom(file);
    }
    if (file.isMissing() && createFile(mFilePath, "") == Saved::DONE) {
        return true;
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "Open %s fail!", mFilePath.c_str());
    File readOnly(mFilePath);
    return readOnly.isOpen() && ReadFrom(readOnly);
}

bool ProjectID::ReadFrom(File& file) {
    // Each chunk is looked at by itself, over what the one before left in the buffer.
    char buffer[kChunk] = {};
    size_t total = 0;
    ssize_t count = 0;
    while ((count = file.readUpTo(buffer, sizeof buffer)) > 0) {
        const std::string_view text(buffer, strnlen(buffer, sizeof buffer));
        const size_t keyword = text.find(kKeyword);
        if (keyword != std::string_view::npos) {
            const size_t equals = text.find('=', keyword);
            if (equals != std::string_view::npos) {
                mId = static_cast<uint32_t>(parseDecimal(text.substr(equals + 1)));
            }
            return true;
        }
        total += static_cast<size_t>(count);
        if (total >= kFileSize) {
            __android_log_print(ANDROID_LOG_ERROR, kTag, "%s: no index in the first %zu bytes",
                                mFilePath.c_str(), kFileSize);
            return true;
        }
    }
    if (count < 0) {
        const std::string reason = std::generic_category().message(errno);
        __android_log_print(ANDROID_LOG_ERROR, kTag, "%s: cannot be read: %s", mFilePath.c_str(),
                            reason.c_str());
    }
    return count == 0;
}

bool ProjectID::Set(unsigned int index) {
    char trace[64];
    snprintf(trace, sizeof trace, "## Set %d->%d", static_cast<int>(mId), static_cast<int>(index));
    WriteTestLog(trace);
    return Change(index);
}

bool ProjectID::SetId(unsigned int index, const std::string& processName, int pid) {
    char trace[256];
    snprintf(trace, sizeof trace, "SetId %d->%d, processName = %s, pid = %d", static_cast<int>(mId),
             static_cast<int>(index), processName.c_str(), pid);
    WriteTestLog(trace);
    return Change(index);
}

bool ProjectID::Change(unsigned int index) {
    if (index == mId && mIsWritten) {
        return true;
    }
    mId = index;
    mIsWritten = false;
    const std::string line =
            std::string(kKeyword) + "=" + std::to_string(static_cast<int32_t>(index)) + "\n";
    const Saved saved = saveFile(mFilePath, line);
    if (saved == Saved::DONE) {
        mIsWritten = true;
        return true;
    }
    const std::string reason = std::generic_category().message(errno);
    if (saved == Saved::NOT_OPENED) {
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "Open %s fail!", mFilePath.c_str());
    }
    __android_log_print(ANDROID_LOG_ERROR, kTag, "%s: cannot be written: %s", mFilePath.c_str(),
                        reason.c_str());
    return false;
}

bool ProjectID::WriteTestLog(const char* text) {
    static_cast<void>(text);
    return true;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
