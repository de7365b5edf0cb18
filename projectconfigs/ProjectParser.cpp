#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/ProjectParser.h"

#include <log/log.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "common/Decimal.h"
#include "common/LineReader.h"
#include "common/Paths.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kNoBoardFile = "DEFAULT_BOARD_ID";
constexpr size_t kListBufferSize = 256;      // customer and system file
constexpr size_t kProjectBufferSize = 1024;  // project and board file

constexpr auto npos = std::string_view::npos;

// Removes the comment and the carriage returns at the end of what is left.
std::string_view withoutComment(std::string_view text) {
    text = text.substr(0, text.find('#'));
    while (!text.empty() && text.back() == '\r') {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view withoutSpaces(std::string_view text) {
    while (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    return text;
}

bool hasSymbols(std::string_view text) {
    return text.find('"') != npos || text.find(';') != npos;
}

// Removes quotes and semicolons everywhere, and then spaces at both ends. The result is a part of
// the text, unless there is a quote or semicolon in the middle: then it is in scratch.
std::string_view withoutSymbols(std::string_view text, std::string& scratch) {
    const auto isSymbol = [](char c) { return c == '"' || c == ';'; };
    const auto goes = [&](char c) { return c == ' ' || isSymbol(c); };
    while (!text.empty() && goes(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && goes(text.back())) {
        text.remove_suffix(1);
    }
    if (!hasSymbols(text)) {
        return text;
    }
    scratch = text;
    scratch.erase(std::remove_if(scratch.begin(), scratch.end(), isSymbol), scratch.end());
    return scratch;
}

std::string_view eraseSymbol(std::string_view text, std::string& scratch) {
    return withoutSymbols(withoutComment(text), scratch);
}

bool contains(std::string_view line, std::string_view word) {
    return line.find(word) != npos;
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

bool ProjectParser::update(const char* customerIniPath, int projectId, const std::string& boardId) {
    if (customerIniPath == nullptr) {
        return true;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    const auto sources = [this] {
        return std::tie(mProjectId, mProjectMaxIdx, mCustomerId, mSysIniPath, mProjectIniPath,
                        mBoardIniPath);
    };
    std::tuple<int32_t, uint32_t, std::string, std::string, std::string, std::string> former =
            sources();
    std::swap(mItems, mFormerItems);
    const auto restore = [&] {
        std::swap(mItems, mFormerItems);
        sources() = std::move(former);
    };
    bool isWhole = false;
    try {
        mItems.clear();
        isWhole = readChain(customerIniPath, projectId, boardId);
    } catch (...) {
        restore();
        throw;
    }
    if (!isWhole && mIsRead) {
        restore();
        ALOGE("project %d cannot be read, project %d stays in use", projectId, mProjectId);
    }
    mFormerItems.clear();
    mIsRead = true;
    return isWhole;
}

bool ProjectParser::readChain(const char* customerIniPath, int projectId,
                              const std::string& boardId) {
    mProjectId = projectId;
    parse_customer_ini(customerIniPath, mCustomerId, mSysIniPath);
    parse_sys_ini(mSysIniPath.c_str(), mProjectIniPath, mProjectMaxIdx);
    const bool hasProject = parse_project_ini(mProjectIniPath.c_str());
    return parse_board_id_ini(boardId) && hasProject;
}

bool ProjectParser::isMissing(const std::string& path, const char* function, int sourceLine) {
    if (pathExists(path)) {
        return false;
    }
    ALOGD("[%s %d] %s don't exist.", function, sourceLine, path.c_str());
    return true;
}

void ProjectParser::parse_customer_ini(const char* path, std::string& customerId,
                                       std::string& sysIniPath) {
    if (isMissing(path, __func__, __LINE__)) {
        return;
    }
    LineReader reader(path, kListBufferSize, LOG_TAG);
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
    LineReader reader(path, kListBufferSize, LOG_TAG);
    std::string_view line;
    std::string_view value;
    while (reader.next(line)) {
        const size_t model = line.find(kModel);
        if (model == npos || !reader.valueOf(line, value)) {
            continue;
        }
        const int32_t number = parseDecimal(line.substr(model + kModel.size()));
        // Unsigned: a negative number counts as larger than all others.
        maxIdx = std::max(maxIdx, static_cast<unsigned int>(number));
        if (number == mProjectId) {
            projectIniPath = PatchIniItemPath(eraseSymbol(value, mCleaned));
        }
    }
}

bool ProjectParser::parse_project_ini(const char* path) {
    if (path == nullptr) {
        ALOGD("path is null");
        return true;
    }
    if (isMissing(path, __func__, __LINE__)) {
        return true;
    }
    LineReader reader(path, kProjectBufferSize, LOG_TAG);
    mItems.expect(reader.size());
    ItemStore::Section section = mItems.section("");
    std::string_view line;
    while (reader.next(line)) {
        if (line.empty() || line.front() == '\r' || line.front() == '#') {
            continue;
        }
        if (line.front() == '[') {
            section = mItems.section(eraseSymbol(line, mCleaned));
        } else {
            addNewItem(section, withoutComment(line));
        }
    }
    return !reader.failed();
}

bool ProjectParser::parse_board_id_ini(const std::string& boardId) {
    if (boardId == kNoBoardFile) {
        mBoardIniPath.clear();
        return true;
    }
    if (!boardId.empty()) {
        mBoardIniPath = boardId;
    }
    mBoardIniPath = PatchIniItemPath(eraseSymbol(mBoardIniPath, mCleaned));
    return parse_project_ini(mBoardIniPath.c_str());
}

void ProjectParser::addNewItem(ItemStore::Section section, std::string_view line) {
    // One search of the line is faster than one each of key and value.
    const bool isQuoted = hasSymbols(line);
    const auto clean = [isQuoted](std::string_view text, std::string& scratch) {
        return isQuoted ? withoutSymbols(text, scratch) : withoutSpaces(text);
    };
    const size_t equals = line.find('=');
    const std::string_view key = clean(line.substr(0, equals), mCleanedKey);
    const std::string_view value =
            PatchIniItemPath(equals == npos ? key : clean(line.substr(equals + 1), mCleaned));

    const auto [item, isNew] = mItems.insert(section, key, value);
    if (!isNew) {
        const std::string text(value);
        ALOGD("[%s %d] update value (%s -> %s) due to the same key (%s)", __func__, __LINE__,
              mItems.valueOf(item).data(), text.c_str(), mItems.keyOf(item).data());
        mItems.replace(item, value);
    }
}

std::string_view ProjectParser::PatchIniItemPath(std::string_view value) {
    if (!startsWith(value, "/")) {
        return value;
    }
    // The prefix need not be followed by a "/".
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
