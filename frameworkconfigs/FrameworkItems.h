#pragma once

#include <cstddef>

/// Everything that the framework service answers, one row an item, in the order in which a start
/// reads them: the getter's name in the interface, what kind of answer it gives, and the system
/// property.
///
/// FLAG      a bool; the property is read as one, false by default
/// NUMBER    an int32; the property is read as one, 0 by default
/// INVERTED  a bool that is true exactly when the property, read as an int32 with default 0, is 0
/// TEXT      a string that is always empty: its property is read by nobody on purpose
#define MLK_FRAMEWORK_ITEMS(ITEM)                                               \
    ITEM(inputMp4PtsDebugEnabled, FLAG, "vendor.mlk.m.mp4.dbg.pts")             \
    ITEM(inputMp4AvsyncDebuEnabledg, FLAG, "vendor.mlk.m.mp4.dbg.avsync")       \
    ITEM(inputMp4FwptsDebugEnabled, FLAG, "vendor.mlk.m.mp4.dbg.fwpts")         \
    ITEM(inputMp4DumpesEnabled, FLAG, "vendor.mlk.m.mp4.dbg.dumpes")            \
    ITEM(inputMp4PerformanceDebugEnabled, FLAG, "vendor.mlk.m.mp4.dbg.pfm")     \
    ITEM(inputMKVDebugEnabled, FLAG, "vendor.mlk.m.mkv.dbg")                    \
    ITEM(mediaDebugEnabled, FLAG, "vendor.mlk.m.dbgutl.endbg")                  \
    ITEM(isMediaFreeRun, FLAG, "vendor.mlk.m.dbgutl.freerun")                   \
    ITEM(isMediaAudioMaster, FLAG, "vendor.mlk.m.dbgutl.amaster")               \
    ITEM(isMediaNoVideoDemux, FLAG, "vendor.mlk.m.dbgutl.novdmx")               \
    ITEM(isMediaNoAudioDemux, FLAG, "vendor.mlk.m.dbgutl.noadmx")               \
    ITEM(mlkPlayerAdaptiveStreamEnabled, FLAG, "vendor.mlk.m.mlkp.dbg.adpstrm") \
    ITEM(getTvserviceDumpLevel, NUMBER, "vendor.mlk.nt.dumplevel")              \
    ITEM(strEnabled, FLAG, "persist.vendor.mlk.enstr")                          \
    ITEM(getForceStrEnabled, INVERTED, "persist.vendor.mlk.forcestr")           \
    ITEM(getWowEnabled, FLAG, "persist.vendor.mlk.enable_wow")                  \
    ITEM(getMediaDebugCmd, TEXT, nullptr)                                       \
    ITEM(getResumePowerKey, TEXT, nullptr)                                      \
    ITEM(getMediaVdecInfo, TEXT, nullptr)                                       \
    ITEM(getBtA2DPAoutID, NUMBER, "vendor.mlk.nt.bt.a2dp.AoutID")               \
    ITEM(argb4444Enabled, FLAG, "vendor.mlk.nt.vsc.enargb4444")                 \
    ITEM(hbbtvEnabled, FLAG, "vendor.mlk.nt.tvsys.enhbbtv")                     \
    ITEM(moduleTestEnabled, FLAG, "vendor.mlk.nt.tvsys.enmt")

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// The items by their getters' names, numbered in the order of the rows.
struct FrameworkItem {
    enum Number : size_t {
#define MLK_NAME_ITEM(getter, kind, property) getter,
        MLK_FRAMEWORK_ITEMS(MLK_NAME_ITEM)
#undef MLK_NAME_ITEM
                COUNT
    };
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
