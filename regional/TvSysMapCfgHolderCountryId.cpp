// The saved country of TvSysMapCfgHolder.

#define LOG_TAG "MlkProjectConfigs"

#include <log/log.h>
#include <sys/stat.h>

#include <cerrno>
#include <mutex>
#include <string_view>
#include <system_error>

#include "common/Decimal.h"
#include "common/LineReader.h"
#include "common/Paths.h"
#include "common/SaveFile.h"
#include "regional/LogLines.h"
#include "regional/RegionalNames.h"
#include "regional/TvSysMapCfgHolder.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr mode_t kFolderMode = 0700;

// Guards the file, which all holders of the process share.
std::mutex& fileMutex() {
    static std::mutex mutex;
    return mutex;
}

std::string filePath(const std::string& folder) {
    return folder + kCountryIdFile;
}

// Creates the folder if it is missing; function and line are those of the message.
void createFolder(const std::string& folder, const char* function, int line) {
    if (TvSysMapCfgHolder::isFileExist(folder)) {
        return;
    }
    if (mkdir(folder.c_str(), kFolderMode) == 0) {
        syncFolderOf(folder);
    } else if (errno != EEXIST) {
        ALOGE("[%s:%d] create %s failed!", function, line, folder.c_str());
    }
}

std::string lineOf(_tv_country country) {
    return std::string(kCountryIdKeyword) + "=" + std::to_string(static_cast<int>(country)) + "\n";
}

// Logs a failure; function and line are those of the message for a file that cannot be opened.
void complain(const std::string& path, Saved saved, const char* function, int line) {
    if (saved == Saved::NOT_OPENED) {
        ALOGE("[%s:%d] Open %s failed!", function, line, path.c_str());
    } else if (saved == Saved::NOT_WRITTEN) {
        const std::string reason = std::generic_category().message(errno);
        ALOGE("%s: cannot be written: %s", path.c_str(), reason.c_str());
    }
}

}  // namespace

std::string TvSysMapCfgHolder::getCountryBinFolderPath() const {
    return mPartitions.tvdata + kCountryIdFolder;
}

void TvSysMapCfgHolder::parseCountryId() {
    const std::lock_guard<std::mutex> fileLock(fileMutex());
    const std::string folder = getCountryBinFolderPath();
    createFolder(folder, __func__, log_line::kIdFolder);
    const std::string path = filePath(folder);
    const bool exists = isFileExist(path);
    ALOGD("[%s:%d] country_id.bin=%s (isRead=%d, isWrite=%d)", __func__, log_line::kIdFile,
          path.c_str(), exists ? 1 : 0, exists ? 0 : 1);
    mCountryIdx = kNoCountry;
    if (exists) {
        mCountryIdx = readCountryId(path);
    } else {
        writeFirstCountryId(path);
    }
    ALOGD("[%s:%d] mCountryIdx=%d", __func__, log_line::kIdInUse, static_cast<int>(mCountryIdx));
}

std::optional<_tv_country> TvSysMapCfgHolder::savedCountry() const {
    const std::lock_guard<std::mutex> fileLock(fileMutex());
    const std::string path = filePath(getCountryBinFolderPath());
    return pathExists(path) ? std::optional(readCountryId(path)) : std::nullopt;
}

_tv_country TvSysMapCfgHolder::firstCountry() const {
    return mCountryList.empty() ? kNoCountry : mCountryList.front();
}

// The first line with the keyword counts, even if it has no country. Runs with the file's mutex
// held.
_tv_country TvSysMapCfgHolder::readCountryId(const std::string& path) const {
    LineReader reader(path, kListBufferSize, LOG_TAG, kMostIdentityBytes, mData.observer);
    if (!reader.isOpen()) {
        ALOGE("[%s:%d] Open %s failed!", "parseCountryId", log_line::kIdNotRead, path.c_str());
        return kNoCountry;
    }
    std::string_view line;
    std::string_view value;
    while (reader.next(line)) {
        if (line.find(kCountryIdKeyword) == std::string_view::npos) {
            reader.tell(line, LineUse::NOTHING);
            continue;
        }
        if (!reader.valueOf(line, value)) {
            reader.tell(line, LineUse::IGNORED);
            return kNoCountry;
        }
        reader.tellItem(line, kCountryIdKeyword, value);
        return _tv_country{parseDecimal(value)};
    }
    return kNoCountry;
}

void TvSysMapCfgHolder::writeFirstCountryId(const std::string& path) {
    // Without a map no file is created, so that a later start with a map saves its first country.
    if (mCountryList.empty()) {
        return;
    }
    const _tv_country first = mCountryList.front();
    // Not saveFile: a file that is only inaccessible now has the country of this set.
    const Saved saved = createFile(path, lineOf(first));
    complain(path, saved, "parseCountryId", log_line::kIdNotWritten);
    if (saved != Saved::NOT_OPENED) {
        mCountryIdx = first;
    }
}

bool TvSysMapCfgHolder::saveCountryId(_tv_country country) {
    const std::lock_guard<std::mutex> fileLock(fileMutex());
    ALOGD("[%s:%d] id=%d", __func__, log_line::kSavedId, static_cast<int>(country));
    if (country == kNoCountry) {
        return false;
    }
    const std::string folder = getCountryBinFolderPath();
    createFolder(folder, __func__, log_line::kSavedFolder);
    const std::string path = filePath(folder);
    const Saved saved = saveFile(path, lineOf(country));
    complain(path, saved, __func__, log_line::kSavedFile);
    return saved == Saved::DONE;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
