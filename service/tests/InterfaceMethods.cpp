// Every method of the three interfaces: its transaction code, arguments and answer. Clients that
// were built earlier send these codes, so that none of them may ever change.

#include "service/tests/InterfaceMethods.h"

namespace vendor::morlak::mlkconfigs::V1_0 {

namespace {

using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;

/// Method<I, Answer(Arguments...)>: pointer to a method of I that answers so.
template <typename Interface, typename Signature>
struct MethodOf;

template <typename Interface, typename Answer, typename... Arguments>
struct MethodOf<Interface, Answer(Arguments...)> {
    using Type = ::android::hardware::Return<void> (Interface::*)(
            Arguments..., std::function<void(const Answer&)>);
};

}  // namespace

#define METHOD(method, signature) static_cast<typename MethodOf<I, signature>::Type>(&I::method)
#define ROW(code, method, signature)                        \
    {                                                       \
        code, #method, callerOf(METHOD(method, signature)), \
                anyhowCallerOf(METHOD(method, signature))   \
    }

template <>
const std::vector<MethodRow<IMlkTvConfigs>>& methodRows() {
    using I = IMlkTvConfigs;
    static const std::vector<MethodRow<I>> kRows = {
            ROW(1, getAtvSystem, OptionalInt32()),
            ROW(2, getDtvSystem, OptionalInt32()),
            ROW(3, atvEnabled, OptionalBool()),
            ROW(4, atvAntennaEnabled, OptionalBool()),
            ROW(5, atvCableEnabled, OptionalBool()),
            ROW(6, dtvEnabled, OptionalBool()),
            ROW(7, dtvAntennaEnabled, OptionalBool()),
            ROW(8, dtvCableEnabled, OptionalBool()),
            ROW(9, dtvSatelliteEnabled, OptionalBool()),
            ROW(10, pvrEnabled, OptionalBool()),
            ROW(11, livepauseEnabled, OptionalBool()),
            ROW(12, hdmiEnabled, OptionalBool()),
            ROW(13, vgaEnabled, OptionalBool()),
            ROW(14, avEnabled, OptionalBool()),
            ROW(15, yppEnabled, OptionalBool()),
            ROW(16, ciEnabled, OptionalBool()),
            ROW(17, pipEnabled, OptionalBool()),
            ROW(18, mheg5Enabled, OptionalBool()),
            ROW(19, gingaEnabled, OptionalBool()),
            ROW(20, hbbtvEnabled, OptionalBool()),
            ROW(21, teltexEnabled, OptionalBool()),
            ROW(22, closeCaptionEnabled, OptionalBool()),
            ROW(23, atscCloseCaptionEnabled, OptionalBool()),
            ROW(24, ntscCloseCaptionEnabled, OptionalBool()),
            ROW(25, isdbCloseCaptionEnabled, OptionalBool()),
            ROW(26, getWOWEnabled, OptionalBool()),
            ROW(27, getFlag, OptionalBool(ConfigType)),
            ROW(28, setAtvSystem, OptionalInt32(int32_t)),
            ROW(29, setDtvSystem, OptionalInt32(int32_t)),
            ROW(30, setAtvEnabled, OptionalBool(bool)),
            ROW(31, setAtvAntennaEnabled, OptionalBool(bool)),
            ROW(32, setAtvCableEnabled, OptionalBool(bool)),
            ROW(33, setDtvEnabled, OptionalBool(bool)),
            ROW(34, setDtvAntennaEnabled, OptionalBool(bool)),
            ROW(35, setDtvCableEnabled, OptionalBool(bool)),
            ROW(36, setDtvSatelliteEnabled, OptionalBool(bool)),
            ROW(37, setPvrEnabled, OptionalBool(bool)),
            ROW(38, setLivepauseEnabled, OptionalBool(bool)),
            ROW(39, setHdmiEnabled, OptionalBool(bool)),
            ROW(40, setVgaEnabled, OptionalBool(bool)),
            ROW(41, setAvEnabled, OptionalBool(bool)),
            ROW(42, setYppEnabled, OptionalBool(bool)),
            ROW(43, setCiEnabled, OptionalBool(bool)),
            ROW(44, setPipEnabled, OptionalBool(bool)),
            ROW(45, setMheg5Enabled, OptionalBool(bool)),
            ROW(46, setGingaEnabled, OptionalBool(bool)),
            ROW(47, setHbbtvEnabled, OptionalBool(bool)),
            ROW(48, setTeltexEnabled, OptionalBool(bool)),
            ROW(49, setCloseCaptionEnabled, OptionalBool(bool)),
            ROW(50, setAtscCloseCaptionEnabled, OptionalBool(bool)),
            ROW(51, setNtscCloseCaptionEnabled, OptionalBool(bool)),
            ROW(52, setIsdbCloseCaptionEnabled, OptionalBool(bool)),
            ROW(53, setWOWEnabled, OptionalBool(bool)),
            ROW(54, setFlag, OptionalBool(ConfigType, bool)),
            ROW(55, reloadTvConfig, OptionalBool(const hidl_string&)),
    };
    return kRows;
}

template <>
const std::vector<MethodRow<IMlkFrameworkConfigs>>& methodRows() {
    using I = IMlkFrameworkConfigs;
    static const std::vector<MethodRow<I>> kRows = {
            ROW(1, inputMp4PtsDebugEnabled, OptionalBool()),
            ROW(2, inputMp4AvsyncDebuEnabledg, OptionalBool()),
            ROW(3, inputMp4FwptsDebugEnabled, OptionalBool()),
            ROW(4, inputMp4DumpesEnabled, OptionalBool()),
            ROW(5, inputMp4PerformanceDebugEnabled, OptionalBool()),
            ROW(6, mediaDebugEnabled, OptionalBool()),
            ROW(7, getMediaDebugCmd, OptionalString()),
            ROW(8, isMediaFreeRun, OptionalBool()),
            ROW(9, isMediaAudioMaster, OptionalBool()),
            ROW(10, isMediaNoVideoDemux, OptionalBool()),
            ROW(11, isMediaNoAudioDemux, OptionalBool()),
            ROW(12, inputMKVDebugEnabled, OptionalBool()),
            ROW(13, mlkPlayerAdaptiveStreamEnabled, OptionalBool()),
            ROW(14, getTvserviceDumpLevel, OptionalInt32()),
            ROW(15, strEnabled, OptionalBool()),
            ROW(16, getResumePowerKey, OptionalString()),
            ROW(17, getBtA2DPAoutID, OptionalInt32()),
            ROW(18, argb4444Enabled, OptionalBool()),
            ROW(19, getMediaVdecInfo, OptionalString()),
            ROW(20, hbbtvEnabled, OptionalBool()),
            ROW(21, moduleTestEnabled, OptionalBool()),
            ROW(22, getForceStrEnabled, OptionalBool()),
            ROW(23, setForceStrEnabled, OptionalBool(bool)),
            ROW(24, getWowEnabled, OptionalBool()),
            ROW(25, setWowEnabled, OptionalBool(bool)),
    };
    return kRows;
}

template <>
const std::vector<MethodRow<IMlkProjectConfigs>>& methodRows() {
    using I = IMlkProjectConfigs;
    static const std::vector<MethodRow<I>> kRows = {
            ROW(1, setProjectId, OptionalBool(int32_t)),
            ROW(2, setProjectIdWithPid, OptionalBool(int32_t, const hidl_string&, int32_t)),
            ROW(3, getProjectId, OptionalInt32()),
            ROW(4, getProjectMaxIdx, OptionalInt32()),
            ROW(5, getProjectIniList, hidl_vec<hidl_string>()),
            ROW(6, getCustomerId, OptionalString()),
            ROW(7, getConfig, OptionalString(const ProjectConfigKey&)),
            ROW(8, getClientType, OptionalString()),
            ROW(9, getProjectName, OptionalString()),
            ROW(10, getPanelName, OptionalString()),
            ROW(11, getOverscanPath, OptionalString()),
            ROW(12, getSSCPath, OptionalString()),
            ROW(13, getPQPath, OptionalString()),
            ROW(14, getEQPath, OptionalString(int32_t)),
            ROW(15, getAMPSelection, OptionalString(CommonPath)),
            ROW(16, getAMPAddr, OptionalString(int32_t)),
            ROW(17, getVolumeCurve, OptionalString()),
            ROW(18, getAQPath, OptionalString()),
            ROW(19, getHDMIEdidPath, OptionalString(int32_t, EdidVer)),
            ROW(20, getHDMIHdcpPath, OptionalString(HdcpVer)),
            ROW(21, getPowerOnMode, OptionalInt32()),
            ROW(22, getPowerLogoPath, OptionalString()),
            ROW(23, getBootAnimationPath, OptionalString()),
            ROW(24, getInputSource, OptionalString()),
            ROW(25, getTunerType, OptionalString()),
            ROW(26, getDPVREnabled, OptionalBool()),
            ROW(27, getHBBTVEnabled, OptionalBool()),
            ROW(28, getIRConfig, OptionalString()),
            ROW(29, getRegionName, OptionalString()),
            ROW(30, getCountryList, hidl_vec<uint32_t>()),
            ROW(31, getLanguageList, hidl_vec<hidl_string>()),
            ROW(32, getTunerConfig, OptionalString(int32_t)),
            ROW(33, getTvChannelDatabasePath, OptionalString()),
            ROW(34, getIRFilter, OptionalString()),
            ROW(35, getTvconfigsPath, OptionalString()),
            ROW(36, getTvdataPath, OptionalString()),
            ROW(37, getImpdataPath, OptionalString()),
            ROW(38, getFreqTableList,
                hidl_vec<HidlFreqListItem>(int32_t, FreqTableType, AtscCableType)),
            ROW(39, getAudioDelay, OptionalString(const ProjectConfigKey&, const hidl_string&)),
            ROW(40, getTvFile, hidl_vec<uint8_t>(const hidl_string&)),
            ROW(41, setAvrVendorId, OptionalBool(const hidl_string&)),
            ROW(42, setAvrOSDName, OptionalBool(const hidl_string&)),
            ROW(43, getVendorPartitionFile, hidl_memory(const hidl_string&)),
            ROW(44, getConfigsByCategory, hidl_vec<ConfigKeyValue>(const hidl_string&)),
            ROW(45, isFileExist, OptionalInt32(const hidl_string&)),
            ROW(46, getKaraokeConfig, OptionalInt32(const ProjectConfigKey&)),
            ROW(47, isSupportTvSysReload, OptionalBool()),
            ROW(48, setCountryId, OptionalBool(int32_t)),
            ROW(49, getGlobalKeyConfig, OptionalString(const ProjectConfigKey&)),
            ROW(50, getCustomerDdcciConfigInt, OptionalInt32(const ProjectConfigKey&)),
            ROW(51, getCustomerDdcciConfigString, OptionalString(const ProjectConfigKey&)),
            ROW(52, getCLTVCountryList, hidl_vec<uint32_t>()),
    };
    return kRows;
}

#undef ROW
#undef METHOD

}  // namespace vendor::morlak::mlkconfigs::V1_0
