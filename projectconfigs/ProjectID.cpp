#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/ProjectID.h"

#include <log/log.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string_view>
#include <system_error>

#include "common/Decimal.h"
#include "common/FileLimits.h"
#include "common/SaveFile.h"
#include "projectconfigs/ChainKeywords.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr size_t kChunk = 256;

std::string pathIn(const std::string& directory) {
    return directory + keyword::kProjectIdFile;
}

void complain(const std::string& path, ProblemKind kind, const std::string& detail,
              ReadObserver* observer) {
    ALOGE("%s: %s", path.c_str(), textOf(kind, detail).c_str());
    if (observer != nullptr) {
        observer->onProblem({path, 0, kind, detail});
    }
}

size_t lineFeeds(std::string_view text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

// Tells of the line of the keyword; the number is that of the text's first line.
void tell(ReadObserver& observer, const std::string& path, size_t number, std::string_view text,
          size_t keyword, size_t equals) {
    const std::string_view before = text.substr(0, keyword);
    const size_t begin = before.rfind('\n') + 1;  // 0 on the first line
    ReadLine read;
    read.path = path;
    read.number = number + lineFeeds(before);
    read.text = text.substr(begin, text.find('\n', keyword) - begin);
    read.use = LineUse::IGNORED;
    if (equals != std::string_view::npos) {
        read.use = LineUse::ITEM;
        read.key = keyword::kProjectId;
        read.value = text.substr(equals + 1, text.find('\n', equals) - equals - 1);
    }
    observer.onLine(read);
}

// The index in the file, 0 if it has none; nullopt if it cannot be read.
std::optional<uint32_t> readFrom(File& file, const std::string& path,
                                 ReadObserver* observer = nullptr) {
    // Each chunk is searched by itself. A short last one leaves the end of the chunk before in the
    // buffer, which is searched with it.
    char buffer[kChunk] = {};
    size_t total = 0;
    size_t number = 1;  // of the line that the chunk begins in
    ssize_t count = 0;
    while ((count = file.readUpTo(buffer, sizeof buffer)) > 0) {
        const std::string_view text(buffer, strnlen(buffer, sizeof buffer));
        const size_t keyword = text.find(keyword::kProjectId);
        if (keyword != std::string_view::npos) {
            const size_t equals = text.find('=', keyword);
            if (observer != nullptr) {
                tell(*observer, path, number, text, keyword, equals);
            }
            return equals == std::string_view::npos
                           ? 0
                           : static_cast<uint32_t>(parseDecimal(text.substr(equals + 1)));
        }
        const auto size = static_cast<size_t>(count);
        number += lineFeeds({buffer, size});
        total += size;
        if (total >= kMostIdentityBytes) {
            complain(path, ProblemKind::NO_INDEX, std::to_string(kMostIdentityBytes), observer);
            return 0;
        }
    }
    if (count < 0) {
        complain(path, ProblemKind::UNREADABLE, std::generic_category().message(errno), observer);
        return {};
    }
    return 0;
}

}  // namespace

ProjectID::ProjectID(const std::string& directory, unsigned int defaultIndex)
    : mFilePath(pathIn(directory)) {
    mId = readOrCreate().value_or(defaultIndex);
}

std::optional<uint32_t> ProjectID::read(const std::string& directory, ReadObserver* observer) {
    const std::string path = pathIn(directory);
    File file(path);
    if (file.isOpen()) {
        return readFrom(file, path, observer);
    }
    if (!file.isMissing()) {
        complain(path, ProblemKind::UNREADABLE, file.reason(), observer);
    }
    return {};
}

std::optional<uint32_t> ProjectID::readOrCreate() const {
    // Opened for writing too, so that the log tells now whether a later change can be stored.
    File file(mFilePath, O_RDWR);
    if (file.isOpen()) {
        return readFrom(file, mFilePath);
    }
    if (file.isMissing() && createFile(mFilePath, "") == Saved::DONE) {
        return 0;
    }
    ALOGD("Open %s fail!", mFilePath.c_str());
    File readOnly(mFilePath);
    return readOnly.isOpen() ? readFrom(readOnly, mFilePath) : std::nullopt;
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
    try {
        mIsWritten = Write();
    } catch (const std::bad_alloc&) {
        ALOGE("%s: cannot be written: out of memory", mFilePath.c_str());
    }
    return mIsWritten;
}

bool ProjectID::Write() const {
    const std::string line = std::string(keyword::kProjectId) + "=" +
                             std::to_string(static_cast<int32_t>(mId)) + "\n";
    const Saved saved = saveFile(mFilePath, line);
    if (saved == Saved::DONE) {
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
