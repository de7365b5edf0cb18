#define LOG_TAG "MlkTvConfigs"

#include "tvconfigs/MlkTvConfigs.h"

#include <log/log.h>

#include <functional>
#include <iterator>
#include <string_view>
#include <utility>

#include "platform/Platform.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using ::android::hardware::Void;

namespace {

using Setter = Return<void> (IMlkTvConfigs::*)(bool, std::function<void(const OptionalBool&)>);

struct NamedSetter {
    std::string_view name;
    Setter call;
};

#define MLK_SETTER(method) \
    { #method, &IMlkTvConfigs::method }

// The setter of each flag, in the order of kTvFlags.
constexpr NamedSetter kSetters[] = {MLK_SETTER(setAtvEnabled),
                                    MLK_SETTER(setAtvAntennaEnabled),
                                    MLK_SETTER(setAtvCableEnabled),
                                    MLK_SETTER(setDtvEnabled),
                                    MLK_SETTER(setDtvAntennaEnabled),
                                    MLK_SETTER(setDtvCableEnabled),
                                    MLK_SETTER(setDtvSatelliteEnabled),
                                    MLK_SETTER(setPvrEnabled),
                                    MLK_SETTER(setLivepauseEnabled),
                                    MLK_SETTER(setHdmiEnabled),
                                    MLK_SETTER(setVgaEnabled),
                                    MLK_SETTER(setAvEnabled),
                                    MLK_SETTER(setYppEnabled),
                                    MLK_SETTER(setCiEnabled),
                                    MLK_SETTER(setPipEnabled),
                                    MLK_SETTER(setMheg5Enabled),
                                    MLK_SETTER(setGingaEnabled),
                                    MLK_SETTER(setHbbtvEnabled),
                                    MLK_SETTER(setTeltexEnabled),
                                    MLK_SETTER(setCloseCaptionEnabled),
                                    MLK_SETTER(setAtscCloseCaptionEnabled),
                                    MLK_SETTER(setNtscCloseCaptionEnabled),
                                    MLK_SETTER(setIsdbCloseCaptionEnabled),
                                    MLK_SETTER(setWOWEnabled)};
#undef MLK_SETTER

constexpr bool areSettersOfTheirFlags() {
    for (size_t row = 0; row < std::size(kTvFlags); ++row) {
        if (kSetters[row].name != kTvFlags[row].setter) {
            return false;
        }
    }
    return true;
}
static_assert(std::size(kSetters) == std::size(kTvFlags) && areSettersOfTheirFlags());

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
        return (this->*kSetters[row - kTvFlags].call)(enabled, std::move(_hidl_cb));
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
