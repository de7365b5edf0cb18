#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <functional>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// Which television features are switched on. It serves no request yet: every method answers once,
/// with success false and a zero value. Holds no state, so that any thread may call it.
class MlkTvConfigs : public IMlkTvConfigs {
  public:
    /// `path`: the TV configuration file, empty for the default one; not opened yet.
    explicit MlkTvConfigs(const char* path);

#define MLK_REFUSE(method)                                                    \
    ::android::hardware::Return<void> method(method##_cb _hidl_cb) override { \
        return refuse(_hidl_cb);                                              \
    }
#define MLK_REFUSE_SET(method, Argument)                                                \
    ::android::hardware::Return<void> method(Argument, method##_cb _hidl_cb) override { \
        return refuse(_hidl_cb);                                                        \
    }

    MLK_REFUSE(getAtvSystem)
    MLK_REFUSE(getDtvSystem)
    MLK_REFUSE(atvEnabled)
    MLK_REFUSE(atvAntennaEnabled)
    MLK_REFUSE(atvCableEnabled)
    MLK_REFUSE(dtvEnabled)
    MLK_REFUSE(dtvAntennaEnabled)
    MLK_REFUSE(dtvCableEnabled)
    MLK_REFUSE(dtvSatelliteEnabled)
    MLK_REFUSE(pvrEnabled)
    MLK_REFUSE(livepauseEnabled)
    MLK_REFUSE(hdmiEnabled)
    MLK_REFUSE(vgaEnabled)
    MLK_REFUSE(avEnabled)
    MLK_REFUSE(yppEnabled)
    MLK_REFUSE(ciEnabled)
    MLK_REFUSE(pipEnabled)
    MLK_REFUSE(mheg5Enabled)
    MLK_REFUSE(gingaEnabled)
    MLK_REFUSE(hbbtvEnabled)
    MLK_REFUSE(teltexEnabled)
    MLK_REFUSE(closeCaptionEnabled)
    MLK_REFUSE(atscCloseCaptionEnabled)
    MLK_REFUSE(ntscCloseCaptionEnabled)
    MLK_REFUSE(isdbCloseCaptionEnabled)
    MLK_REFUSE(getWOWEnabled)
    MLK_REFUSE_SET(getFlag, ConfigType)
    MLK_REFUSE_SET(setAtvSystem, int32_t)
    MLK_REFUSE_SET(setDtvSystem, int32_t)
    MLK_REFUSE_SET(setAtvEnabled, bool)
    MLK_REFUSE_SET(setAtvAntennaEnabled, bool)
    MLK_REFUSE_SET(setAtvCableEnabled, bool)
    MLK_REFUSE_SET(setDtvEnabled, bool)
    MLK_REFUSE_SET(setDtvAntennaEnabled, bool)
    MLK_REFUSE_SET(setDtvCableEnabled, bool)
    MLK_REFUSE_SET(setDtvSatelliteEnabled, bool)
    MLK_REFUSE_SET(setPvrEnabled, bool)
    MLK_REFUSE_SET(setLivepauseEnabled, bool)
    MLK_REFUSE_SET(setHdmiEnabled, bool)
    MLK_REFUSE_SET(setVgaEnabled, bool)
    MLK_REFUSE_SET(setAvEnabled, bool)
    MLK_REFUSE_SET(setYppEnabled, bool)
    MLK_REFUSE_SET(setCiEnabled, bool)
    MLK_REFUSE_SET(setPipEnabled, bool)
    MLK_REFUSE_SET(setMheg5Enabled, bool)
    MLK_REFUSE_SET(setGingaEnabled, bool)
    MLK_REFUSE_SET(setHbbtvEnabled, bool)
    MLK_REFUSE_SET(setTeltexEnabled, bool)
    MLK_REFUSE_SET(setCloseCaptionEnabled, bool)
    MLK_REFUSE_SET(setAtscCloseCaptionEnabled, bool)
    MLK_REFUSE_SET(setNtscCloseCaptionEnabled, bool)
    MLK_REFUSE_SET(setIsdbCloseCaptionEnabled, bool)
    MLK_REFUSE_SET(setWOWEnabled, bool)
    ::android::hardware::Return<void> setFlag(ConfigType, bool, setFlag_cb _hidl_cb) override {
        return refuse(_hidl_cb);
    }
    MLK_REFUSE_SET(reloadTvConfig, const ::android::hardware::hidl_string&)

#undef MLK_REFUSE
#undef MLK_REFUSE_SET

  private:
    template <typename Answer>
    static ::android::hardware::Return<void> refuse(
            const std::function<void(const Answer&)>& callback) {
        callback(Answer{});
        return ::android::hardware::Void();
    }
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
