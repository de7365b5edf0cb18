#include <android/log.h>

#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kTag = "MlkProjectConfigs";

}  // namespace

void ProjectParser::dump() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "ProjectConfigs:");
    logSources();
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "\tProject total item=%d",
                        static_cast<int>(mItems.size()));
}

void ProjectParser::dumpDetail() const {
    const std::lock_guard<std::mutex> lock(mMutex);
    // "deatil" is what the tools that read this log look for.
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "ProjectConfigs deatil:");
    logSources();
    mItems.log(kTag);
}

void ProjectParser::logSources() const {
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "\tCustomer ID=%s", mCustomerId.c_str());
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "\tProject ID=%d", mProjectId);
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "\tProject max index=%d",
                        static_cast<int>(mProjectMaxIdx));
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "\tSys ini file=%s", mSysIniPath.c_str());
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "\tProject ini file=%s", mProjectIniPath.c_str());
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "\tBoard ini file=%s", mBoardIniPath.c_str());
}

void ProjectParser::dump(std::ostream& out) const {
    const std::lock_guard<std::mutex> lock(mMutex);
    out << "  Customer ID: " << mCustomerId << std::endl;
    out << "  Project ID: " << mProjectId << std::endl;
    out << "  Project max index: " << mProjectMaxIdx << std::endl;
    out << "  Sys ini file: " << mSysIniPath << std::endl;
    out << "  Project ini file: " << mProjectIniPath << std::endl;
    out << "  Board ini file: " << mBoardIniPath << std::endl;
    mItems.write(out, "    ");
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
