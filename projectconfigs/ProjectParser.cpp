#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/ProjectParser.h"

#include <log/log.h>

#include <tuple>
#include <utility>

#include "projectconfigs/ChainKeywords.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

ProjectParser::ProjectParser(const char* tvdataPath, const char* tvconfigsPath,
                             const char* impdataPath, ReadObserver* observer)
    : mReader(tvdataPath, tvconfigsPath, impdataPath, observer) {}

bool ProjectParser::update(const char* customerIniPath, int projectId, const std::string& boardId) {
    if (customerIniPath == nullptr) {
        return true;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    // All but the highest index, which only grows: a set whose model cannot be read can still learn
    // of further models.
    const auto sources = [this] {
        return std::tie(mProjectId, mCustomerId, mSysIniPath, mProjectIniPath, mBoardIniPath);
    };
    std::tuple<int32_t, std::string, std::string, std::string, std::string> former = sources();
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
    mReader.parse_customer_ini(customerIniPath, mCustomerId, mSysIniPath);
    mReader.parse_sys_ini(mSysIniPath.c_str(), projectId, mProjectIniPath, mProjectMaxIdx);
    const bool hasProject = mReader.parse_project_ini(mProjectIniPath.c_str(), mItems);
    return parse_board_id_ini(boardId) && hasProject;
}

bool ProjectParser::parse_board_id_ini(const std::string& boardId) {
    if (boardId == keyword::kNoBoardFile) {
        mBoardIniPath.clear();
        return true;
    }
    if (!boardId.empty()) {
        mBoardIniPath = boardId;
    }
    mBoardIniPath = mReader.cleanPath(mBoardIniPath);
    return mReader.parse_project_ini(mBoardIniPath.c_str(), mItems);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
