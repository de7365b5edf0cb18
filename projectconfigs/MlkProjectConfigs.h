#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <cstddef>
#include <cstdint>
#include <functional>

#include "common/Partitions.h"
#include "projectconfigs/BoardID.h"
#include "projectconfigs/ProjectID.h"
#include "projectconfigs/ProjectItems.h"
#include "projectconfigs/ProjectSet.h"
#include "projectconfigs/SetChanges.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Answers what this set is: project, board, panel, audio hardware, region and customer files.
 *
 * IMlkProjectConfigs.hal documents what each method takes and answers; the comments below add what
 * a maintainer needs. Each method turns its arguments into a question to ProjectSet or SetChanges
 * and the result into an answer. Every answer has success true. The methods that the interface
 * marks with @noanswer leave their callback alone then; MlkProjectConfigsStub refuses such a call.
 *
 * The process entry creates one object, which reads everything in its constructor, and registers it
 * as "default". Any number of threads may call it. It holds no lock while it gives an answer. Log
 * tag: "MlkProjectConfigs".
 */
class MlkProjectConfigs : public IMlkProjectConfigs {
  public:
    template <typename T>
    using Return = ::android::hardware::Return<T>;
    template <typename T>
    using hidl_vec = ::android::hardware::hidl_vec<T>;
    using hidl_string = ::android::hardware::hidl_string;
    using hidl_handle = ::android::hardware::hidl_handle;

    /** Reads the identity files, the project's files and the auxiliary files. */
    MlkProjectConfigs();

    // The model: SetChanges and ProjectID.
    Return<void> setProjectId(int32_t projectId, setProjectId_cb _hidl_cb) override;
    Return<void> setProjectIdWithPid(int32_t projectId, const hidl_string& processName, int32_t pid,
                                     setProjectIdWithPid_cb _hidl_cb) override;
    Return<void> getProjectId(getProjectId_cb _hidl_cb) override;
    Return<void> getProjectMaxIdx(getProjectMaxIdx_cb _hidl_cb) override;
    Return<void> getProjectIniList(getProjectIniList_cb _hidl_cb) override;

    // Items of the project by their name: ProjectParser.
    Return<void> getCustomerId(getCustomerId_cb _hidl_cb) override;
    Return<void> getConfig(const ProjectConfigKey& key, getConfig_cb _hidl_cb) override;
    Return<void> getConfigsByCategory(const hidl_string& category,
                                      getConfigsByCategory_cb _hidl_cb) override;

    // Items with a getter of their own: ProjectItems.h has their names. A selector chooses the
    // section or the key; one that is out of range gets no answer.
#define MLK_GETTER(method)                               \
    Return<void> method(method##_cb _hidl_cb) override { \
        constexpr size_t kRow = projectItem(#method);    \
        return answer(kProjectItems[kRow], _hidl_cb);    \
    }
#define MLK_GETTER_BY_KEY(method, Selector)                             \
    Return<void> method(Selector key, method##_cb _hidl_cb) override {  \
        constexpr size_t kRow = projectItem(#method);                   \
        return answer(kProjectItems[kRow], _hidl_cb, 0, uint32_t(key)); \
    }
    MLK_GETTER(getClientType)
    MLK_GETTER(getProjectName)
    MLK_GETTER(getPanelName)
    MLK_GETTER(getOverscanPath)
    MLK_GETTER(getSSCPath)
    MLK_GETTER(getPQPath)
    MLK_GETTER_BY_KEY(getEQPath, int32_t)
    MLK_GETTER_BY_KEY(getAMPSelection, CommonPath)
    MLK_GETTER_BY_KEY(getAMPAddr, int32_t)
    MLK_GETTER(getVolumeCurve)
    MLK_GETTER(getAQPath)
    Return<void> getHDMIEdidPath(int32_t port, EdidVer version,
                                 getHDMIEdidPath_cb _hidl_cb) override;
    Return<void> getHDMIHdcpPath(HdcpVer version, getHDMIHdcpPath_cb _hidl_cb) override;
    Return<void> getPowerOnMode(getPowerOnMode_cb _hidl_cb) override;
    MLK_GETTER(getPowerLogoPath)
    MLK_GETTER(getBootAnimationPath)
    MLK_GETTER(getInputSource)
    MLK_GETTER(getTunerType)
    MLK_GETTER(getDPVREnabled)
    MLK_GETTER(getHBBTVEnabled)
    MLK_GETTER(getIRConfig)
    MLK_GETTER(getRegionName)
    MLK_GETTER_BY_KEY(getTunerConfig, int32_t)
    MLK_GETTER(getTvChannelDatabasePath)
    MLK_GETTER(getIRFilter)
#undef MLK_GETTER_BY_KEY
#undef MLK_GETTER

    Return<void> getTvconfigsPath(getTvconfigsPath_cb _hidl_cb) override;
    Return<void> getTvdataPath(getTvdataPath_cb _hidl_cb) override;
    Return<void> getImpdataPath(getImpdataPath_cb _hidl_cb) override;

    // Files: FileDelivery.h. A reply of more than kMostReplyBytesOnDevice fails on a device; the
    // log then names the file.
    Return<void> getTvFile(const hidl_string& path, getTvFile_cb _hidl_cb) override;
    /**
     * At most three calls are inside the allocator at once. Another one waits at most a second for
     * one of them to return, and answers with empty memory if none does.
     */
    Return<void> getVendorPartitionFile(const hidl_string& path,
                                        getVendorPartitionFile_cb _hidl_cb) override;
    Return<void> isFileExist(const hidl_string& path, isFileExist_cb _hidl_cb) override;

    // Audio files: SoundDelays. A text that does not fit ends the process; the trySet forms return
    // false then, and change nothing.
    Return<void> getAudioDelay(const ProjectConfigKey& key, const hidl_string& avrName,
                               getAudioDelay_cb _hidl_cb) override;
    Return<void> setAvrVendorId(const hidl_string& vendorId, setAvrVendorId_cb _hidl_cb) override;
    Return<void> setAvrOSDName(const hidl_string& osdName, setAvrOSDName_cb _hidl_cb) override;
    bool trySetAvrVendorId(const hidl_string& vendorId);
    bool trySetAvrOSDName(const hidl_string& osdName);

    // Karaoke, key and DDC/CI files: AuxiliaryFile.
    Return<void> getKaraokeConfig(const ProjectConfigKey& key,
                                  getKaraokeConfig_cb _hidl_cb) override;
    Return<void> getGlobalKeyConfig(const ProjectConfigKey& key,
                                    getGlobalKeyConfig_cb _hidl_cb) override;
    Return<void> getCustomerDdcciConfigInt(const ProjectConfigKey& key,
                                           getCustomerDdcciConfigInt_cb _hidl_cb) override;
    Return<void> getCustomerDdcciConfigString(const ProjectConfigKey& key,
                                              getCustomerDdcciConfigString_cb _hidl_cb) override;

    // Countries, languages, channel plans and TV systems: Region, and SetChanges for the change.
    Return<void> getCountryList(getCountryList_cb _hidl_cb) override;
    Return<void> getCLTVCountryList(getCLTVCountryList_cb _hidl_cb) override;
    Return<void> getLanguageList(getLanguageList_cb _hidl_cb) override;
    Return<void> getFreqTableList(int32_t country, FreqTableType type, AtscCableType cableType,
                                  getFreqTableList_cb _hidl_cb) override;
    Return<void> isSupportTvSysReload(isSupportTvSysReload_cb _hidl_cb) override;
    Return<void> setCountryId(int32_t country, setCountryId_cb _hidl_cb) override;

    /**
     * Writes the project store and the audio files, as text, to the one descriptor of the handle,
     * which stays open. Ignores the arguments. ClientDescriptor.h tells what happens if nobody
     * reads the text.
     */
    Return<void> debug(const hidl_handle& handle, const hidl_vec<hidl_string>& arguments) override;

  private:
    using TextCallback = std::function<void(const OptionalString&)>;
    using FlagCallback = std::function<void(const OptionalBool&)>;

    /** Answers with an item of the table. Gives no answer if a selector is out of range. */
    Return<void> answer(const ProjectItemRow& row, const TextCallback& callback,
                        uint32_t section = 0, uint32_t key = 0) const;
    /** The same for a flag, which is set if the item is "true". */
    Return<void> answer(const ProjectItemRow& row, const FlagCallback& callback) const;

    const Partitions mPartitions;
    ProjectID mProjectID;
    const BoardID mBoardID;
    ProjectSet mSet;
    SetChanges mChanges;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
