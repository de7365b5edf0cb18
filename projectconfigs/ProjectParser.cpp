#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/ProjectParser.h"

#include <log/log.h>

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
    mNewItems.clear();
    Sources sources = mSources;
    const std::string unreadable = readChain(customerIniPath, projectId, boardId, sources);
    if (unreadable.empty() || !mIsRead) {
        std::swap(mItems, mNewItems);
        mSources = std::move(sources);
    } else {
        ALOGE("%s cannot be read; project %d stays in use", unreadable.c_str(),
              mSources.mProjectId);
    }
    mNewItems.clear();
    mIsRead = true;
    return unreadable.empty();
}

std::string ProjectParser::readChain(const char* customerIniPath, int projectId,
                                     const std::string& boardId, Sources& sources) {
    sources.mProjectId = projectId;
    mReader.parse_customer_ini(customerIniPath, sources.mCustomerId, sources.mSysIniPath);
    // The highest index is no source: a set whose model cannot be read can still learn of further
    // models.
    mReader.parse_sys_ini(sources.mSysIniPath.c_str(), projectId, sources.mProjectIniPath,
                          mProjectMaxIdx);
    const bool hasProject = mReader.parse_project_ini(sources.mProjectIniPath.c_str(), mNewItems);
    const bool hasBoard = parse_board_id_ini(boardId, sources.mBoardIniPath);
    if (!hasProject) {
        return sources.mProjectIniPath;
    }
    return hasBoard ? std::string() : sources.mBoardIniPath;
}

bool ProjectParser::parse_board_id_ini(const std::string& boardId, std::string& boardIniPath) {
    if (boardId == keyword::kNoBoardFile) {
        boardIniPath.clear();
        return true;
    }
    if (!boardId.empty()) {
        boardIniPath = boardId;
    }
    boardIniPath = mReader.cleanPath(boardIniPath);
    return mReader.parse_project_ini(boardIniPath.c_str(), mNewItems);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
