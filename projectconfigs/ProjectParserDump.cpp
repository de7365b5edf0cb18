#define LOG_TAG "MlkProjectConfigs"

#include <log/log.h>

#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

void ProjectParser::dump() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    ALOGD("ProjectConfigs:");
    logSources();
    ALOGD("\tProject total item=%d", static_cast<int>(mItems.size()));
}

void ProjectParser::dumpDetail() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    // Tools that read this log look for "deatil".
    ALOGD("ProjectConfigs deatil:");
    logSources();
    mItems.log(LOG_TAG);
}

void ProjectParser::logSources() const {
    ALOGD("\tCustomer ID=%s", mSources.mCustomerId.c_str());
    ALOGD("\tProject ID=%d", mSources.mProjectId);
    ALOGD("\tProject max index=%d", static_cast<int>(mProjectMaxIdx));
    ALOGD("\tSys ini file=%s", mSources.mSysIniPath.c_str());
    ALOGD("\tProject ini file=%s", mSources.mProjectIniPath.c_str());
    ALOGD("\tBoard ini file=%s", mSources.mBoardIniPath.c_str());
}

void ProjectParser::dump(std::ostream& out) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    out << "  Customer ID: " << mSources.mCustomerId << std::endl;
    out << "  Project ID: " << mSources.mProjectId << std::endl;
    out << "  Project max index: " << mProjectMaxIdx << std::endl;
    out << "  Sys ini file: " << mSources.mSysIniPath << std::endl;
    out << "  Project ini file: " << mSources.mProjectIniPath << std::endl;
    out << "  Board ini file: " << mSources.mBoardIniPath << std::endl;
    mItems.write(out, "    ");
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
