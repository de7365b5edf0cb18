// The saved country of TvSysMapCfgHolder.

#include <TvPartitionPath.h>
#include <android/log.h>
#include <sys/stat.h>

#include <cerrno>
#include <string_view>
#include <system_error>

#include "common/Decimal.h"
#include "common/LineReader.h"
#include "common/ReplaceFile.h"
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

// Function and line belong to the message of a file that cannot be created.
Replaced writeCountryId(_tv_country country, const char* function, int line) {
    const std::string path = filePath();
    const Replaced replaced = replaceFile(
            path, std::string(kKeyword) + "=" + std::to_string(static_cast<int>(country)) + "\n",
            kFileMode);
    if (replaced == Replaced::NOT_CREATED) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "[%s:%d] Open %s failed!", function, line,
                            path.c_str());
    } else if (replaced == Replaced::NOT_WRITTEN) {
        const std::string reason = std::generic_category().message(errno);
        __android_log_print(ANDROID_LOG_ERROR, kTag, "%s: cannot be written: %s", path.c_str(),
                            reason.c_str());
    }
    return replaced;
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
        writeCountryId(mCountryList.front(), "parseCountryId", 524) != Replaced::NOT_CREATED) {
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
    return writeCountryId(country, __func__, 153) == Replaced::DONE;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
