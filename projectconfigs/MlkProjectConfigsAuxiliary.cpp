// What the audio, karaoke, key and DDC/CI files say. They are not loaded yet, so every answer is
// that of a set without them.

#include "projectconfigs/MlkProjectConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::Return;

void MlkProjectConfigs::GetAudioConfigPathInternal() {}

void MlkProjectConfigs::GetKaraokeConfigPathInternal() {}

void MlkProjectConfigs::GetGlobalKeyConfigPathInternal() {}

void MlkProjectConfigs::GetCustomerDdcciConfigPathInternal() {}

Return<void> MlkProjectConfigs::getAudioDelay(const ProjectConfigKey& /* key */,
                                              const hidl_string& /* avrName */,
                                              getAudioDelay_cb _hidl_cb) {
    _hidl_cb({true, "0"});
    return {};
}

Return<void> MlkProjectConfigs::setAvrVendorId(const hidl_string& /* vendorId */,
                                               setAvrVendorId_cb _hidl_cb) {
    _hidl_cb({true, true});
    return {};
}

Return<void> MlkProjectConfigs::setAvrOSDName(const hidl_string& /* osdName */,
                                              setAvrOSDName_cb _hidl_cb) {
    _hidl_cb({true, true});
    return {};
}

Return<void> MlkProjectConfigs::getKaraokeConfig(const ProjectConfigKey& /* key */,
                                                 getKaraokeConfig_cb _hidl_cb) {
    _hidl_cb({true, 0});
    return {};
}

Return<void> MlkProjectConfigs::getGlobalKeyConfig(const ProjectConfigKey& /* key */,
                                                   getGlobalKeyConfig_cb _hidl_cb) {
    _hidl_cb({true, ""});
    return {};
}

Return<void> MlkProjectConfigs::getCustomerDdcciConfigInt(const ProjectConfigKey& /* key */,
                                                          getCustomerDdcciConfigInt_cb _hidl_cb) {
    _hidl_cb({true, 0});
    return {};
}

Return<void> MlkProjectConfigs::getCustomerDdcciConfigString(
        const ProjectConfigKey& /* key */, getCustomerDdcciConfigString_cb _hidl_cb) {
    _hidl_cb({true, ""});
    return {};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
