#include "frameworkconfigs/MlkFrameworkConfigs.h"

#include <cutils/properties.h>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::Return;
using ::android::hardware::Void;

namespace {

int32_t readValue(const FrameworkItemRow& row, bool defaultFlag) {
    switch (row.kind) {
        case FrameworkItemKind::FLAG:
            return property_get_bool(row.property, defaultFlag ? 1 : 0) != 0 ? 1 : 0;
        case FrameworkItemKind::NUMBER:
            return property_get_int32(row.property, 0);
        case FrameworkItemKind::INVERTED:
            return property_get_int32(row.property, 0) == 0 ? 1 : 0;
        case FrameworkItemKind::TEXT:
            break;
    }
    return 0;
}

}  // namespace

MlkFrameworkConfigs::MlkFrameworkConfigs() {
    for (size_t item = 0; item < mCache.size(); ++item) {
        mCache[item] = readValue(kFrameworkItems[item], false);
    }
}

bool MlkFrameworkConfigs::write(size_t row, const char* text, bool requested) {
    const std::lock_guard<std::mutex> guard(mSetterLock);
    // Whether it could be written shows in what is read back.
    property_set(kFrameworkItems[row].property, text);
    const int32_t value = readValue(kFrameworkItems[row], requested);
    mCache[row] = value;
    return value != 0;
}

Return<void> MlkFrameworkConfigs::setForceStrEnabled(bool enabled, setForceStrEnabled_cb _hidl_cb) {
    _hidl_cb({true, write(frameworkItem("getForceStrEnabled"), enabled ? "0" : "1", enabled)});
    return Void();
}

Return<void> MlkFrameworkConfigs::setWowEnabled(bool enabled, setWowEnabled_cb _hidl_cb) {
    _hidl_cb({true, write(frameworkItem("getWowEnabled"), enabled ? "true" : "false", enabled)});
    return Void();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
