#include "projectconfigs/ProjectParser.h"

#include <android/log.h>

#include <algorithm>
#include <utility>

#include "common/Decimal.h"
#include "common/LineReader.h"
#include "common/Paths.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kTag = "MlkProjectConfigs";
constexpr const char* kNoBoardFile = "DEFAULT_BOARD_ID";
constexpr size_t kListBufferSize = 256;      // customer and system file
constexpr size_t kProjectBufferSize = 1024;  // project and board file

// Cleans a value or a section name. The order counts: only a carriage return at the very end goes,
// while spaces may stand before a comment, a quote or a semicolon that is taken out first.
void eraseSymbol(std::string& text) {
    text.erase(std::min(text.find('#'), text.size()));
    text.erase(text.find_last_not_of('\r') + 1);
    text.erase(
            std::remove_if(text.begin(), text.end(), [](char c) { return c == '"' || c == ';'; }),
            text.end());
    text.erase(text.find_last_not_of(' ') + 1);
    text.erase(0, text.find_first_not_of(' '));
}

bool contains(std::string_view line, std::string_view word) {
    return line.find(word) != std::string_view::npos;
}

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

}  // namespace

ProjectParser::ProjectParser(const char* tvdataPath, const char* tvconfigsPath,
                             const char* impdataPath)
    : mTvdataPath(orEmpty(tvdataPath)),
      mTvconfigsPath(orEmpty(tvconfigsPath)),
      mImpdataPath(orEmpty(impdataPath)) {}

void ProjectParser::update(const char* customerIniPath, int projectId, const std::string& boardId) {
    if (customerIniPath == nullptr) {
        return;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    mItemMap.clear();
    mProjectId = projectId;
    parse_customer_ini(customerIniPath, mCustomerId, mSysIniPath);
    parse_sys_ini(mSysIniPath.c_str(), mProjectIniPath, mProjectMaxIdx);
    parse_project_ini(mProjectIniPath.c_str());
    parse_board_id_ini(boardId);
}

bool ProjectParser::isMissing(const std::string& path, const char* function, int sourceLine) {
    if (pathExists(path)) {
        return false;
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "[%s %d] %s don't exist.", function, sourceLine,
                        path.c_str());
    return true;
}

void ProjectParser::parse_customer_ini(const char* path, std::string& customerId,
                                       std::string& sysIniPath) {
    if (isMissing(path, __func__, __LINE__)) {
        return;
    }
    LineReader reader(path, kListBufferSize, kTag);
    std::string_view line;
    std::string_view value;
    while (reader.next(line)) {
        const bool isCustomerId = contains(line, "CUSTOMER_ID");
        if ((!isCustomerId && !contains(line, "SYS_INI")) || !reader.valueOf(line, value)) {
            continue;
        }
        std::string& target = isCustomerId ? customerId : sysIniPath;
        target = value;
        eraseSymbol(target);
        if (!isCustomerId) {
            PatchIniItemPath(target);
        }
    }
}

void ProjectParser::parse_sys_ini(const char* path, std::string& projectIniPath,
                                  unsigned int& maxIdx) {
    if (isMissing(path, __func__, __LINE__)) {
        return;
    }
    constexpr std::string_view kModel = "Model_";
    LineReader reader(path, kListBufferSize, kTag);
    std::string_view line;
    std::string_view value;
    while (reader.next(line)) {
        const size_t model = line.find(kModel);
        if (model == std::string_view::npos || !reader.valueOf(line, value)) {
            continue;
        }
        const int32_t number = parseDecimal(line.substr(model + kModel.size()));
        // Unsigned, so that a negative number admits every index.
        maxIdx = std::max(maxIdx, static_cast<unsigned int>(number));
        if (number == mProjectId) {
            projectIniPath = value;
            eraseSymbol(projectIniPath);
            PatchIniItemPath(projectIniPath);
        }
    }
}

void ProjectParser::parse_project_ini(const char* path) {
    if (path == nullptr) {
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "path is null");
        return;
    }
    if (isMissing(path, __func__, __LINE__)) {
        return;
    }
    LineReader reader(path, kProjectBufferSize, kTag);
    std::string category;
    std::string_view line;
    while (reader.next(line)) {
        if (line.empty() || line.front() == '\r' || line.front() == '#') {
            continue;
        }
        if (line.front() == '[') {
            category = line;
            eraseSymbol(category);
        } else {
            addNewItem(category, std::string(line));
        }
    }
}

void ProjectParser::parse_board_id_ini(const std::string& boardId) {
    if (boardId == kNoBoardFile) {
        mBoardIniPath.clear();
        return;
    }
    if (!boardId.empty()) {
        mBoardIniPath = boardId;
    }
    eraseSymbol(mBoardIniPath);
    PatchIniItemPath(mBoardIniPath);
    parse_project_ini(mBoardIniPath.c_str());
}

void ProjectParser::addNewItem(const std::string& category, std::string line) {
    eraseSymbol(line);
    const size_t equals = line.find('=');
    std::string value = equals == std::string::npos ? line : line.substr(equals + 1);
    std::string key = std::move(line);
    key.erase(std::min(equals, key.size()));
    key.erase(key.find_last_not_of(' ') + 1);
    value.erase(0, value.find_first_not_of(' '));
    PatchIniItemPath(value);

    const auto [item, isNew] = mItemMap.try_emplace(ConfigKey(category, std::move(key)));
    if (!isNew) {
        __android_log_print(ANDROID_LOG_DEBUG, kTag,
                            "[%s %d] update value (%s -> %s) due to the same key (%s)", __func__,
                            __LINE__, item->second.c_str(), value.c_str(), item->first.key.c_str());
    }
    item->second = std::move(value);
}

void ProjectParser::PatchIniItemPath(std::string& value) const {
    // A mere prefix: what follows need not be a "/".
    const std::pair<std::string_view, const char*> prefixes[] = {
            {"/tvconfigs", mTvconfigsPath}, {"/tvdata", mTvdataPath}, {"/impdata", mImpdataPath}};
    for (const auto& [prefix, mountPoint] : prefixes) {
        if (startsWith(value, prefix)) {
            value.replace(0, prefix.size(), mountPoint);
            return;
        }
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
