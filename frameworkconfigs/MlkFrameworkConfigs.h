#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

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
#define MLK_DECLARE_GETTER(getter, kind, property) \
    ::android::hardware::Return<void> getter(getter##_cb _hidl_cb) override;
    MLK_FRAMEWORK_ITEMS(MLK_DECLARE_GETTER)
#undef MLK_DECLARE_GETTER

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
    bool write(FrameworkItem::Number item, const char* text, bool requested);

    /// The values, a flag as 0 or 1.
    std::array<std::atomic<int32_t>, FrameworkItem::COUNT> mCache{};
    std::mutex mSetterLock;  ///< Held from a property's write until its value is cached.
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
