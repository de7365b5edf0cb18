#include "projectconfigs/ProjectID.h"

#include <android/log.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <system_error>
#include <utility>

#include "common/Decimal.h"
#include "common/File.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kTag = "MlkProjectConfigs";
constexpr std::string_view kKeyword = "PROJECT_ID";
constexpr size_t kChunk = 256;
constexpr mode_t kMode = 0644;

// Something that is no file, a symbolic link too.
bool isSpecial(const std::string& path) {
    struct stat about {};
    return lstat(path.c_str(), &about) == 0 && !S_ISREG(about.st_mode);
}

// Whether a file that is there may be written though none can be put into its place.
bool isAboutTheFolder(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == EBUSY;
}

}  // namespace

ProjectID::ProjectID(std::string directory, unsigned int defaultIndex)
    : mDirectory(std::move(directory)), mFilePath(mDirectory + "/project_id.bin") {
    Read(defaultIndex);
}

void ProjectID::Read(unsigned int defaultIndex) {
    char trace[64];
    File file(mFilePath, O_RDWR | O_CREAT, kMode);
    if (!file.isOpen()) {
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "Open %s fail!", mFilePath.c_str());
        mId = defaultIndex;
        return;
    }
    // Each chunk is looked at by itself, over what the one before left in the buffer.
    char buffer[kChunk] = {};
    while (file.read(buffer, sizeof buffer) > 0) {
        const std::string_view text(buffer, strnlen(buffer, sizeof buffer));
        const size_t keyword = text.find(kKeyword);
        if (keyword != std::string_view::npos) {
            const size_t equals = text.find('=', keyword);
            if (equals != std::string_view::npos) {
                mId = static_cast<uint32_t>(parseDecimal(text.substr(equals + 1)));
            }
            break;
        }
    }
    snprintf(trace, sizeof trace, "Read id = %d", static_cast<int>(mId));
    WriteTestLog(trace);
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
    if (index == mId) {
        return true;
    }
    mId = index;
    const std::string line =
            std::string(kKeyword) + "=" + std::to_string(static_cast<int32_t>(index)) + "\n";
    const Replaced replaced = ReplaceLine(line);
    if (replaced == Replaced::DONE) {
        return true;
    }
    const std::string reason = std::generic_category().message(errno);
    if (replaced == Replaced::NOT_CREATED) {
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "Open %s fail!", mFilePath.c_str());
    }
    __android_log_print(ANDROID_LOG_ERROR, kTag, "%s: cannot be written: %s", mFilePath.c_str(),
                        reason.c_str());
    return false;
}

// A set whose index is lost does not know what it is. So a new file takes the place of the old one
// where that can be; only a file that is no plain one, or that alone may be written in its folder,
// is emptied and written.
Replaced ProjectID::ReplaceLine(const std::string& line) const {
    if (!isSpecial(mFilePath)) {
        const Replaced replaced = replaceFile(mFilePath, line, kMode);
        if (replaced != Replaced::NOT_CREATED || !isAboutTheFolder(errno)) {
            return replaced;
        }
    }
    File file(mFilePath, O_RDWR | O_CREAT | O_TRUNC, kMode);
    if (!file.isOpen()) {
        return Replaced::NOT_CREATED;
    }
    return file.writeAndSync(line) ? Replaced::DONE : Replaced::NOT_WRITTEN;
}

bool ProjectID::WriteTestLog(const char* text) {
    static_cast<void>(text);
    return true;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
