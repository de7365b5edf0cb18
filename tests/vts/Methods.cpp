#include "tests/vts/Methods.h"

#include <cstdio>
#include <mutex>
#include <set>
#include <vector>

#include "tests/vts/Options.h"

namespace vendor::morlak::mlkconfigs::V1_0::vts {

namespace {

struct MethodGroup {
    const char* interface;
    const char* tests; /**< the suite that holds these methods against the set */
    bool writes;
    std::vector<const char*> methods;
};

const std::vector<MethodGroup>& groups() {
    static const auto& kGroups = *new std::vector<MethodGroup>{
            {"IMlkTvConfigs",
             "TvAnswers",
             false,
             {"getAtvSystem",
              "getDtvSystem",
              "atvEnabled",
              "atvAntennaEnabled",
              "atvCableEnabled",
              "dtvEnabled",
              "dtvAntennaEnabled",
              "dtvCableEnabled",
              "dtvSatelliteEnabled",
              "pvrEnabled",
              "livepauseEnabled",
              "hdmiEnabled",
              "vgaEnabled",
              "avEnabled",
              "yppEnabled",
              "ciEnabled",
              "pipEnabled",
              "mheg5Enabled",
              "gingaEnabled",
              "hbbtvEnabled",
              "teltexEnabled",
              "closeCaptionEnabled",
              "atscCloseCaptionEnabled",
              "ntscCloseCaptionEnabled",
              "isdbCloseCaptionEnabled",
              "getWOWEnabled",
              "getFlag"}},
            {"IMlkTvConfigs",
             "TvWrites",
             true,
             {"setAtvSystem",
              "setDtvSystem",
              "setAtvEnabled",
              "setAtvAntennaEnabled",
              "setAtvCableEnabled",
              "setDtvEnabled",
              "setDtvAntennaEnabled",
              "setDtvCableEnabled",
              "setDtvSatelliteEnabled",
              "setPvrEnabled",
              "setLivepauseEnabled",
              "setHdmiEnabled",
              "setVgaEnabled",
              "setAvEnabled",
              "setYppEnabled",
              "setCiEnabled",
              "setPipEnabled",
              "setMheg5Enabled",
              "setGingaEnabled",
              "setHbbtvEnabled",
              "setTeltexEnabled",
              "setCloseCaptionEnabled",
              "setAtscCloseCaptionEnabled",
              "setNtscCloseCaptionEnabled",
              "setIsdbCloseCaptionEnabled",
              "setWOWEnabled",
              "setFlag",
              "reloadTvConfig"}},
            {"IMlkFrameworkConfigs",
             "FrameworkAnswers",
             false,
             {"inputMp4PtsDebugEnabled",
              "inputMp4AvsyncDebuEnabledg",
              "inputMp4FwptsDebugEnabled",
              "inputMp4DumpesEnabled",
              "inputMp4PerformanceDebugEnabled",
              "mediaDebugEnabled",
              "getMediaDebugCmd",
              "isMediaFreeRun",
              "isMediaAudioMaster",
              "isMediaNoVideoDemux",
              "isMediaNoAudioDemux",
              "inputMKVDebugEnabled",
              "mlkPlayerAdaptiveStreamEnabled",
              "getTvserviceDumpLevel",
              "strEnabled",
              "getResumePowerKey",
              "getBtA2DPAoutID",
              "argb4444Enabled",
              "getMediaVdecInfo",
              "hbbtvEnabled",
              "moduleTestEnabled",
              "getForceStrEnabled",
              "getWowEnabled"}},
            {"IMlkFrameworkConfigs",
             "FrameworkWrites",
             true,
             {"setForceStrEnabled", "setWowEnabled"}},
            {"IMlkProjectConfigs",
             "ProjectWrites",
             true,
             {"setProjectId", "setProjectIdWithPid", "setCountryId"}},
            {"IMlkProjectConfigs",
             "ProjectItems",
             false,
             {"getProjectId",
              "getProjectMaxIdx",
              "getProjectIniList",
              "getCustomerId",
              "getConfig",
              "getClientType",
              "getProjectName",
              "getPanelName",
              "getOverscanPath",
              "getSSCPath",
              "getPQPath",
              "getEQPath",
              "getAMPSelection",
              "getAMPAddr",
              "getVolumeCurve",
              "getAQPath",
              "getHDMIEdidPath",
              "getHDMIHdcpPath",
              "getPowerOnMode",
              "getPowerLogoPath",
              "getBootAnimationPath",
              "getInputSource",
              "getTunerType",
              "getDPVREnabled",
              "getHBBTVEnabled",
              "getIRConfig",
              "getRegionName",
              "getTunerConfig",
              "getTvChannelDatabasePath",
              "getIRFilter",
              "getTvconfigsPath",
              "getTvdataPath",
              "getImpdataPath",
              "getConfigsByCategory"}},
            {"IMlkProjectConfigs",
             "ProjectLists",
             false,
             {"getCountryList", "getLanguageList", "isSupportTvSysReload", "getCLTVCountryList"}},
            {"IMlkProjectConfigs", "ProjectFrequencies", false, {"getFreqTableList"}},
            {"IMlkProjectConfigs", "ProjectAudio", false, {"getAudioDelay"}},
            {"IMlkProjectConfigs",
             "ProjectFiles",
             false,
             {"getTvFile", "getVendorPartitionFile", "isFileExist"}},
            {"IMlkProjectConfigs", "AvrWrites", true, {"setAvrVendorId", "setAvrOSDName"}},
            {"IMlkProjectConfigs",
             "ProjectCustomerFiles",
             false,
             {"getKaraokeConfig", "getGlobalKeyConfig", "getCustomerDdcciConfigInt",
              "getCustomerDdcciConfigString"}},
    };
    return kGroups;
}

std::mutex gMutex;
std::set<std::string> gCalled;

}  // namespace

void noteCall(const char* descriptor, const char* method) {
    const std::string whole = descriptor;
    const std::lock_guard<std::mutex> lock(gMutex);
    gCalled.insert(whole.substr(whole.find("::") + 2) + "::" + method);
}

void listMethods() {
    for (const MethodGroup& group : groups()) {
        for (const char* method : group.methods) {
            printf("%s::%s %s %s\n", group.interface, method, group.writes ? "writes" : "reads",
                   group.tests);
        }
    }
}

void EveryMethod::TearDown() {
    const auto& run = *::testing::UnitTest::GetInstance();
    if (run.failed_test_count() != 0 || run.test_to_run_count() != run.total_test_count()) {
        return;
    }
    const std::lock_guard<std::mutex> lock(gMutex);
    for (const MethodGroup& group : groups()) {
        for (const char* method : group.methods) {
            if (!group.writes || options().writes) {
                EXPECT_EQ(gCalled.count(std::string(group.interface) + "::" + method), 1U)
                        << group.interface << "::" << method << " was not called";
            }
        }
    }
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::vts
