#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>

#include "tools/mlkctl/Interface.h"

namespace mlk::ctl {

using ::vendor::morlak::mlkconfigs::V1_0::IMlkFrameworkConfigs;

const Interface& frameworkInterface() {
    static const Interface interface = makeInterface<IMlkFrameworkConfigs>(
            "IMlkFrameworkConfigs",
            {
                    {"inputMp4PtsDebugEnabled",
                     method(&IMlkFrameworkConfigs::inputMp4PtsDebugEnabled)},
                    {"inputMp4AvsyncDebuEnabledg",
                     method(&IMlkFrameworkConfigs::inputMp4AvsyncDebuEnabledg)},
                    {"inputMp4FwptsDebugEnabled",
                     method(&IMlkFrameworkConfigs::inputMp4FwptsDebugEnabled)},
                    {"inputMp4DumpesEnabled", method(&IMlkFrameworkConfigs::inputMp4DumpesEnabled)},
                    {"inputMp4PerformanceDebugEnabled",
                     method(&IMlkFrameworkConfigs::inputMp4PerformanceDebugEnabled)},
                    {"mediaDebugEnabled", method(&IMlkFrameworkConfigs::mediaDebugEnabled)},
                    {"getMediaDebugCmd", method(&IMlkFrameworkConfigs::getMediaDebugCmd)},
                    {"isMediaFreeRun", method(&IMlkFrameworkConfigs::isMediaFreeRun)},
                    {"isMediaAudioMaster", method(&IMlkFrameworkConfigs::isMediaAudioMaster)},
                    {"isMediaNoVideoDemux", method(&IMlkFrameworkConfigs::isMediaNoVideoDemux)},
                    {"isMediaNoAudioDemux", method(&IMlkFrameworkConfigs::isMediaNoAudioDemux)},
                    {"inputMKVDebugEnabled", method(&IMlkFrameworkConfigs::inputMKVDebugEnabled)},
                    {"mlkPlayerAdaptiveStreamEnabled",
                     method(&IMlkFrameworkConfigs::mlkPlayerAdaptiveStreamEnabled)},
                    {"getTvserviceDumpLevel", method(&IMlkFrameworkConfigs::getTvserviceDumpLevel)},
                    {"strEnabled", method(&IMlkFrameworkConfigs::strEnabled)},
                    {"getResumePowerKey", method(&IMlkFrameworkConfigs::getResumePowerKey)},
                    {"getBtA2DPAoutID", method(&IMlkFrameworkConfigs::getBtA2DPAoutID)},
                    {"argb4444Enabled", method(&IMlkFrameworkConfigs::argb4444Enabled)},
                    {"getMediaVdecInfo", method(&IMlkFrameworkConfigs::getMediaVdecInfo)},
                    {"hbbtvEnabled", method(&IMlkFrameworkConfigs::hbbtvEnabled)},
                    {"moduleTestEnabled", method(&IMlkFrameworkConfigs::moduleTestEnabled)},
                    {"getForceStrEnabled", method(&IMlkFrameworkConfigs::getForceStrEnabled)},
                    {"setForceStrEnabled",
                     method(&IMlkFrameworkConfigs::setForceStrEnabled, "enabled")},
                    {"getWowEnabled", method(&IMlkFrameworkConfigs::getWowEnabled)},
                    {"setWowEnabled", method(&IMlkFrameworkConfigs::setWowEnabled, "enabled")},
            });
    return interface;
}

}  // namespace mlk::ctl
