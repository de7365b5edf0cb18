#include "frameworkconfigs/MlkFrameworkConfigs.h"

#include <cutils/properties.h>

#include "common/Answer.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::Return;
using ::android::hardware::Void;

namespace {

/// How an item's property becomes its value, and that its answer; FrameworkItems.h says what they
/// mean.
enum class Kind { FLAG, NUMBER, INVERTED, TEXT };

struct Row {
    Kind kind;
    const char* property;
};

#define MLK_ROW(getter, kind, property) {Kind::kind, property},
constexpr Row kRows[] = {MLK_FRAMEWORK_ITEMS(MLK_ROW)};
#undef MLK_ROW

int32_t readValue(const Row& row, bool defaultFlag) {
    switch (row.kind) {
        case Kind::FLAG:
            return property_get_bool(row.property, defaultFlag ? 1 : 0) != 0 ? 1 : 0;
        case Kind::NUMBER:
            return property_get_int32(row.property, 0);
        case Kind::INVERTED:
            return property_get_int32(row.property, 0) == 0 ? 1 : 0;
        case Kind::TEXT:
            break;
    }
    return 0;
}

template <Kind kind>
auto valueOf(int32_t value) {
    if constexpr (kind == Kind::NUMBER) {
        return value;
    } else if constexpr (kind == Kind::TEXT) {
        return ::android::hardware::hidl_string();
    } else {
        return value != 0;
    }
}

}  // namespace

MlkFrameworkConfigs::MlkFrameworkConfigs() {
    for (size_t item = 0; item < mCache.size(); ++item) {
        mCache[item] = readValue(kRows[item], false);
    }
}

#define MLK_DEFINE_GETTER(getter, kind, property)                                       \
    Return<void> MlkFrameworkConfigs::getter(getter##_cb _hidl_cb) {                    \
        answerWith(_hidl_cb, true, valueOf<Kind::kind>(mCache[FrameworkItem::getter])); \
        return Void();                                                                  \
    }
MLK_FRAMEWORK_ITEMS(MLK_DEFINE_GETTER)
#undef MLK_DEFINE_GETTER

bool MlkFrameworkConfigs::write(FrameworkItem::Number item, const char* text, bool requested) {
    const std::lock_guard<std::mutex> guard(mSetterLock);
    // Whether it could be written shows in what is read back.
    property_set(kRows[item].property, text);
    const int32_t value = readValue(kRows[item], requested);
    mCache[item] = value;
    return value != 0;
}

Return<void> MlkFrameworkConfigs::setForceStrEnabled(bool enabled, setForceStrEnabled_cb _hidl_cb) {
    _hidl_cb({true, write(FrameworkItem::getForceStrEnabled, enabled ? "0" : "1", enabled)});
    return Void();
}

Return<void> MlkFrameworkConfigs::setWowEnabled(bool enabled, setWowEnabled_cb _hidl_cb) {
    _hidl_cb({true, write(FrameworkItem::getWowEnabled, enabled ? "true" : "false", enabled)});
    return Void();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
