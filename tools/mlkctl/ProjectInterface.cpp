#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include "tools/mlkctl/CountryNames.h"
#include "tools/mlkctl/Interface.h"

namespace mlk::ctl {

using ::vendor::morlak::mlkconfigs::V1_0::IMlkProjectConfigs;

const Interface& projectInterface() {
    static const Interface interface = makeInterface<IMlkProjectConfigs>(
            "IMlkProjectConfigs",
            {
                    {"setProjectId", method(&IMlkProjectConfigs::setProjectId, "projectId")},
                    {"setProjectIdWithPid", method(&IMlkProjectConfigs::setProjectIdWithPid,
                                                   "projectId", "processName", "pid")},
                    {"getProjectId", method(&IMlkProjectConfigs::getProjectId)},
                    {"getProjectMaxIdx", method(&IMlkProjectConfigs::getProjectMaxIdx)},
                    {"getProjectIniList", method(&IMlkProjectConfigs::getProjectIniList)},
                    {"getCustomerId", method(&IMlkProjectConfigs::getCustomerId)},
                    {"getConfig", method(&IMlkProjectConfigs::getConfig, "key")},
                    {"getClientType", method(&IMlkProjectConfigs::getClientType)},
                    {"getProjectName", method(&IMlkProjectConfigs::getProjectName)},
                    {"getPanelName", method(&IMlkProjectConfigs::getPanelName)},
                    {"getOverscanPath", method(&IMlkProjectConfigs::getOverscanPath)},
                    {"getSSCPath", method(&IMlkProjectConfigs::getSSCPath)},
                    {"getPQPath", method(&IMlkProjectConfigs::getPQPath)},
                    {"getEQPath", method(&IMlkProjectConfigs::getEQPath, "index")},
                    {"getAMPSelection", method(&IMlkProjectConfigs::getAMPSelection, "path")},
                    {"getAMPAddr", method(&IMlkProjectConfigs::getAMPAddr, "index")},
                    {"getVolumeCurve", method(&IMlkProjectConfigs::getVolumeCurve)},
                    {"getAQPath", method(&IMlkProjectConfigs::getAQPath)},
                    {"getHDMIEdidPath",
                     method(&IMlkProjectConfigs::getHDMIEdidPath, "port", "version")},
                    {"getHDMIHdcpPath", method(&IMlkProjectConfigs::getHDMIHdcpPath, "version")},
                    {"getPowerOnMode", method(&IMlkProjectConfigs::getPowerOnMode)},
                    {"getPowerLogoPath", method(&IMlkProjectConfigs::getPowerLogoPath)},
                    {"getBootAnimationPath", method(&IMlkProjectConfigs::getBootAnimationPath)},
                    {"getInputSource", method(&IMlkProjectConfigs::getInputSource)},
                    {"getTunerType", method(&IMlkProjectConfigs::getTunerType)},
                    {"getDPVREnabled", method(&IMlkProjectConfigs::getDPVREnabled)},
                    {"getHBBTVEnabled", method(&IMlkProjectConfigs::getHBBTVEnabled)},
                    {"getIRConfig", method(&IMlkProjectConfigs::getIRConfig)},
                    {"getRegionName", method(&IMlkProjectConfigs::getRegionName)},
                    {"getCountryList", method(&IMlkProjectConfigs::getCountryList)},
                    {"getLanguageList", method(&IMlkProjectConfigs::getLanguageList)},
                    {"getTunerConfig", method(&IMlkProjectConfigs::getTunerConfig, "tuner")},
                    {"getTvChannelDatabasePath",
                     method(&IMlkProjectConfigs::getTvChannelDatabasePath)},
                    {"getIRFilter", method(&IMlkProjectConfigs::getIRFilter)},
                    {"getTvconfigsPath", method(&IMlkProjectConfigs::getTvconfigsPath)},
                    {"getTvdataPath", method(&IMlkProjectConfigs::getTvdataPath)},
                    {"getImpdataPath", method(&IMlkProjectConfigs::getImpdataPath)},
                    {"getFreqTableList", method(&IMlkProjectConfigs::getFreqTableList,
                                                countryParameter(), "type", "cableType")},
                    {"getAudioDelay", method(&IMlkProjectConfigs::getAudioDelay, "key", "avrName")},
                    {"getTvFile", method(&IMlkProjectConfigs::getTvFile, "path")},
                    {"setAvrVendorId", method(&IMlkProjectConfigs::setAvrVendorId, "vendorId")},
                    {"setAvrOSDName", method(&IMlkProjectConfigs::setAvrOSDName, "osdName")},
                    {"getVendorPartitionFile",
                     method(&IMlkProjectConfigs::getVendorPartitionFile, "path")},
                    {"getConfigsByCategory",
                     method(&IMlkProjectConfigs::getConfigsByCategory, "category")},
                    {"isFileExist", method(&IMlkProjectConfigs::isFileExist, "path")},
                    {"getKaraokeConfig", method(&IMlkProjectConfigs::getKaraokeConfig, "key")},
                    {"isSupportTvSysReload", method(&IMlkProjectConfigs::isSupportTvSysReload)},
                    {"setCountryId", method(&IMlkProjectConfigs::setCountryId, countryParameter())},
                    {"getGlobalKeyConfig", method(&IMlkProjectConfigs::getGlobalKeyConfig, "key")},
                    {"getCustomerDdcciConfigInt",
                     method(&IMlkProjectConfigs::getCustomerDdcciConfigInt, "key")},
                    {"getCustomerDdcciConfigString",
                     method(&IMlkProjectConfigs::getCustomerDdcciConfigString, "key")},
                    {"getCLTVCountryList", method(&IMlkProjectConfigs::getCLTVCountryList)},
            });
    return interface;
}

}  // namespace mlk::ctl
