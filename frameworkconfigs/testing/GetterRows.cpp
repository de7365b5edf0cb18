#include "frameworkconfigs/testing/GetterRows.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

using Service = IMlkFrameworkConfigs;

template <typename Answer>
using Getter = ::android::hardware::Return<void> (Service::*)(std::function<void(const Answer&)>);

GetterRow flag(const char* name, Getter<OptionalBool> getter, const char* property) {
    return {name,     [getter](Service& service) { return ask<OptionalBool>(service, getter); },
            property, "false",
            "true",   "true"};
}

GetterRow number(const char* name, Getter<OptionalInt32> getter, const char* property) {
    return {name,     [getter](Service& service) { return ask<OptionalInt32>(service, getter); },
            property, "0",
            "-0x11",  "-17"};
}

GetterRow inverted(const char* name, Getter<OptionalBool> getter, const char* property) {
    return {name,     [getter](Service& service) { return ask<OptionalBool>(service, getter); },
            property, "true",
            "1",      "false"};
}

GetterRow text(const char* name, Getter<OptionalString> getter) {
    return {name,    [getter](Service& service) { return ask<OptionalString>(service, getter); },
            nullptr, "\"\"",
            nullptr, "\"\""};
}

}  // namespace

#define MLK_GETTER(name) #name, &Service::name

const std::vector<GetterRow>& getterRows() {
    static const std::vector<GetterRow> kRows = {
            flag(MLK_GETTER(inputMp4PtsDebugEnabled), "vendor.mlk.m.mp4.dbg.pts"),
            flag(MLK_GETTER(inputMp4AvsyncDebuEnabledg), "vendor.mlk.m.mp4.dbg.avsync"),
            flag(MLK_GETTER(inputMp4FwptsDebugEnabled), "vendor.mlk.m.mp4.dbg.fwpts"),
            flag(MLK_GETTER(inputMp4DumpesEnabled), "vendor.mlk.m.mp4.dbg.dumpes"),
            flag(MLK_GETTER(inputMp4PerformanceDebugEnabled), "vendor.mlk.m.mp4.dbg.pfm"),
            flag(MLK_GETTER(inputMKVDebugEnabled), "vendor.mlk.m.mkv.dbg"),
            flag(MLK_GETTER(mediaDebugEnabled), "vendor.mlk.m.dbgutl.endbg"),
            flag(MLK_GETTER(isMediaFreeRun), "vendor.mlk.m.dbgutl.freerun"),
            flag(MLK_GETTER(isMediaAudioMaster), "vendor.mlk.m.dbgutl.amaster"),
            flag(MLK_GETTER(isMediaNoVideoDemux), "vendor.mlk.m.dbgutl.novdmx"),
            flag(MLK_GETTER(isMediaNoAudioDemux), "vendor.mlk.m.dbgutl.noadmx"),
            flag(MLK_GETTER(mlkPlayerAdaptiveStreamEnabled), "vendor.mlk.m.mlkp.dbg.adpstrm"),
            number(MLK_GETTER(getTvserviceDumpLevel), "vendor.mlk.nt.dumplevel"),
            flag(MLK_GETTER(strEnabled), "persist.vendor.mlk.enstr"),
            inverted(MLK_GETTER(getForceStrEnabled), "persist.vendor.mlk.forcestr"),
            flag(MLK_GETTER(getWowEnabled), "persist.vendor.mlk.enable_wow"),
            number(MLK_GETTER(getBtA2DPAoutID), "vendor.mlk.nt.bt.a2dp.AoutID"),
            flag(MLK_GETTER(argb4444Enabled), "vendor.mlk.nt.vsc.enargb4444"),
            flag(MLK_GETTER(hbbtvEnabled), "vendor.mlk.nt.tvsys.enhbbtv"),
            flag(MLK_GETTER(moduleTestEnabled), "vendor.mlk.nt.tvsys.enmt"),
            text(MLK_GETTER(getMediaDebugCmd)),
            text(MLK_GETTER(getResumePowerKey)),
            text(MLK_GETTER(getMediaVdecInfo))};
    return kRows;
}

#undef MLK_GETTER

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
