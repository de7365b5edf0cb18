#include "projectconfigs/MlkProjectConfigs.h"

#include <TvPartitionPath.h>
#include <android/log.h>
#include <cutils/properties.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "common/Answer.h"
#include "common/Decimal.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::Return;

namespace {

constexpr const char* kTag = "MlkProjectConfigs";
constexpr unsigned int kDefaultProject = 1;
constexpr int32_t kSavedCountry = -1;
constexpr const char* kSameBoard = "";

// One line for each partition that is of no use, instead of many about what is missing.
void checkPartition(const char* path, int wanted) {
    if (access(path, wanted) != 0) {
        const int error = errno;
        __android_log_print(ANDROID_LOG_ERROR, kTag, "partition %s cannot be %s: %s", path,
                            (wanted & W_OK) != 0 ? "read and written" : "read",
                            std::generic_category().message(error).c_str());
    }
}

}  // namespace

MlkProjectConfigs::MlkProjectConfigs() {
    InitPartitionPath();
    mProjectParser = std::make_unique<ProjectParser>(mTvdataPath, mTvconfigsPath, mImpdataPath);
    mProjectID = std::make_unique<ProjectID>(mImpdataPath, kDefaultProject);
    mBoardID = std::make_unique<BoardID>(mImpdataPath);
    mProjectParser->update(mCustomerIniPath.c_str(), static_cast<int>(mProjectID->Get()),
                           mBoardID->Get());
    mProjectMaxIdx = static_cast<int32_t>(mProjectParser->getProjectMaxIdx());
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "mProjectMaxIdx:%d", mProjectMaxIdx);
    DumpConfigInfo();

    mAudioIniParser = std::make_unique<IniProjectParser>();
    GetAudioConfigPathInternal();
    mKaraokeIniParser = std::make_unique<IniProjectParser>();
    GetKaraokeConfigPathInternal();
    mGlobalKeyIniParser = std::make_unique<IniProjectParser>();
    GetGlobalKeyConfigPathInternal();
    mCustomerDdcciIniParser = std::make_unique<IniProjectParser>();
    GetCustomerDdcciConfigPathInternal();

    InitTvSysMapInfo(kSavedCountry);
}

void MlkProjectConfigs::InitPartitionPath() {
    const TvPartitionPath* const partitions = TvPartitionPath::GetInstance();
    mImpdataPath = partitions->GetImpdataPath();
    mTvdataPath = partitions->GetTvdataPath();
    mTvconfigsPath = partitions->GetTvconfigsPath();
    checkPartition(mTvconfigsPath, R_OK | X_OK);
    checkPartition(mTvdataPath, R_OK | W_OK | X_OK);
    checkPartition(mImpdataPath, R_OK | W_OK | X_OK);
    mCustomerIniPath = std::string(mTvconfigsPath) + "/customer.ini";
    static_assert(sizeof(Name) >= PROPERTY_VALUE_MAX);
    property_get("ro.hardware", mHardwareName.data(), "");
    snprintf(mHwAudioConfigName.data(), mHwAudioConfigName.size(), "audio_%.*s.ini",
             PROPERTY_VALUE_MAX - 1, mHardwareName.data());
}

void MlkProjectConfigs::DumpConfigInfo() const {
    char detail[PROPERTY_VALUE_MAX];
    property_get("persist.vendor.mlk.configs.debug", detail, "0");
    if (parseDecimal(detail) < 1) {
        mProjectParser->dump();
    } else {
        mProjectParser->dumpDetail();
    }
}

Return<void> MlkProjectConfigs::setProjectId(int32_t projectId, setProjectId_cb _hidl_cb) {
    char trace[64];
    snprintf(trace, sizeof trace, "## setProjectId, id=%d", projectId);
    ProjectID::WriteTestLog(trace);
    const bool accepted = SetProjectIdInternal(projectId);
    DumpConfigInfo();
    _hidl_cb({true, accepted});
    return {};
}

bool MlkProjectConfigs::SetProjectIdInternal(int32_t id) {
    const std::lock_guard<std::mutex> lock(mProjectChange);
    if (id > 0 && id > mProjectMaxIdx) {
        // 522 is what the tools that read this log know the message by.
        __android_log_print(ANDROID_LOG_DEBUG, kTag,
                            "[%s:%d] Update and check Max ID again for the case of USB update",
                            __func__, 522);
        mProjectParser->update(mCustomerIniPath.c_str(), static_cast<int>(mProjectID->Get()),
                               mBoardID->Get());
        mProjectMaxIdx = static_cast<int32_t>(mProjectParser->getProjectMaxIdx());
    }
    if (id <= 0 || id > mProjectMaxIdx) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "[mProjectMaxIdx:%d] pid:%d is illegal!",
                            mProjectMaxIdx, id);
        return false;
    }
    // The files first: a model that cannot be read is not changed to.
    if (!mProjectParser->update(mCustomerIniPath.c_str(), id, kSameBoard)) {
        return false;
    }
    // An index that cannot be stored still holds until the next start.
    mProjectID->Set(static_cast<unsigned int>(id));
    return true;
}

Return<void> MlkProjectConfigs::setProjectIdWithPid(int32_t projectId,
                                                    const hidl_string& processName, int32_t pid,
                                                    setProjectIdWithPid_cb _hidl_cb) {
    char trace[256];
    snprintf(trace, sizeof trace, "setProjectIdWithPid, id=%d, processName = %s, pid = %d",
             projectId, processName.c_str(), pid);
    ProjectID::WriteTestLog(trace);
    const bool accepted = SetProjectIdInternalWithPid(projectId, processName, pid);
    DumpConfigInfo();
    _hidl_cb({true, accepted});
    return {};
}

bool MlkProjectConfigs::SetProjectIdInternalWithPid(int32_t id, const hidl_string& processName,
                                                    int32_t pid) {
    const std::lock_guard<std::mutex> lock(mProjectChange);
    if (id <= 0 || id > mProjectMaxIdx) {
        // Two exclamation marks tell this refusal from that of SetProjectIdInternal.
        __android_log_print(ANDROID_LOG_ERROR, kTag, "[mProjectMaxIdx:%d] pid:%d is illegal!!",
                            mProjectMaxIdx, id);
        return false;
    }
    if (!mProjectParser->update(mCustomerIniPath.c_str(), id, kSameBoard)) {
        return false;
    }
    mProjectID->SetId(static_cast<unsigned int>(id), processName.c_str(), pid);
    return true;
}

Return<void> MlkProjectConfigs::getProjectId(getProjectId_cb _hidl_cb) {
    answerWith(_hidl_cb, true, static_cast<int32_t>(mProjectID->Get()));
    return {};
}

Return<void> MlkProjectConfigs::getProjectMaxIdx(getProjectMaxIdx_cb _hidl_cb) {
    answerWith(_hidl_cb, true, static_cast<int32_t>(mProjectParser->getProjectMaxIdx()));
    return {};
}

Return<void> MlkProjectConfigs::getProjectIniList(getProjectIniList_cb _hidl_cb) {
    std::vector<std::string> list;
    mProjectParser->getProjectIniList(list);
    _hidl_cb(hidl_vec<hidl_string>(list.begin(), list.end()));
    return {};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
