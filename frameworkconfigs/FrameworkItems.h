#pragma once

#include <cstddef>
#include <string_view>

#include "common/RowOf.h"
#include "common/ValueType.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** How a property's value becomes an answer. */
enum class FrameworkItemKind {
    FLAG,     /**< a bool; the property is read as one, false by default */
    NUMBER,   /**< an int32; the property is read as one, 0 by default */
    INVERTED, /**< a bool that is true exactly when the property, an int32 with default 0, is 0 */
    TEXT,     /**< a string that is always empty; no property is read, on purpose */
};

/** What a property of that kind may hold. */
constexpr ValueType typeOf(FrameworkItemKind kind) {
    switch (kind) {
        case FrameworkItemKind::FLAG:
            return ValueType::PROPERTY_SWITCH;
        case FrameworkItemKind::NUMBER:
            return ValueType::PROPERTY_NUMBER;
        case FrameworkItemKind::INVERTED:
            return ValueType::INVERTED_NUMBER;
        case FrameworkItemKind::TEXT:
            break;
    }
    return ValueType::TEXT;
}

/** One getter of IMlkFrameworkConfigs that answers with a cached value. */
struct FrameworkItemRow {
    const char* method;
    FrameworkItemKind kind;
    const char* property;         /**< null for a TEXT */
    const char* setter = nullptr; /**< the interface's setter; null for a switch without one */
};

/** All of them, in the order in which a start reads them. */
inline constexpr FrameworkItemRow kFrameworkItems[] = {
        {"inputMp4PtsDebugEnabled", FrameworkItemKind::FLAG, "vendor.mlk.m.mp4.dbg.pts"},
        {"inputMp4AvsyncDebuEnabledg", FrameworkItemKind::FLAG, "vendor.mlk.m.mp4.dbg.avsync"},
        {"inputMp4FwptsDebugEnabled", FrameworkItemKind::FLAG, "vendor.mlk.m.mp4.dbg.fwpts"},
        {"inputMp4DumpesEnabled", FrameworkItemKind::FLAG, "vendor.mlk.m.mp4.dbg.dumpes"},
        {"inputMp4PerformanceDebugEnabled", FrameworkItemKind::FLAG, "vendor.mlk.m.mp4.dbg.pfm"},
        {"inputMKVDebugEnabled", FrameworkItemKind::FLAG, "vendor.mlk.m.mkv.dbg"},
        {"mediaDebugEnabled", FrameworkItemKind::FLAG, "vendor.mlk.m.dbgutl.endbg"},
        {"isMediaFreeRun", FrameworkItemKind::FLAG, "vendor.mlk.m.dbgutl.freerun"},
        {"isMediaAudioMaster", FrameworkItemKind::FLAG, "vendor.mlk.m.dbgutl.amaster"},
        {"isMediaNoVideoDemux", FrameworkItemKind::FLAG, "vendor.mlk.m.dbgutl.novdmx"},
        {"isMediaNoAudioDemux", FrameworkItemKind::FLAG, "vendor.mlk.m.dbgutl.noadmx"},
        {"mlkPlayerAdaptiveStreamEnabled", FrameworkItemKind::FLAG,
         "vendor.mlk.m.mlkp.dbg.adpstrm"},
        {"getTvserviceDumpLevel", FrameworkItemKind::NUMBER, "vendor.mlk.nt.dumplevel"},
        {"strEnabled", FrameworkItemKind::FLAG, "persist.vendor.mlk.enstr"},
        {"getForceStrEnabled", FrameworkItemKind::INVERTED, "persist.vendor.mlk.forcestr",
         "setForceStrEnabled"},
        {"getWowEnabled", FrameworkItemKind::FLAG, "persist.vendor.mlk.enable_wow",
         "setWowEnabled"},
        {"getMediaDebugCmd", FrameworkItemKind::TEXT, nullptr},
        {"getResumePowerKey", FrameworkItemKind::TEXT, nullptr},
        {"getMediaVdecInfo", FrameworkItemKind::TEXT, nullptr},
        {"getBtA2DPAoutID", FrameworkItemKind::NUMBER, "vendor.mlk.nt.bt.a2dp.AoutID"},
        {"argb4444Enabled", FrameworkItemKind::FLAG, "vendor.mlk.nt.vsc.enargb4444"},
        {"hbbtvEnabled", FrameworkItemKind::FLAG, "vendor.mlk.nt.tvsys.enhbbtv"},
        {"moduleTestEnabled", FrameworkItemKind::FLAG, "vendor.mlk.nt.tvsys.enmt"},
};

/** Number of a method's row. */
constexpr size_t frameworkItem(std::string_view method) {
    return rowOf(kFrameworkItems, method);
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
