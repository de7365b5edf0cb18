// Countries, languages, frequencies and TV systems. Their files are not read yet, so every answer
// is that of a set without them, and a country cannot be saved.

#include "projectconfigs/MlkProjectConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::Return;

void MlkProjectConfigs::InitTvSysMapInfo(int32_t /* country */) {}

Return<void> MlkProjectConfigs::getCountryList(getCountryList_cb _hidl_cb) {
    _hidl_cb({});
    return {};
}

Return<void> MlkProjectConfigs::getCLTVCountryList(getCLTVCountryList_cb _hidl_cb) {
    _hidl_cb({});
    return {};
}

Return<void> MlkProjectConfigs::getLanguageList(getLanguageList_cb _hidl_cb) {
    _hidl_cb({});
    return {};
}

Return<void> MlkProjectConfigs::getFreqTableList(int32_t /* country */, FreqTableType /* type */,
                                                 AtscCableType /* cableType */,
                                                 getFreqTableList_cb _hidl_cb) {
    _hidl_cb({});
    return {};
}

Return<void> MlkProjectConfigs::isSupportTvSysReload(isSupportTvSysReload_cb _hidl_cb) {
    _hidl_cb({true, false});
    return {};
}

Return<void> MlkProjectConfigs::setCountryId(int32_t /* country */, setCountryId_cb _hidl_cb) {
    _hidl_cb({true, false});
    return {};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
