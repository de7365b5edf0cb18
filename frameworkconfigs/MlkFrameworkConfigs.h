#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>

#include <cstddef>

#include "common/Answer.h"
#include "frameworkconfigs/FrameworkItems.h"
#include "frameworkconfigs/FrameworkSwitches.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Answers the debugging and behaviour switches of the media framework and the TV middleware.
 *
 * The process entry creates one object and registers it as "default". Each method turns its
 * arguments into a question to FrameworkSwitches and the result into an answer. No method fails:
 * each answers once, with success true.
 *
 * Calls may come from any number of threads; no lock is held while an answer is given.
 */
class MlkFrameworkConfigs : public IMlkFrameworkConfigs {
  public:
    /** Reads the properties of the set that this process runs on. */
    MlkFrameworkConfigs();

    // The getters answer the cached value of their item.
#define MLK_GETTER(method)                                                    \
    ::android::hardware::Return<void> method(method##_cb _hidl_cb) override { \
        return answer<frameworkItem(#method)>(_hidl_cb);                      \
    }
    MLK_GETTER(inputMp4PtsDebugEnabled)
    MLK_GETTER(inputMp4AvsyncDebuEnabledg)
    MLK_GETTER(inputMp4FwptsDebugEnabled)
    MLK_GETTER(inputMp4DumpesEnabled)
    MLK_GETTER(inputMp4PerformanceDebugEnabled)
    MLK_GETTER(inputMKVDebugEnabled)
    MLK_GETTER(mediaDebugEnabled)
    MLK_GETTER(isMediaFreeRun)
    MLK_GETTER(isMediaAudioMaster)
    MLK_GETTER(isMediaNoVideoDemux)
    MLK_GETTER(isMediaNoAudioDemux)
    MLK_GETTER(mlkPlayerAdaptiveStreamEnabled)
    MLK_GETTER(getTvserviceDumpLevel)
    MLK_GETTER(strEnabled)
    MLK_GETTER(getForceStrEnabled)
    MLK_GETTER(getWowEnabled)
    MLK_GETTER(getMediaDebugCmd)
    MLK_GETTER(getResumePowerKey)
    MLK_GETTER(getMediaVdecInfo)
    MLK_GETTER(getBtA2DPAoutID)
    MLK_GETTER(argb4444Enabled)
    MLK_GETTER(hbbtvEnabled)
    MLK_GETTER(moduleTestEnabled)
#undef MLK_GETTER

    // The setters answer what the property holds afterwards, whether or not it could be written.

    ::android::hardware::Return<void> setForceStrEnabled(bool enabled,
                                                         setForceStrEnabled_cb _hidl_cb) override;
    ::android::hardware::Return<void> setWowEnabled(bool enabled,
                                                    setWowEnabled_cb _hidl_cb) override;

  private:
    template <size_t kRow, typename Callback>
    ::android::hardware::Return<void> answer(const Callback& callback) const {
        constexpr FrameworkItemKind kKind = kFrameworkItems[kRow].kind;
        if constexpr (kKind == FrameworkItemKind::TEXT) {
            answerWith(callback, true, ::android::hardware::hidl_string());
        } else if constexpr (kKind == FrameworkItemKind::NUMBER) {
            answerWith(callback, true, mSwitches.get(kRow));
        } else {
            answerWith(callback, true, mSwitches.get(kRow) != 0);
        }
        return ::android::hardware::Void();
    }

    FrameworkSwitches mSwitches;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
