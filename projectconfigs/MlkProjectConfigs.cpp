#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/MlkProjectConfigs.h"

#include <log/log.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "common/Answer.h"
#include "common/ConfigKey.h"
#include "common/Decimal.h"
#include "platform/Platform.h"
#include "projectconfigs/ClientDescriptor.h"
#include "projectconfigs/ClientText.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;

namespace {

constexpr unsigned int kDefaultProject = 1;

// Logs one line for each partition that cannot be used, so that the cause of many missing files is
// clear.
void checkPartition(const std::string& path, int wanted) {
    if (access(path.c_str(), wanted) != 0) {
        const int error = errno;
        ALOGE("partition %s cannot be %s: %s", path.c_str(),
              (wanted & W_OK) != 0 ? "read and written" : "read",
              std::generic_category().message(error).c_str());
    }
}

Partitions checkedPartitions() {
    Partitions partitions = systemPartitions();
    checkPartition(partitions.tvconfigs, R_OK | X_OK);
    checkPartition(partitions.tvdata, R_OK | W_OK | X_OK);
    checkPartition(partitions.impdata, R_OK | W_OK | X_OK);
    return partitions;
}

void logDump(const Written& written) {
    switch (written.outcome) {
        case WriteOutcome::COMPLETE:
            ALOGI("debug -- dumping succeeded");
            return;
        case WriteOutcome::FAILED:
            ALOGW("debug -- dumping failed -- write()");
            return;
        case WriteOutcome::UNREAD:
        case WriteOutcome::CROWDED:
            break;
    }
    ALOGW("debug -- dumping failed -- write() given up after %zu bytes, %s", written.size,
          written.outcome == WriteOutcome::UNREAD ? "nobody reads them"
                                                  : "too many dumps wait already");
}

hidl_vec<uint32_t> numbersOf(const std::vector<_tv_country>& countries) {
    return hidl_vec<uint32_t>(countries.begin(), countries.end());
}

}  // namespace

MlkProjectConfigs::MlkProjectConfigs()
    : mPartitions(checkedPartitions()),
      mProjectID(mPartitions.impdata, kDefaultProject),
      mBoardID(mPartitions.impdata),
      mSet(mPartitions, systemProperties(), RegionalData::GetInstance(),
           {static_cast<int32_t>(mProjectID.Get()), mBoardID.Get(), kNoCountry}),
      mChanges(mSet, mProjectID, mBoardID) {}

Return<void> MlkProjectConfigs::setProjectId(int32_t projectId, setProjectId_cb _hidl_cb) {
    const bool accepted = mChanges.setProject(projectId);
    mSet.store().logItems();
    answerWith(_hidl_cb, true, accepted);
    return Void();
}

Return<void> MlkProjectConfigs::setProjectIdWithPid(int32_t projectId,
                                                    const hidl_string& /* processName */,
                                                    int32_t /* pid */,
                                                    setProjectIdWithPid_cb _hidl_cb) {
    const bool accepted = mChanges.setKnownProject(projectId);
    mSet.store().logItems();
    answerWith(_hidl_cb, true, accepted);
    return Void();
}

Return<void> MlkProjectConfigs::getProjectId(getProjectId_cb _hidl_cb) {
    answerWith(_hidl_cb, true, static_cast<int32_t>(mProjectID.Get()));
    return Void();
}

Return<void> MlkProjectConfigs::getAudioDelay(const ProjectConfigKey& key,
                                              const hidl_string& avrName,
                                              getAudioDelay_cb _hidl_cb) {
    const bool isArc = avrName.c_str() != nullptr && avrName == "ARC";
    answerWith(_hidl_cb, true, std::to_string(mSet.sounds().delay(nameOf(key), isArc)));
    return Void();
}

bool MlkProjectConfigs::trySetAvrVendorId(const hidl_string& vendorId) {
    return mSet.sounds().trySetAvrVendorId({vendorId.c_str(), vendorId.size()});
}

bool MlkProjectConfigs::trySetAvrOSDName(const hidl_string& osdName) {
    return mSet.sounds().trySetAvrOSDName({osdName.c_str(), osdName.size()});
}

Return<void> MlkProjectConfigs::setAvrVendorId(const hidl_string& vendorId,
                                               setAvrVendorId_cb _hidl_cb) {
    LOG_ALWAYS_FATAL_IF(!trySetAvrVendorId(vendorId), "the vendor id of the AVR does not fit");
    answerWith(_hidl_cb, true, true);
    return Void();
}

Return<void> MlkProjectConfigs::setAvrOSDName(const hidl_string& osdName,
                                              setAvrOSDName_cb _hidl_cb) {
    LOG_ALWAYS_FATAL_IF(!trySetAvrOSDName(osdName), "the OSD name of the AVR does not fit");
    answerWith(_hidl_cb, true, true);
    return Void();
}

Return<void> MlkProjectConfigs::getKaraokeConfig(const ProjectConfigKey& key,
                                                 getKaraokeConfig_cb _hidl_cb) {
    const std::string text = mSet.karaoke().lookUp(nameOf(key));
    const int32_t number = parseDecimal(text);
    ALOGD("%s: %s: %i", __func__, text.c_str(), number);
    answerWith(_hidl_cb, true, number);
    return Void();
}

Return<void> MlkProjectConfigs::getGlobalKeyConfig(const ProjectConfigKey& key,
                                                   getGlobalKeyConfig_cb _hidl_cb) {
    const std::string text = mSet.globalKeys().lookUp(nameOf(key));
    ALOGD("%s: %s: %s: %s", __func__, key.category.c_str(), key.key.c_str(), text.c_str());
    answerWith(_hidl_cb, true, text);
    return Void();
}

Return<void> MlkProjectConfigs::getCustomerDdcciConfigInt(const ProjectConfigKey& key,
                                                          getCustomerDdcciConfigInt_cb _hidl_cb) {
    const std::string text = mSet.customerDdcci().lookUp(nameOf(key));
    const int32_t number = parseDecimal(text);
    ALOGD("[DDCCI] %s: %s: %s: %s, %d", __func__, key.category.c_str(), key.key.c_str(),
          text.c_str(), number);
    answerWith(_hidl_cb, true, number);
    return Void();
}

Return<void> MlkProjectConfigs::getCustomerDdcciConfigString(
        const ProjectConfigKey& key, getCustomerDdcciConfigString_cb _hidl_cb) {
    const std::string text = mSet.customerDdcci().lookUp(nameOf(key));
    ALOGD("[DDCCI] %s: %s: %s: %s", __func__, key.category.c_str(), key.key.c_str(), text.c_str());
    ALOGD("[DDCCI] %s", text.c_str());
    answerWith(_hidl_cb, true, text);
    return Void();
}

Return<void> MlkProjectConfigs::getCountryList(getCountryList_cb _hidl_cb) {
    _hidl_cb(numbersOf(mSet.region().countries()));
    return Void();
}

Return<void> MlkProjectConfigs::getCLTVCountryList(getCLTVCountryList_cb _hidl_cb) {
    _hidl_cb(numbersOf(mSet.region().cltvCountries()));
    return Void();
}

Return<void> MlkProjectConfigs::getLanguageList(getLanguageList_cb _hidl_cb) {
    const std::vector<std::string> languages = mSet.region().languages();
    _hidl_cb(hidl_vec<hidl_string>(languages.begin(), languages.end()));
    return Void();
}

Return<void> MlkProjectConfigs::getFreqTableList(int32_t country, FreqTableType type,
                                                 AtscCableType cableType,
                                                 getFreqTableList_cb _hidl_cb) {
    const std::vector<HidlFreqListItem> channels =
            mSet.region().plan(_tv_country{country}, type, cableType);
    // The list travels with its padding. All bytes are cleared first, so that no memory of this
    // process leaks to the client.
    hidl_vec<HidlFreqListItem> answer;
    answer.resize(channels.size());
    std::fill_n(reinterpret_cast<uint8_t*>(answer.data()),
                channels.size() * sizeof(HidlFreqListItem), uint8_t{0});
    for (size_t i = 0; i < channels.size(); ++i) {
        answer[i].channel = channels[i].channel;
        answer[i].frequency = channels[i].frequency;
        answer[i].bandwidth = channels[i].bandwidth;
        answer[i].label = channels[i].label;
        answer[i].modulation = channels[i].modulation;
    }
    _hidl_cb(answer);
    return Void();
}

Return<void> MlkProjectConfigs::isSupportTvSysReload(isSupportTvSysReload_cb _hidl_cb) {
    answerWith(_hidl_cb, true, mSet.region().hasTvSystems());
    return Void();
}

Return<void> MlkProjectConfigs::setCountryId(int32_t country, setCountryId_cb _hidl_cb) {
    answerWith(_hidl_cb, true, mChanges.setCountry(_tv_country{country}));
    return Void();
}

Return<void> MlkProjectConfigs::debug(const hidl_handle& handle,
                                      const hidl_vec<hidl_string>& /* arguments */) {
    if (handle.getNativeHandle() == nullptr || handle->numFds != 1) {
        ALOGE("debug -- dumping failed -- invalid file descriptor to dump to");
        return Void();
    }
    std::ostringstream text;
    text << "ProjectConfigs:" << std::endl;
    mSet.items().dump(text);
    text << "Audio configuration file: " << std::endl;
    mSet.sounds().dump(text);

    writeToClient(handle->data[0], text.str(), logDump);
    return Void();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
