#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/SetChanges.h"

#include <log/log.h>

#include "projectconfigs/LogLines.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr const char* kSameBoard = "";

int32_t highestIndex(const ProjectSet& set) {
    return static_cast<int32_t>(set.items().getProjectMaxIdx());
}

}  // namespace

SetChanges::SetChanges(ProjectSet& set, ProjectID& projectId, const BoardID& boardId)
    : mSet(set), mProjectID(projectId), mBoardID(boardId), mProjectMaxIdx(highestIndex(set)) {}

bool SetChanges::setProject(int32_t id) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (id > 0 && id > mProjectMaxIdx) {
        ALOGD("[%s:%d] Update and check Max ID again for the case of USB update",
              "SetProjectIdInternal", log_line::kMaxIdCheck);
        // If a file cannot be read, the items and the highest index stay, and the id is refused.
        (void)mSet.store().load(static_cast<int>(mProjectID.Get()), mBoardID.Get());
        mProjectMaxIdx = highestIndex(mSet);
    }
    return selectLocked(id, "!");
}

bool SetChanges::setKnownProject(int32_t id) {
    const std::lock_guard<std::mutex> lock(mMutex);
    // Two exclamation marks distinguish this refusal from the other.
    return selectLocked(id, "!!");
}

bool SetChanges::selectLocked(int32_t id, const char* endOfRefusal) {
    if (id <= 0 || id > mProjectMaxIdx) {
        ALOGE("[mProjectMaxIdx:%d] pid:%d is illegal%s", mProjectMaxIdx, id, endOfRefusal);
        return false;
    }
    // The files first: the model changes only if they can be read.
    if (!mSet.store().load(id, kSameBoard)) {
        return false;
    }
    // An index that cannot be stored is used until the next start.
    mProjectID.Set(static_cast<unsigned int>(id));
    return true;
}

bool SetChanges::setCountry(_tv_country country) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mSet.region().apply(country);
    return mSet.region().save(country);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
