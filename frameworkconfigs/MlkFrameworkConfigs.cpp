#include "frameworkconfigs/MlkFrameworkConfigs.h"

#include "platform/Platform.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::Return;
using ::android::hardware::Void;

MlkFrameworkConfigs::MlkFrameworkConfigs() : mSwitches(systemProperties()) {}

Return<void> MlkFrameworkConfigs::setForceStrEnabled(bool enabled, setForceStrEnabled_cb _hidl_cb) {
    _hidl_cb({true, mSwitches.setForceStr(enabled)});
    return Void();
}

Return<void> MlkFrameworkConfigs::setWowEnabled(bool enabled, setWowEnabled_cb _hidl_cb) {
    _hidl_cb({true, mSwitches.setWow(enabled)});
    return Void();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
