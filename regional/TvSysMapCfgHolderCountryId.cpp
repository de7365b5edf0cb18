// The saved country of TvSysMapCfgHolder.

#include <TvPartitionPath.h>
#include <android/log.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "common/Decimal.h"
#include "common/File.h"
#include "common/LineReader.h"
#include "regional/TvSysMapCfgHolder.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kTag = "MlkProjectConfigs";
constexpr const char* kKeyword = "COUNTRY_ID";
constexpr size_t kBufferSize = 256;
constexpr mode_t kFolderMode = 0700;
constexpr mode_t kFileMode = 0644;

// Holders are made for one call each, but there is one file: they take turns.
std::mutex& fileMutex() {
    static std::mutex mutex;
    return mutex;
}

std::string filePath() {
    return TvSysMapCfgHolder::getCountryBinFolderPath() + "/country_id.bin";
}

// Makes sure that the folder is there; function and line belong to the message.
void createFolder(const char* function, int line) {
    const std::string folder = TvSysMapCfgHolder::getCountryBinFolderPath();
    if (!TvSysMapCfgHolder::isFileExist(folder) && mkdir(folder.c_str(), kFolderMode) != 0 &&
        errno != EEXIST) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "[%s:%d] create %s failed!", function, line,
                            folder.c_str());
    }
}

enum class Saved { DONE, NOT_CREATED, NOT_WRITTEN };

// Brings a changed folder to storage. Not every file system can: then it does so in its own time.
void syncFolder(const std::string& folder) {
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

// Puts the country into a new file and that in the place of the old one, so that a set which loses
// power on the way, or has no room left, keeps the old country. Function and line belong to the
// message of a file that cannot be created.
Saved writeCountryId(_tv_country country, const char* function, int line) {
    const std::string path = filePath();
    const std::string fresh = path + ".new";
    const std::string text =
            std::string(kKeyword) + "=" + std::to_string(static_cast<int>(country)) + "\n";
    {
        File file(fresh, O_WRONLY | O_CREAT | O_TRUNC, kFileMode);
        if (file.isOpen() && !file.writeAndSync(text)) {
            const std::string reason = std::generic_category().message(errno);
            __android_log_print(ANDROID_LOG_ERROR, kTag, "%s: cannot be written: %s", path.c_str(),
                                reason.c_str());
            unlink(fresh.c_str());
            return Saved::NOT_WRITTEN;
        }
        if (file.isOpen() && rename(fresh.c_str(), path.c_str()) == 0) {
            syncFolder(TvSysMapCfgHolder::getCountryBinFolderPath());
            return Saved::DONE;
        }
    }
    __android_log_print(ANDROID_LOG_ERROR, kTag, "[%s:%d] Open %s failed!", function, line,
                        path.c_str());
    unlink(fresh.c_str());
    return Saved::NOT_CREATED;
}

}  // namespace

std::string TvSysMapCfgHolder::getCountryBinFolderPath() {
    return std::string(TvPartitionPath::GetInstance()->GetTvdataPath()) + "/tvsysmap";
}

void TvSysMapCfgHolder::parseCountryId() {
    const std::lock_guard<std::recursive_mutex> lock(mMutex);
    const std::lock_guard<std::mutex> fileLock(fileMutex());
    createFolder(__func__, 484);
    const std::string path = filePath();
    const bool exists = isFileExist(path);
    __android_log_print(ANDROID_LOG_DEBUG, kTag,
                        "[%s:%d] country_id.bin=%s (isRead=%d, isWrite=%d)", __func__, 500,
                        path.c_str(), exists ? 1 : 0, exists ? 0 : 1);
    mCountryIdx = kNoCountry;
    if (exists) {
        readCountryId(path);
    } else {
        writeFirstCountryId();
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "[%s:%d] mCountryIdx=%d", __func__, 538,
                        static_cast<int>(mCountryIdx));
}

void TvSysMapCfgHolder::readCountryId(const std::string& path) {
    LineReader reader(path, kBufferSize, kTag);
    if (!reader.isOpen()) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "[%s:%d] Open %s failed!", "parseCountryId",
                            505, path.c_str());
        return;
    }
    std::string_view line;
    while (reader.next(line)) {
        if (line.find(kKeyword) != std::string_view::npos) {
            std::string_view value;
            if (reader.valueOf(line, value)) {
                mCountryIdx = _tv_country{parseDecimal(value)};
            }
            return;
        }
    }
}

void TvSysMapCfgHolder::writeFirstCountryId() {
    // Without a country to save the file stays away, so that a later start, with its map, saves
    // one.
    if (!mCountryList.empty() &&
        writeCountryId(mCountryList.front(), "parseCountryId", 524) != Saved::NOT_CREATED) {
        mCountryIdx = mCountryList.front();
    }
}

bool TvSysMapCfgHolder::saveCountryId(_tv_country country) {
    const std::lock_guard<std::recursive_mutex> lock(mMutex);
    const std::lock_guard<std::mutex> fileLock(fileMutex());
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "[%s:%d] id=%d", __func__, 133,
                        static_cast<int>(country));
    if (country == kNoCountry) {
        return false;
    }
    createFolder(__func__, 142);
    return writeCountryId(country, __func__, 153) == Saved::DONE;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
