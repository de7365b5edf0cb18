#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/FileDelivery.h"

#include <log/log.h>

#include <cerrno>
#include <new>
#include <optional>
#include <system_error>

#include "common/File.h"
#include "common/FileLimits.h"
#include "common/Paths.h"
#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

// Attempts. A file that is rewritten grows once.
constexpr int kReadings = 3;

size_t unreadable(const std::string& path, const std::string& reason) {
    ALOGE("%s: cannot be read: %s", path.c_str(), reason.c_str());
    return 0;
}

// Reads the file once. Gives nothing if it became longer during the reading.
std::optional<size_t> readOnce(const std::string& path,
                               const std::function<uint8_t*(size_t)>& placeFor) {
    File file(path);
    if (!file.isOpen()) {
        return unreadable(path, file.reason());
    }
    const size_t size = file.size();
    if (size > kMostDeliveredBytes) {
        return unreadable(path, largerThan(kMostDeliveredBytes));
    }
    uint8_t* const bytes = size == 0 ? nullptr : placeFor(size);
    if (bytes == nullptr) {
        return 0;
    }
    const ssize_t filled = file.readUpTo(reinterpret_cast<char*>(bytes), size);
    const bool isAll = filled == static_cast<ssize_t>(size);
    char next = 0;
    const ssize_t more = isAll ? file.read(&next, sizeof next) : 0;
    if (filled < 0 || more < 0) {
        return unreadable(path, std::generic_category().message(errno));
    }
    return more > 0 ? std::nullopt : std::optional<size_t>(filled);
}

size_t readWhole(const std::string& path, const std::function<uint8_t*(size_t)>& placeFor) {
    for (int reading = 0; reading < kReadings; ++reading) {
        if (const std::optional<size_t> filled = readOnce(path, placeFor)) {
            return *filled;
        }
    }
    return unreadable(path, "it goes on growing");
}

}  // namespace

size_t readForClient(const std::string& path, const std::function<uint8_t*(size_t)>& placeFor) {
    if (path.empty()) {
        return 0;
    }
    const NamedFile file = findFile(path);
    ALOGD("filePath:%s", file.path.c_str());
    if (!file.exists) {
        ALOGD("[%s %d] %s don't exist.", "getTvFile", __LINE__, file.path.c_str());
        return 0;
    }
    size_t unplaced = 0;
    const size_t size = readWhole(file.path, [&](size_t wanted) {
        uint8_t* const place = placeFor(wanted);
        unplaced = place == nullptr ? wanted : 0;
        return place;
    });
    // The size of the file, also if there is no memory for it: 0 would look like an empty file.
    ALOGD("getTvFile fileData size:%zu", size + unplaced);
    return size;
}

std::vector<uint8_t> ProjectParser::getTvFile(const std::string& path) {
    std::vector<uint8_t> data;
    const size_t size = readForClient(path, [&](size_t wanted) -> uint8_t* {
        try {
            data.resize(wanted);
        } catch (const std::bad_alloc&) {
            ALOGE("%s: cannot be read: no memory for %zu bytes", path.c_str(), wanted);
            return nullptr;
        }
        return data.data();
    });
    data.resize(size);
    return data;
}

bool ProjectParser::isFileExist(const std::string& path) {
    if (path.empty()) {
        return false;
    }
    const NamedFile file = findFile(path);
    ALOGD("isFileExist filePath:%s", file.path.c_str());
    if (!file.exists) {
        ALOGD("isFileExist %s don't exist.", file.path.c_str());
    }
    return file.exists;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
