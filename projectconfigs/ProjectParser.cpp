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

// Cleans a value or a section name; scratch holds the result where it is not a part of the text.
// The order counts: only a carriage return at the very end goes, while spaces may stand before a
// comment, a quote or a semicolon that is taken out first.
std::string_view eraseSymbol(std::string_view text, std::string& scratch) {
    text = text.substr(0, text.find('#'));
    text = text.substr(0, text.find_last_not_of('\r') + 1);
    if (text.find('"') != std::string_view::npos || text.find(';') != std::string_view::npos) {
        scratch.resize(text.size());
        const auto end = std::copy_if(text.begin(), text.end(), scratch.begin(),
                                      [](char c) { return c != '"' && c != ';'; });
        text = {scratch.data(), static_cast<size_t>(end - scratch.begin())};
    }
    text = text.substr(0, text.find_last_not_of(' ') + 1);
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text;
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
    mItems.clear();
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
        value = eraseSymbol(value, mCleaned);
        if (isCustomerId) {
            customerId = value;
        } else {
            sysIniPath = PatchIniItemPath(value);
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
            projectIniPath = PatchIniItemPath(eraseSymbol(value, mCleaned));
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
    ItemStore::Section section = mItems.section("");
    std::string_view line;
    while (reader.next(line)) {
        if (line.empty() || line.front() == '\r' || line.front() == '#') {
            continue;
        }
        if (line.front() == '[') {
            section = mItems.section(eraseSymbol(line, mCleaned));
        } else {
            addNewItem(section, line);
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
    mBoardIniPath = PatchIniItemPath(eraseSymbol(mBoardIniPath, mCleaned));
    parse_project_ini(mBoardIniPath.c_str());
}

void ProjectParser::addNewItem(ItemStore::Section section, std::string_view line) {
    line = eraseSymbol(line, mCleaned);
    const size_t equals = line.find('=');
    std::string_view key = line.substr(0, equals);
    std::string_view value = equals == std::string_view::npos ? line : line.substr(equals + 1);
    key = key.substr(0, key.find_last_not_of(' ') + 1);
    value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
    value = PatchIniItemPath(value);

    const auto [item, isNew] = mItems.insert(section, key, value);
    if (!isNew) {
        const std::string text(value);
        __android_log_print(ANDROID_LOG_DEBUG, kTag,
                            "[%s %d] update value (%s -> %s) due to the same key (%s)", __func__,
                            __LINE__, mItems.valueOf(item).data(), text.c_str(),
                            mItems.keyOf(item).data());
        mItems.replace(item, value);
    }
}

std::string_view ProjectParser::PatchIniItemPath(std::string_view value) {
    if (!startsWith(value, "/")) {
        return value;
    }
    // A mere prefix: what follows need not be a "/".
    const std::pair<std::string_view, const char*> prefixes[] = {
            {"/tvconfigs", mTvconfigsPath}, {"/tvdata", mTvdataPath}, {"/impdata", mImpdataPath}};
    for (const auto& [prefix, mountPoint] : prefixes) {
        if (startsWith(value, prefix)) {
            mPatched = mountPoint;
            mPatched.append(value.substr(prefix.size()));
            return mPatched;
        }
    }
    return value;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
