#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <mutex>

#include "common/Answer.h"
#include "frameworkconfigs/FrameworkItems.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// Debugging and behaviour switches of the media framework and the TV middleware. All properties
/// are read by the constructor; afterwards a changed property is seen only after a restart, unless
/// one of the two setters changed it. No method fails: each answers once, with success true.
///
/// Calls may come from any number of threads. Getters take no lock; setters run one after the
/// other, so that what is cached is what the property holds; no lock is held while an answer is
/// given.
class MlkFrameworkConfigs : public IMlkFrameworkConfigs {
  public:
    /// Reads every property of FrameworkItems.h, in its order.
    MlkFrameworkConfigs();

    // The getters: answer the item's cached value.
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

    /// Writes the flag, inverted as it is stored: "0" for true and "1" for false. What the property
    /// holds then, and not whether it could be written, is cached and answered.
    ::android::hardware::Return<void> setForceStrEnabled(bool enabled,
                                                         setForceStrEnabled_cb _hidl_cb) override;

    /// Writes "true" or "false"; what the property holds then, or `enabled` when that is no flag,
    /// is cached and answered. The TV feature service keeps the same property in a cache of its own
    /// and does not hear of the change.
    ::android::hardware::Return<void> setWowEnabled(bool enabled,
                                                    setWowEnabled_cb _hidl_cb) override;

  private:
    template <size_t kRow, typename Callback>
    ::android::hardware::Return<void> answer(const Callback& callback) const {
        constexpr FrameworkItemKind kKind = kFrameworkItems[kRow].kind;
        if constexpr (kKind == FrameworkItemKind::TEXT) {
            answerWith(callback, true, ::android::hardware::hidl_string());
        } else if constexpr (kKind == FrameworkItemKind::NUMBER) {
            answerWith(callback, true, mCache[kRow].load());
        } else {
            answerWith(callback, true, mCache[kRow] != 0);
        }
        return {};
    }

    bool write(size_t row, const char* text, bool requested);

    /// The values, a flag as 0 or 1, by their rows in kFrameworkItems.
    std::array<std::atomic<int32_t>, std::size(kFrameworkItems)> mCache{};
    std::mutex mSetterLock;  ///< Held from a property's write until its value is cached.
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
