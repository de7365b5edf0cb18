#include "tools/mlkctl/tests/FakeServices.h"

#include <cutils/native_handle.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <type_traits>

namespace mlk::ctl {

using namespace ::vendor::morlak::mlkconfigs::V1_0;  // the names of the interface, as it has them
using ::android::hardware::Status;
using ::android::hardware::Void;

namespace {

using Words = std::vector<std::string>;

void note(Words& words, bool value) {
    words.emplace_back(value ? "true" : "false");
}
void note(Words& words, int32_t value) {
    words.push_back(std::to_string(value));
}
void note(Words& words, const hidl_string& value) {
    words.emplace_back(value.c_str(), value.size());
}
void note(Words& words, const ProjectConfigKey& value) {
    note(words, value.category);
    note(words, value.key);
}
template <typename E, typename = std::enable_if_t<std::is_enum_v<E>>>
void note(Words& words, E value) {
    words.push_back(std::to_string(static_cast<uint32_t>(value)));
}

// The answer to this call if the script has one, else the other.
template <typename T>
T chosen(const std::map<Words, T>& answers, const Words& call, const T& otherwise) {
    const auto found = answers.find(call);
    return found == answers.end() ? otherwise : found->second;
}

template <typename Callback>
struct AnswerOf;
template <typename Answer>
struct AnswerOf<std::function<void(const Answer&)>> {
    using Type = Answer;
};

// What every method does.
template <typename Callback, typename... Arguments>
Return<void> take(Script& script, const char* method, const Callback& callback,
                  const Arguments&... arguments) {
    Words words = {method};
    (note(words, arguments), ...);
    if (!script.exitFile.empty() && words.back() == script.exitFile) {
        _exit(0);
    }
    {
        const std::lock_guard<std::mutex> lock(script.mutex);
        script.calls.push_back(words);
    }
    if (script.onCall) {
        script.onCall(words);
    }
    if (script.failing.count(method) != 0) {
        return Status::fromExceptionCode(Status::EX_ILLEGAL_STATE, script.failure.c_str());
    }
    if (script.dying.count(method) != 0) {
        return Status::fromStatusT(::android::DEAD_OBJECT);
    }
    using Answer = typename AnswerOf<Callback>::Type;
    if (script.silent.count(method) == 0) {
        callback(answerFrom(script, words, static_cast<Answer*>(nullptr)));
    }
    return Void();
}

// A method by its number of arguments.
#define METHOD0(name)                                \
    Return<void> name(name##_cb callback) override { \
        return take(mScript, #name, callback);       \
    }
#define METHOD1(name, A)                                  \
    Return<void> name(A a, name##_cb callback) override { \
        return take(mScript, #name, callback, a);         \
    }
#define METHOD2(name, A, B)                                    \
    Return<void> name(A a, B b, name##_cb callback) override { \
        return take(mScript, #name, callback, a, b);           \
    }
#define METHOD3(name, A, B, C)                                      \
    Return<void> name(A a, B b, C c, name##_cb callback) override { \
        return take(mScript, #name, callback, a, b, c);             \
    }

class FakeProject : public IMlkProjectConfigs {
  public:
    explicit FakeProject(Script& script) : mScript(script) {}

    // clang-format off
    METHOD1(setProjectId, int32_t)
    METHOD3(setProjectIdWithPid, int32_t, const hidl_string&, int32_t)
    METHOD0(getProjectId)
    METHOD0(getProjectMaxIdx)
    METHOD0(getProjectIniList)
    METHOD0(getCustomerId)
    METHOD1(getConfig, const ProjectConfigKey&)
    METHOD0(getClientType)
    METHOD0(getProjectName)
    METHOD0(getPanelName)
    METHOD0(getOverscanPath)
    METHOD0(getSSCPath)
    METHOD0(getPQPath)
    METHOD1(getEQPath, int32_t)
    METHOD1(getAMPSelection, CommonPath)
    METHOD1(getAMPAddr, int32_t)
    METHOD0(getVolumeCurve)
    METHOD0(getAQPath)
    METHOD2(getHDMIEdidPath, int32_t, EdidVer)
    METHOD1(getHDMIHdcpPath, HdcpVer)
    METHOD0(getPowerOnMode)
    METHOD0(getPowerLogoPath)
    METHOD0(getBootAnimationPath)
    METHOD0(getInputSource)
    METHOD0(getTunerType)
    METHOD0(getDPVREnabled)
    METHOD0(getHBBTVEnabled)
    METHOD0(getIRConfig)
    METHOD0(getRegionName)
    METHOD0(getCountryList)
    METHOD0(getLanguageList)
    METHOD1(getTunerConfig, int32_t)
    METHOD0(getTvChannelDatabasePath)
    METHOD0(getIRFilter)
    METHOD0(getTvconfigsPath)
    METHOD0(getTvdataPath)
    METHOD0(getImpdataPath)
    METHOD3(getFreqTableList, int32_t, FreqTableType, AtscCableType)
    METHOD2(getAudioDelay, const ProjectConfigKey&, const hidl_string&)
    METHOD1(getTvFile, const hidl_string&)
    METHOD1(setAvrVendorId, const hidl_string&)
    METHOD1(setAvrOSDName, const hidl_string&)
    METHOD1(getVendorPartitionFile, const hidl_string&)
    METHOD1(getConfigsByCategory, const hidl_string&)
    METHOD1(isFileExist, const hidl_string&)
    METHOD1(getKaraokeConfig, const ProjectConfigKey&)
    METHOD0(isSupportTvSysReload)
    METHOD1(setCountryId, int32_t)
    METHOD1(getGlobalKeyConfig, const ProjectConfigKey&)
    METHOD1(getCustomerDdcciConfigInt, const ProjectConfigKey&)
    METHOD1(getCustomerDdcciConfigString, const ProjectConfigKey&)
    METHOD0(getCLTVCountryList)
    // clang-format on

    Return<void> debug(const hidl_handle& handle, const hidl_vec<hidl_string>&) override {
        if (mScript.dying.count("debug") != 0) {
            return Status::fromStatusT(::android::DEAD_OBJECT);
        }
        const std::string& dump = mScript.dump;
        size_t done = 0;
        while (done < dump.size()) {
            const ssize_t got = write(handle->data[0], dump.data() + done, dump.size() - done);
            if (got <= 0) {
                break;
            }
            done += static_cast<size_t>(got);
        }
        return Void();
    }

  private:
    Script& mScript;
};

class FakeTv : public IMlkTvConfigs {
  public:
    explicit FakeTv(Script& script) : mScript(script) {}

    Return<void> ping() override {
        if (mScript.dying.count("ping") == 0) return IMlkTvConfigs::ping();
        return Status::fromStatusT(::android::DEAD_OBJECT);
    }

    // clang-format off
    METHOD0(getAtvSystem)
    METHOD0(getDtvSystem)
    METHOD0(atvEnabled)
    METHOD0(atvAntennaEnabled)
    METHOD0(atvCableEnabled)
    METHOD0(dtvEnabled)
    METHOD0(dtvAntennaEnabled)
    METHOD0(dtvCableEnabled)
    METHOD0(dtvSatelliteEnabled)
    METHOD0(pvrEnabled)
    METHOD0(livepauseEnabled)
    METHOD0(hdmiEnabled)
    METHOD0(vgaEnabled)
    METHOD0(avEnabled)
    METHOD0(yppEnabled)
    METHOD0(ciEnabled)
    METHOD0(pipEnabled)
    METHOD0(mheg5Enabled)
    METHOD0(gingaEnabled)
    METHOD0(hbbtvEnabled)
    METHOD0(teltexEnabled)
    METHOD0(closeCaptionEnabled)
    METHOD0(atscCloseCaptionEnabled)
    METHOD0(ntscCloseCaptionEnabled)
    METHOD0(isdbCloseCaptionEnabled)
    METHOD0(getWOWEnabled)
    METHOD1(getFlag, ConfigType)
    METHOD1(setAtvSystem, int32_t)
    METHOD1(setDtvSystem, int32_t)
    METHOD1(setAtvEnabled, bool)
    METHOD1(setAtvAntennaEnabled, bool)
    METHOD1(setAtvCableEnabled, bool)
    METHOD1(setDtvEnabled, bool)
    METHOD1(setDtvAntennaEnabled, bool)
    METHOD1(setDtvCableEnabled, bool)
    METHOD1(setDtvSatelliteEnabled, bool)
    METHOD1(setPvrEnabled, bool)
    METHOD1(setLivepauseEnabled, bool)
    METHOD1(setHdmiEnabled, bool)
    METHOD1(setVgaEnabled, bool)
    METHOD1(setAvEnabled, bool)
    METHOD1(setYppEnabled, bool)
    METHOD1(setCiEnabled, bool)
    METHOD1(setPipEnabled, bool)
    METHOD1(setMheg5Enabled, bool)
    METHOD1(setGingaEnabled, bool)
    METHOD1(setHbbtvEnabled, bool)
    METHOD1(setTeltexEnabled, bool)
    METHOD1(setCloseCaptionEnabled, bool)
    METHOD1(setAtscCloseCaptionEnabled, bool)
    METHOD1(setNtscCloseCaptionEnabled, bool)
    METHOD1(setIsdbCloseCaptionEnabled, bool)
    METHOD1(setWOWEnabled, bool)
    METHOD2(setFlag, ConfigType, bool)
    METHOD1(reloadTvConfig, const hidl_string&)
    // clang-format on

  private:
    Script& mScript;
};

class FakeFramework : public IMlkFrameworkConfigs {
  public:
    explicit FakeFramework(Script& script) : mScript(script) {}

    // clang-format off
    METHOD0(inputMp4PtsDebugEnabled)
    METHOD0(inputMp4AvsyncDebuEnabledg)
    METHOD0(inputMp4FwptsDebugEnabled)
    METHOD0(inputMp4DumpesEnabled)
    METHOD0(inputMp4PerformanceDebugEnabled)
    METHOD0(mediaDebugEnabled)
    METHOD0(getMediaDebugCmd)
    METHOD0(isMediaFreeRun)
    METHOD0(isMediaAudioMaster)
    METHOD0(isMediaNoVideoDemux)
    METHOD0(isMediaNoAudioDemux)
    METHOD0(inputMKVDebugEnabled)
    METHOD0(mlkPlayerAdaptiveStreamEnabled)
    METHOD0(getTvserviceDumpLevel)
    METHOD0(strEnabled)
    METHOD0(getResumePowerKey)
    METHOD0(getBtA2DPAoutID)
    METHOD0(argb4444Enabled)
    METHOD0(getMediaVdecInfo)
    METHOD0(hbbtvEnabled)
    METHOD0(moduleTestEnabled)
    METHOD0(getForceStrEnabled)
    METHOD1(setForceStrEnabled, bool)
    METHOD0(getWowEnabled)
    METHOD1(setWowEnabled, bool)
    // clang-format on

  private:
    Script& mScript;
};

}  // namespace

Script::~Script() {
    if (memoryFile >= 0) {
        close(memoryFile);
    }
}

OptionalBool answerFrom(Script& script, const Script::Words&, OptionalBool*) {
    return {script.success, script.flag};
}

OptionalInt32 answerFrom(Script& script, const Script::Words& call, OptionalInt32*) {
    return {script.success, chosen(script.numberOf, call, script.number)};
}

OptionalString answerFrom(Script& script, const Script::Words& call, OptionalString*) {
    const bool named = script.text.empty() && !script.emptyTexts;
    return {script.success, chosen(script.textOf, call, named ? call[0] : script.text)};
}

hidl_vec<hidl_string> answerFrom(Script& script, const Script::Words&, hidl_vec<hidl_string>*) {
    return script.texts;
}

hidl_vec<uint32_t> answerFrom(Script& script, const Script::Words&, hidl_vec<uint32_t>*) {
    return script.numbers;
}

hidl_vec<uint8_t> answerFrom(Script& script, const Script::Words& call, hidl_vec<uint8_t>*) {
    return chosen(script.bytesOf, call, script.bytes);
}

hidl_vec<ConfigKeyValue> answerFrom(Script& script, const Script::Words& call,
                                    hidl_vec<ConfigKeyValue>*) {
    return chosen(script.itemsOf, call, script.items);
}

hidl_vec<HidlFreqListItem> answerFrom(Script& script, const Script::Words&,
                                      hidl_vec<HidlFreqListItem>*) {
    return script.channels;
}

hidl_memory answerFrom(Script& script, const Script::Words&, hidl_memory*) {
    if (script.memory.empty()) {
        return {};
    }
    const std::lock_guard<std::mutex> lock(script.mutex);
    if (script.memoryFile < 0) {
        script.memoryFile = memfd_create("answer", MFD_CLOEXEC | MFD_ALLOW_SEALING);
        const ssize_t written =
                write(script.memoryFile, script.memory.data(), script.memory.size());
        if (written != static_cast<ssize_t>(script.memory.size()) ||
            fcntl(script.memoryFile, F_ADD_SEALS, F_SEAL_SHRINK) != 0) {
            return {};
        }
    }
    native_handle_t* handle = native_handle_create(1, 0);
    handle->data[0] = script.memoryFile;
    // The copy duplicates the descriptor.
    hidl_memory copy = hidl_memory("ashmem", handle, script.memory.size());
    hidl_memory answer(copy);
    native_handle_delete(handle);
    return answer;
}

::android::sp<IMlkProjectConfigs> makeFakeProject(Script& script) {
    return new FakeProject(script);
}

::android::sp<IMlkTvConfigs> makeFakeTv(Script& script) {
    return new FakeTv(script);
}

::android::sp<IMlkFrameworkConfigs> makeFakeFramework(Script& script) {
    return new FakeFramework(script);
}

}  // namespace mlk::ctl
