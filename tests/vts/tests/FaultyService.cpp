// The service with one fault, which MLK_FAULT names: "wrong IMlkTvConfigs::getAtvSystem" gives a
// wrong answer; "idle IMlkTvConfigs::setAtvSystem" gives the right answer and does nothing.

#include <hidl/HidlTransportSupport.h>

#include <cstdlib>
#include <string>

#include "frameworkconfigs/MlkFrameworkConfigs.h"
#include "projectconfigs/MlkProjectConfigs.h"
#include "projectconfigs/MlkProjectConfigsStub.h"
#include "service/Services.h"
#include "tvconfigs/MlkTvConfigs.h"
#include "tvconfigs/TvConfigItems.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {
namespace {

using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

std::string faultOf() {
    const char* const fault = getenv("MLK_FAULT");
    return fault != nullptr ? fault : "";
}

bool isFault(const char* kind, const char* interface, const char* method) {
    static const std::string kFault = faultOf();
    return kFault == std::string(kind) + " " + interface + "::" + method;
}

// Each changes the answer.
void distort(OptionalBool& answer) {
    answer.value = !answer.value;
}
void distort(OptionalInt32& answer) {
    ++answer.value;
}
void distort(OptionalString& answer) {
    answer.value = std::string(answer.value) + "?";
}
template <typename Element>
void distort(hidl_vec<Element>& answer) {
    answer.resize(answer.size() + 1);
}
void distort(hidl_memory& answer) {
    answer = {};
}

template <typename Answer>
std::function<void(const Answer&)> distorted(std::function<void(const Answer&)> callback) {
    return [callback = std::move(callback)](const Answer& answer) {
        Answer other = answer;
        distort(other);
        callback(other);
    };
}

// A method that answers, and one that also changes something; `passed` ends with `faulty`, the
// callback.
#define CALL(method, passed)                                                                    \
    const auto faulty = isFault("wrong", kInterface, #method) ? distorted(callback) : callback; \
    return Base::method passed;
#define ANSWER(method, parameters, passed)    \
    Return<void> method parameters override { \
        CALL(method, passed)                  \
    }
#define CHANGE(method, parameters, passed, idleAnswer) \
    Return<void> method parameters override {          \
        if (isFault("idle", kInterface, #method)) {    \
            callback idleAnswer;                       \
            return {};                                 \
        }                                              \
        CALL(method, passed)                           \
    }

class FaultyProject : public MlkProjectConfigs {
    using Base = MlkProjectConfigs;
    static constexpr const char* kInterface = "IMlkProjectConfigs";

  public:
    CHANGE(setProjectId, (int32_t a, setProjectId_cb callback), (a, faulty),
           (OptionalBool{true, true}))
    CHANGE(setProjectIdWithPid,
           (int32_t a, const hidl_string& b, int32_t c, setProjectIdWithPid_cb callback),
           (a, b, c, faulty), (OptionalBool{true, true}))
    ANSWER(getProjectId, (getProjectId_cb callback), (faulty))
    ANSWER(getProjectMaxIdx, (getProjectMaxIdx_cb callback), (faulty))
    ANSWER(getProjectIniList, (getProjectIniList_cb callback), (faulty))
    ANSWER(getCustomerId, (getCustomerId_cb callback), (faulty))
    ANSWER(getConfig, (const ProjectConfigKey& a, getConfig_cb callback), (a, faulty))
    ANSWER(getClientType, (getClientType_cb callback), (faulty))
    ANSWER(getProjectName, (getProjectName_cb callback), (faulty))
    ANSWER(getPanelName, (getPanelName_cb callback), (faulty))
    ANSWER(getOverscanPath, (getOverscanPath_cb callback), (faulty))
    ANSWER(getSSCPath, (getSSCPath_cb callback), (faulty))
    ANSWER(getPQPath, (getPQPath_cb callback), (faulty))
    ANSWER(getEQPath, (int32_t a, getEQPath_cb callback), (a, faulty))
    ANSWER(getAMPSelection, (CommonPath a, getAMPSelection_cb callback), (a, faulty))
    ANSWER(getAMPAddr, (int32_t a, getAMPAddr_cb callback), (a, faulty))
    ANSWER(getVolumeCurve, (getVolumeCurve_cb callback), (faulty))
    ANSWER(getAQPath, (getAQPath_cb callback), (faulty))
    ANSWER(getHDMIEdidPath, (int32_t a, EdidVer b, getHDMIEdidPath_cb callback), (a, b, faulty))
    ANSWER(getHDMIHdcpPath, (HdcpVer a, getHDMIHdcpPath_cb callback), (a, faulty))
    ANSWER(getPowerOnMode, (getPowerOnMode_cb callback), (faulty))
    ANSWER(getPowerLogoPath, (getPowerLogoPath_cb callback), (faulty))
    ANSWER(getBootAnimationPath, (getBootAnimationPath_cb callback), (faulty))
    ANSWER(getInputSource, (getInputSource_cb callback), (faulty))
    ANSWER(getTunerType, (getTunerType_cb callback), (faulty))
    ANSWER(getDPVREnabled, (getDPVREnabled_cb callback), (faulty))
    ANSWER(getHBBTVEnabled, (getHBBTVEnabled_cb callback), (faulty))
    ANSWER(getIRConfig, (getIRConfig_cb callback), (faulty))
    ANSWER(getRegionName, (getRegionName_cb callback), (faulty))
    ANSWER(getCountryList, (getCountryList_cb callback), (faulty))
    ANSWER(getLanguageList, (getLanguageList_cb callback), (faulty))
    ANSWER(getTunerConfig, (int32_t a, getTunerConfig_cb callback), (a, faulty))
    ANSWER(getTvChannelDatabasePath, (getTvChannelDatabasePath_cb callback), (faulty))
    ANSWER(getIRFilter, (getIRFilter_cb callback), (faulty))
    ANSWER(getTvconfigsPath, (getTvconfigsPath_cb callback), (faulty))
    ANSWER(getTvdataPath, (getTvdataPath_cb callback), (faulty))
    ANSWER(getImpdataPath, (getImpdataPath_cb callback), (faulty))
    ANSWER(getFreqTableList,
           (int32_t a, FreqTableType b, AtscCableType c, getFreqTableList_cb callback),
           (a, b, c, faulty))
    ANSWER(getAudioDelay,
           (const ProjectConfigKey& a, const hidl_string& b, getAudioDelay_cb callback),
           (a, b, faulty))
    ANSWER(getTvFile, (const hidl_string& a, getTvFile_cb callback), (a, faulty))
    CHANGE(setAvrVendorId, (const hidl_string& a, setAvrVendorId_cb callback), (a, faulty),
           (OptionalBool{true, true}))
    CHANGE(setAvrOSDName, (const hidl_string& a, setAvrOSDName_cb callback), (a, faulty),
           (OptionalBool{true, true}))
    ANSWER(getVendorPartitionFile, (const hidl_string& a, getVendorPartitionFile_cb callback),
           (a, faulty))
    ANSWER(getConfigsByCategory, (const hidl_string& a, getConfigsByCategory_cb callback),
           (a, faulty))
    ANSWER(isFileExist, (const hidl_string& a, isFileExist_cb callback), (a, faulty))
    ANSWER(getKaraokeConfig, (const ProjectConfigKey& a, getKaraokeConfig_cb callback), (a, faulty))
    ANSWER(isSupportTvSysReload, (isSupportTvSysReload_cb callback), (faulty))
    CHANGE(setCountryId, (int32_t a, setCountryId_cb callback), (a, faulty),
           (OptionalBool{true, true}))
    ANSWER(getGlobalKeyConfig, (const ProjectConfigKey& a, getGlobalKeyConfig_cb callback),
           (a, faulty))
    ANSWER(getCustomerDdcciConfigInt,
           (const ProjectConfigKey& a, getCustomerDdcciConfigInt_cb callback), (a, faulty))
    ANSWER(getCustomerDdcciConfigString,
           (const ProjectConfigKey& a, getCustomerDdcciConfigString_cb callback), (a, faulty))
    ANSWER(getCLTVCountryList, (getCLTVCountryList_cb callback), (faulty))
};

class FaultyTv : public MlkTvConfigs {
    using Base = MlkTvConfigs;
    static constexpr const char* kInterface = "IMlkTvConfigs";

  public:
    using MlkTvConfigs::MlkTvConfigs;
#define SYSTEM(getter, setter)                       \
    ANSWER(getter, (getter##_cb callback), (faulty)) \
    CHANGE(setter, (int32_t a, setter##_cb callback), (a, faulty), (OptionalInt32{true, a}))
    SYSTEM(getAtvSystem, setAtvSystem)
    SYSTEM(getDtvSystem, setDtvSystem)
#undef SYSTEM
#define FLAG(getter, setter)                         \
    ANSWER(getter, (getter##_cb callback), (faulty)) \
    CHANGE(setter, (bool a, setter##_cb callback), (a, faulty), (OptionalBool{true, a}))
    FLAG(atvEnabled, setAtvEnabled)
    FLAG(atvAntennaEnabled, setAtvAntennaEnabled)
    FLAG(atvCableEnabled, setAtvCableEnabled)
    FLAG(dtvEnabled, setDtvEnabled)
    FLAG(dtvAntennaEnabled, setDtvAntennaEnabled)
    FLAG(dtvCableEnabled, setDtvCableEnabled)
    FLAG(dtvSatelliteEnabled, setDtvSatelliteEnabled)
    FLAG(pvrEnabled, setPvrEnabled)
    FLAG(livepauseEnabled, setLivepauseEnabled)
    FLAG(hdmiEnabled, setHdmiEnabled)
    FLAG(vgaEnabled, setVgaEnabled)
    FLAG(avEnabled, setAvEnabled)
    FLAG(yppEnabled, setYppEnabled)
    FLAG(ciEnabled, setCiEnabled)
    FLAG(pipEnabled, setPipEnabled)
    FLAG(mheg5Enabled, setMheg5Enabled)
    FLAG(gingaEnabled, setGingaEnabled)
    FLAG(hbbtvEnabled, setHbbtvEnabled)
    FLAG(teltexEnabled, setTeltexEnabled)
    FLAG(closeCaptionEnabled, setCloseCaptionEnabled)
    FLAG(atscCloseCaptionEnabled, setAtscCloseCaptionEnabled)
    FLAG(ntscCloseCaptionEnabled, setNtscCloseCaptionEnabled)
    FLAG(isdbCloseCaptionEnabled, setIsdbCloseCaptionEnabled)
    FLAG(getWOWEnabled, setWOWEnabled)
#undef FLAG
    ANSWER(getFlag, (ConfigType a, getFlag_cb callback), (a, faulty))
    CHANGE(setFlag, (ConfigType a, bool b, setFlag_cb callback), (a, b, faulty),
           (OptionalBool{true, b}))
    CHANGE(reloadTvConfig, (const hidl_string& a, reloadTvConfig_cb callback), (a, faulty),
           (OptionalBool{true, true}))
};

class FaultyFramework : public MlkFrameworkConfigs {
    using Base = MlkFrameworkConfigs;
    static constexpr const char* kInterface = "IMlkFrameworkConfigs";

  public:
#define ITEM(getter) ANSWER(getter, (getter##_cb callback), (faulty))
    ITEM(inputMp4PtsDebugEnabled)
    ITEM(inputMp4AvsyncDebuEnabledg)
    ITEM(inputMp4FwptsDebugEnabled)
    ITEM(inputMp4DumpesEnabled)
    ITEM(inputMp4PerformanceDebugEnabled)
    ITEM(inputMKVDebugEnabled)
    ITEM(mediaDebugEnabled)
    ITEM(isMediaFreeRun)
    ITEM(isMediaAudioMaster)
    ITEM(isMediaNoVideoDemux)
    ITEM(isMediaNoAudioDemux)
    ITEM(mlkPlayerAdaptiveStreamEnabled)
    ITEM(getTvserviceDumpLevel)
    ITEM(strEnabled)
    ITEM(getForceStrEnabled)
    ITEM(getWowEnabled)
    ITEM(getMediaDebugCmd)
    ITEM(getResumePowerKey)
    ITEM(getMediaVdecInfo)
    ITEM(getBtA2DPAoutID)
    ITEM(argb4444Enabled)
    ITEM(hbbtvEnabled)
    ITEM(moduleTestEnabled)
#undef ITEM
    CHANGE(setForceStrEnabled, (bool a, setForceStrEnabled_cb callback), (a, faulty),
           (OptionalBool{true, a}))
    CHANGE(setWowEnabled, (bool a, setWowEnabled_cb callback), (a, faulty), (OptionalBool{true, a}))
};

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation

using namespace vendor::morlak::mlkconfigs::V1_0::implementation;

int main() {
    android::hardware::configureRpcThreadpool(10, true /* callerWillJoin */);
    // The product's stub does not call the setters of the AVR's texts; the generated one does.
    if (faultOf().find("::setAvr") == std::string::npos) {
        installMlkProjectConfigsStub();
    }
    const Services services({[] { return new FaultyProject; },
                             [](const char* tvConfigPath) { return new FaultyTv(tvConfigPath); },
                             [] { return new FaultyFramework; }});
    android::hardware::joinRpcThreadpool();
    return 0;
}
