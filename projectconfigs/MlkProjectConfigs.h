#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <cstddef>
#include <cstdint>
#include <functional>

#include "common/ConfigKey.h"
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
 * The process entry creates one object, which reads everything in its constructor, and registers it
 * as "default". Each method turns its arguments into a question to ProjectSet or SetChanges and the
 * result into an answer. No method fails: each answers with success true, and what is missing is an
 * empty text, false or 0. A few methods do not answer at all if an argument is out of range: see
 * their comments, and MlkProjectConfigsStub for what a client sees then.
 *
 * Calls may come from any number of threads; no lock is held while an answer is given. Log tag:
 * "MlkProjectConfigs".
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

    // The project index. A change is written to storage, re-reads the project's files with the
    // board file that is in use, and answers whether the index was accepted: 1 to the highest.

    /** For an index above the highest known the files are looked at again first. */
    Return<void> setProjectId(int32_t projectId, setProjectId_cb _hidl_cb) override;
    Return<void> setProjectIdWithPid(int32_t projectId, const hidl_string& processName, int32_t pid,
                                     setProjectIdWithPid_cb _hidl_cb) override;
    Return<void> getProjectId(getProjectId_cb _hidl_cb) override;
    Return<void> getProjectMaxIdx(getProjectMaxIdx_cb _hidl_cb) override;
    Return<void> getProjectIniList(getProjectIniList_cb _hidl_cb) override;

    // Items of the project, whichever they are.

    Return<void> getCustomerId(getCustomerId_cb _hidl_cb) override;
    Return<void> getConfig(const ProjectConfigKey& key, getConfig_cb _hidl_cb) override;
    Return<void> getConfigsByCategory(const hidl_string& category,
                                      getConfigsByCategory_cb _hidl_cb) override;

    // Items with a getter of their own: ProjectItems.h has their names.

#define MLK_GETTER(method)                               \
    Return<void> method(method##_cb _hidl_cb) override { \
        return answer<projectItem(#method)>(_hidl_cb);   \
    }
    MLK_GETTER(getClientType)
    MLK_GETTER(getProjectName)
    MLK_GETTER(getPanelName)
    MLK_GETTER(getOverscanPath)
    MLK_GETTER(getSSCPath)
    MLK_GETTER(getPQPath)
    /** No answer unless index is 0 or 1. */
    Return<void> getEQPath(int32_t index, getEQPath_cb _hidl_cb) override {
        return answer<projectItem("getEQPath")>(_hidl_cb, 0, static_cast<uint32_t>(index));
    }
    /** No answer unless path is one of the enumerators. */
    Return<void> getAMPSelection(CommonPath path, getAMPSelection_cb _hidl_cb) override {
        return answer<projectItem("getAMPSelection")>(_hidl_cb, 0, static_cast<uint32_t>(path));
    }
    /** No answer unless index is 0 or 1. */
    Return<void> getAMPAddr(int32_t index, getAMPAddr_cb _hidl_cb) override {
        return answer<projectItem("getAMPAddr")>(_hidl_cb, 0, static_cast<uint32_t>(index));
    }
    MLK_GETTER(getVolumeCurve)
    MLK_GETTER(getAQPath)
    /** No answer unless port is 0 to 3; an unknown version asks for the item with the empty key. */
    Return<void> getHDMIEdidPath(int32_t port, EdidVer version,
                                 getHDMIEdidPath_cb _hidl_cb) override {
        return answer<projectItem("getHDMIEdidPath")>(_hidl_cb, static_cast<uint32_t>(port),
                                                      static_cast<uint32_t>(version));
    }
    /** No answer unless version is one of the enumerators. */
    Return<void> getHDMIHdcpPath(HdcpVer version, getHDMIHdcpPath_cb _hidl_cb) override {
        return answer<projectItem("getHDMIHdcpPath")>(_hidl_cb, static_cast<uint32_t>(version));
    }
    /** The item as a number; no answer unless that is 0, 1 or 2. */
    Return<void> getPowerOnMode(getPowerOnMode_cb _hidl_cb) override;
    MLK_GETTER(getPowerLogoPath)
    MLK_GETTER(getBootAnimationPath)
    MLK_GETTER(getInputSource)
    MLK_GETTER(getTunerType)
    /** True when the item is exactly "true". */
    MLK_GETTER(getDPVREnabled)
    /** True when the item is exactly "true". */
    MLK_GETTER(getHBBTVEnabled)
    MLK_GETTER(getIRConfig)
    MLK_GETTER(getRegionName)
    /** No answer unless tuner is 0 or 1. */
    Return<void> getTunerConfig(int32_t tuner, getTunerConfig_cb _hidl_cb) override {
        return answer<projectItem("getTunerConfig")>(_hidl_cb, 0, static_cast<uint32_t>(tuner));
    }
    MLK_GETTER(getTvChannelDatabasePath)
    MLK_GETTER(getIRFilter)
#undef MLK_GETTER

    // Mount points of the partitions.

    Return<void> getTvconfigsPath(getTvconfigsPath_cb _hidl_cb) override;
    Return<void> getTvdataPath(getTvdataPath_cb _hidl_cb) override;
    Return<void> getImpdataPath(getImpdataPath_cb _hidl_cb) override;

    // Files for clients that may not read the partitions themselves. A path may be quoted. A file
    // is delivered whole or not at all, see FileDelivery.h.

    /**
     * The file's bytes; empty when it cannot be read. No answer to a path without text. On a device
     * the call of a file fails whose reply has more than kMostReplyBytesOnDevice; the log names it.
     */
    Return<void> getTvFile(const hidl_string& path, getTvFile_cb _hidl_cb) override;
    /**
     * The file's bytes in a block of shared memory; empty memory when they cannot be had. At most
     * three calls are inside the allocator at once. A further one waits for a second at most, and
     * answers with empty memory when none of them has come back.
     */
    Return<void> getVendorPartitionFile(const hidl_string& path,
                                        getVendorPartitionFile_cb _hidl_cb) override;
    /** 1 or 0. No answer to a path without text. */
    Return<void> isFileExist(const hidl_string& path, isFileExist_cb _hidl_cb) override;

    // Audio files: SoundDelays.

    /**
     * The sum, as decimal text, of what the files of the panel, the audio IC and the hardware say
     * for the key; with avrName "ARC" also of those of the default AVR and of the AVR that was set
     * last. What is no number counts 0.
     */
    Return<void> getAudioDelay(const ProjectConfigKey& key, const hidl_string& avrName,
                               getAudioDelay_cb _hidl_cb) override;

    // The AVR in use: once both texts are known, its file is looked for beside the default AVR's.
    // Always true: a text, or a path of 128 bytes made with it, that does not fit ends the process.
    // The trySet forms return false then and change nothing.

    Return<void> setAvrVendorId(const hidl_string& vendorId, setAvrVendorId_cb _hidl_cb) override;
    Return<void> setAvrOSDName(const hidl_string& osdName, setAvrOSDName_cb _hidl_cb) override;
    bool trySetAvrVendorId(const hidl_string& vendorId);
    bool trySetAvrOSDName(const hidl_string& osdName);

    // Karaoke, key and DDC/CI files: the item of the key, empty or 0 if the file does not have it,
    // 0 also if it does not begin with a number.

    Return<void> getKaraokeConfig(const ProjectConfigKey& key,
                                  getKaraokeConfig_cb _hidl_cb) override;
    Return<void> getGlobalKeyConfig(const ProjectConfigKey& key,
                                    getGlobalKeyConfig_cb _hidl_cb) override;
    Return<void> getCustomerDdcciConfigInt(const ProjectConfigKey& key,
                                           getCustomerDdcciConfigInt_cb _hidl_cb) override;
    Return<void> getCustomerDdcciConfigString(const ProjectConfigKey& key,
                                              getCustomerDdcciConfigString_cb _hidl_cb) override;

    // Countries, languages, frequencies and TV systems: Region. A list whose file is not named or
    // cannot be read is empty.

    /** Numbers of the countries that the set offers; see CountryListParser. */
    Return<void> getCountryList(getCountryList_cb _hidl_cb) override;
    /** Numbers of the countries that the live-TV launcher starts in. */
    Return<void> getCLTVCountryList(getCLTVCountryList_cb _hidl_cb) override;
    Return<void> getLanguageList(getLanguageList_cb _hidl_cb) override;
    /** The channels of a country's plan; see FreqTableParser. The cable type counts for cable. */
    Return<void> getFreqTableList(int32_t country, FreqTableType type, AtscCableType cableType,
                                  getFreqTableList_cb _hidl_cb) override;
    /** True when the project names a TV system file. */
    Return<void> isSupportTvSysReload(isSupportTvSysReload_cb _hidl_cb) override;
    /** The value tells whether the country was saved; see SetChanges::setCountry. */
    Return<void> setCountryId(int32_t country, setCountryId_cb _hidl_cb) override;

    /**
     * Writes the project store and the audio files, as text, to the one descriptor of the handle,
     * which stays open; see ClientDescriptor.h for a client that does not read it. The arguments
     * are ignored.
     */
    Return<void> debug(const hidl_handle& handle, const hidl_vec<hidl_string>& arguments) override;

  private:
    using TextCallback = std::function<void(const OptionalString&)>;
    using FlagCallback = std::function<void(const OptionalBool&)>;

    static ConfigKey nameOf(const ProjectConfigKey& key) {
        return {{key.category.c_str(), key.category.size()}, {key.key.c_str(), key.key.size()}};
    }
    /** Answers with the value of an item. */
    void answerValue(const char* category, const char* key, const TextCallback& callback) const;

    /** Answers with an item of the table; with nothing where a selector is out of range. */
    template <size_t kRow, typename Callback>
    Return<void> answer(const Callback& callback, uint32_t section = 0, uint32_t key = 0) const {
        answerItem(kProjectItems[kRow], section, key, callback);
        return {};
    }
    void answerItem(const ProjectItemRow& row, uint32_t section, uint32_t key,
                    const TextCallback& callback) const;
    void answerItem(const ProjectItemRow& row, uint32_t section, uint32_t key,
                    const FlagCallback& callback) const;

    const Partitions mPartitions;
    ProjectID mProjectID;
    const BoardID mBoardID;
    ProjectSet mSet;
    SetChanges mChanges;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
