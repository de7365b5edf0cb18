#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <cstddef>
#include <cstdint>
#include <memory>

#include "common/Answer.h"
#include "tvconfigs/TvConfigItems.h"
#include "tvconfigs/TvFeatures.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Answers which television features are switched on, and the analogue and digital TV system.
 *
 * The process entry creates one object and registers it as "default". Each method turns its
 * arguments into a question to TvFeatures and the result into an answer; each answers once.
 *
 * Calls may come from any number of threads. No lock is held while an answer is given: a callback
 * may call the service. Log tag: "MlkTvConfigs".
 */
class MlkTvConfigs : public IMlkTvConfigs {
  public:
    /**
     * Loads the features of the set that this process runs on.
     *
     * @param path  the TV feature file; see TvFeatures for null and for one that cannot be
     *              read
     */
    explicit MlkTvConfigs(const char* path);

    /** Answers for these features, which may not be null. */
    explicit MlkTvConfigs(std::unique_ptr<TvFeatures> features);

    // The systems and flags. A getter answers success true and the value. The setter of a system
    // answers success false and the requested value if that is outside of the range. All other
    // setters answer success true and the new value, even if it cannot be stored: see TvFeatures.
#define MLK_SYSTEM(getter, setter)                                                            \
    ::android::hardware::Return<void> getter(getter##_cb _hidl_cb) override {                 \
        constexpr size_t kRow = tvSystemItem(#getter);                                        \
        return answer(kTvSystems[kRow], _hidl_cb);                                            \
    }                                                                                         \
    ::android::hardware::Return<void> setter(int32_t system, setter##_cb _hidl_cb) override { \
        constexpr size_t kRow = tvSystemItem(#getter);                                        \
        return change(kTvSystems[kRow], system, _hidl_cb);                                    \
    }
    MLK_SYSTEM(getAtvSystem, setAtvSystem)
    MLK_SYSTEM(getDtvSystem, setDtvSystem)
#undef MLK_SYSTEM
#define MLK_FLAG(getter, setter)                                                            \
    ::android::hardware::Return<void> getter(getter##_cb _hidl_cb) override {               \
        constexpr size_t kRow = tvFlagItem(#getter);                                        \
        return answer(kTvFlags[kRow], _hidl_cb);                                            \
    }                                                                                       \
    ::android::hardware::Return<void> setter(bool enabled, setter##_cb _hidl_cb) override { \
        constexpr size_t kRow = tvFlagItem(#getter);                                        \
        return change(kTvFlags[kRow], enabled, _hidl_cb);                                   \
    }
    MLK_FLAG(atvEnabled, setAtvEnabled)
    MLK_FLAG(atvAntennaEnabled, setAtvAntennaEnabled)
    MLK_FLAG(atvCableEnabled, setAtvCableEnabled)
    MLK_FLAG(dtvEnabled, setDtvEnabled)
    MLK_FLAG(dtvAntennaEnabled, setDtvAntennaEnabled)
    MLK_FLAG(dtvCableEnabled, setDtvCableEnabled)
    MLK_FLAG(dtvSatelliteEnabled, setDtvSatelliteEnabled)
    MLK_FLAG(pvrEnabled, setPvrEnabled)
    MLK_FLAG(livepauseEnabled, setLivepauseEnabled)
    MLK_FLAG(hdmiEnabled, setHdmiEnabled)
    MLK_FLAG(vgaEnabled, setVgaEnabled)
    MLK_FLAG(avEnabled, setAvEnabled)
    MLK_FLAG(yppEnabled, setYppEnabled)
    MLK_FLAG(ciEnabled, setCiEnabled)
    MLK_FLAG(pipEnabled, setPipEnabled)
    MLK_FLAG(mheg5Enabled, setMheg5Enabled)
    MLK_FLAG(gingaEnabled, setGingaEnabled)
    MLK_FLAG(hbbtvEnabled, setHbbtvEnabled)
    MLK_FLAG(teltexEnabled, setTeltexEnabled)
    MLK_FLAG(closeCaptionEnabled, setCloseCaptionEnabled)
    MLK_FLAG(atscCloseCaptionEnabled, setAtscCloseCaptionEnabled)
    MLK_FLAG(ntscCloseCaptionEnabled, setNtscCloseCaptionEnabled)
    MLK_FLAG(isdbCloseCaptionEnabled, setIsdbCloseCaptionEnabled)
    MLK_FLAG(getWOWEnabled, setWOWEnabled)
#undef MLK_FLAG

    /** Answers the value of the flag of that type. If no flag has it: success false, and false. */
    ::android::hardware::Return<void> getFlag(ConfigType type, getFlag_cb _hidl_cb) override;

    /**
     * Calls the setter of the flag of that type, which gives the answer. If no flag has it, answers
     * success false and the value of `enabled`.
     */
    ::android::hardware::Return<void> setFlag(ConfigType type, bool enabled,
                                              setFlag_cb _hidl_cb) override;

    /** Answers success true, and whether the file could be read; if not, nothing changes. */
    ::android::hardware::Return<void> reloadTvConfig(const ::android::hardware::hidl_string& path,
                                                     reloadTvConfig_cb _hidl_cb) override;

  private:
    template <typename Callback, typename Row>
    ::android::hardware::Return<void> answer(const Row& row, const Callback& callback) const {
        answerWith(callback, true, mFeatures->get(row));
        return ::android::hardware::Void();
    }
    template <typename Callback>
    ::android::hardware::Return<void> change(const TvSystemRow& row, int32_t system,
                                             const Callback& callback) {
        answerWith(callback, mFeatures->set(row, system), system);
        return ::android::hardware::Void();
    }
    template <typename Callback>
    ::android::hardware::Return<void> change(const TvFlagRow& row, bool enabled,
                                             const Callback& callback) {
        answerWith(callback, true, mFeatures->set(row, enabled));
        return ::android::hardware::Void();
    }

    const std::unique_ptr<TvFeatures> mFeatures;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
