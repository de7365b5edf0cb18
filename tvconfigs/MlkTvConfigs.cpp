#define LOG_TAG "MlkTvConfigs"

#include "tvconfigs/MlkTvConfigs.h"

#include <log/log.h>

#include <functional>
#include <iterator>
#include <utility>

#include "platform/Platform.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using ::android::hardware::Void;

namespace {

using Setter = Return<void> (IMlkTvConfigs::*)(bool, std::function<void(const OptionalBool&)>);

// The setter of each flag, in the order of kTvFlags.
constexpr Setter kSetters[] = {&IMlkTvConfigs::setAtvEnabled,
                               &IMlkTvConfigs::setAtvAntennaEnabled,
                               &IMlkTvConfigs::setAtvCableEnabled,
                               &IMlkTvConfigs::setDtvEnabled,
                               &IMlkTvConfigs::setDtvAntennaEnabled,
                               &IMlkTvConfigs::setDtvCableEnabled,
                               &IMlkTvConfigs::setDtvSatelliteEnabled,
                               &IMlkTvConfigs::setPvrEnabled,
                               &IMlkTvConfigs::setLivepauseEnabled,
                               &IMlkTvConfigs::setHdmiEnabled,
                               &IMlkTvConfigs::setVgaEnabled,
                               &IMlkTvConfigs::setAvEnabled,
                               &IMlkTvConfigs::setYppEnabled,
                               &IMlkTvConfigs::setCiEnabled,
                               &IMlkTvConfigs::setPipEnabled,
                               &IMlkTvConfigs::setMheg5Enabled,
                               &IMlkTvConfigs::setGingaEnabled,
                               &IMlkTvConfigs::setHbbtvEnabled,
                               &IMlkTvConfigs::setTeltexEnabled,
                               &IMlkTvConfigs::setCloseCaptionEnabled,
                               &IMlkTvConfigs::setAtscCloseCaptionEnabled,
                               &IMlkTvConfigs::setNtscCloseCaptionEnabled,
                               &IMlkTvConfigs::setIsdbCloseCaptionEnabled,
                               &IMlkTvConfigs::setWOWEnabled};
static_assert(std::size(kSetters) == std::size(kTvFlags));

const TvFlagRow* flagOf(ConfigType type) {
    return findFlag(static_cast<uint32_t>(type));
}

}  // namespace

MlkTvConfigs::MlkTvConfigs(const char* path)
    : MlkTvConfigs(std::make_unique<TvFeatures>(path, systemPartitions(), systemProperties())) {}

MlkTvConfigs::MlkTvConfigs(std::unique_ptr<TvFeatures> features) : mFeatures(std::move(features)) {}

Return<void> MlkTvConfigs::getFlag(ConfigType type, getFlag_cb _hidl_cb) {
    const TvFlagRow* row = flagOf(type);
    if (row == nullptr) {
        ALOGD("unknown config type, return false");
        _hidl_cb({false, false});
    } else {
        _hidl_cb({true, mFeatures->get(*row)});
    }
    return Void();
}

Return<void> MlkTvConfigs::setFlag(ConfigType type, bool enabled, setFlag_cb _hidl_cb) {
    const TvFlagRow* row = flagOf(type);
    if (row != nullptr) {
        return (this->*kSetters[row - kTvFlags])(enabled, std::move(_hidl_cb));
    }
    ALOGD("unknown type, set value to false");
    _hidl_cb({false, enabled});
    return Void();
}

Return<void> MlkTvConfigs::reloadTvConfig(const hidl_string& path, reloadTvConfig_cb _hidl_cb) {
    _hidl_cb({true, mFeatures->reload(path.c_str())});
    return Void();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
