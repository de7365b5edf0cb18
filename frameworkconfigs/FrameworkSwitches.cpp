#include "frameworkconfigs/FrameworkSwitches.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

int32_t readValue(const Properties& properties, const FrameworkItemRow& row, bool defaultFlag) {
    switch (row.kind) {
        case FrameworkItemKind::FLAG:
            return properties.getBool(row.property, defaultFlag) ? 1 : 0;
        case FrameworkItemKind::NUMBER:
            return properties.getInt32(row.property, 0);
        case FrameworkItemKind::INVERTED:
            return properties.getInt32(row.property, 0) == 0 ? 1 : 0;
        case FrameworkItemKind::TEXT:
            break;
    }
    return 0;
}

}  // namespace

FrameworkSwitches::FrameworkSwitches(Properties& properties) : mProperties(properties) {
    for (size_t row = 0; row < mCache.size(); ++row) {
        mCache[row] = readValue(mProperties, kFrameworkItems[row], false);
    }
}

bool FrameworkSwitches::write(size_t row, const char* text, bool requested) {
    const std::lock_guard<std::mutex> guard(mSetterLock);
    // A failure shows in the value that is read back.
    mProperties.set(kFrameworkItems[row].property, text);
    const int32_t value = readValue(mProperties, kFrameworkItems[row], requested);
    mCache[row] = value;
    return value != 0;
}

bool FrameworkSwitches::setForceStr(bool enabled) {
    return write(frameworkItem("getForceStrEnabled"), enabled ? "0" : "1", enabled);
}

bool FrameworkSwitches::setWow(bool enabled) {
    return write(frameworkItem("getWowEnabled"), enabled ? "true" : "false", enabled);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
