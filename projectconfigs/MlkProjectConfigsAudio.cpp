// The audio files of the panel, the audio IC, the hardware and the AVRs, and the delay they add up
// to.

#include <android/log.h>

#include <mutex>

#include "common/Answer.h"
#include "common/Decimal.h"
#include "common/Paths.h"
#include "projectconfigs/MlkProjectConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::Return;

namespace {

constexpr const char* kTag = "MlkProjectConfigs";
constexpr const char* kCategory = "[AUDIO]";
constexpr const char* kAvrPathKey = "AUDIO_CONFIG_AVR_PATH";
/** Bytes of the buffer that holds the path of an AVR's file. */
constexpr size_t kAvrPathSize = 128;

/** Guards the names of the AVR: a delay is that of one AVR, whichever is set meanwhile. */
std::mutex gAudioMutex;

// Delays are added as the 32-bit numbers they are; a sum out of range wraps.
int32_t add(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

}  // namespace

void MlkProjectConfigs::GetAudioConfigPathInternal() {
    const AuxiliaryFile files[] = {
            {kCategory, "AUDIO_CONFIG_PATH", &MlkProjectConfigs::mAudioIniParser,
             &MlkProjectConfigs::mPanelName, "mPanelName:", "Can't get audio config path!"},
            {kCategory, "AUDIO_CONFIG_IC_PATH", &MlkProjectConfigs::mAudioIniParser,
             &MlkProjectConfigs::mICName, "mICName:", "Can't get audio config IC path!"},
            {kCategory, kAvrPathKey, &MlkProjectConfigs::mAudioIniParser,
             &MlkProjectConfigs::mAvrDefaultName,
             "mAvrDefaultName:", "Can't get audio config AVR path!"},
    };
    for (const AuxiliaryFile& file : files) {
        loadAuxiliaryFile(file);
    }
    const std::string path = std::string(mTvconfigsPath) + "/audio/" + mHwAudioConfigName.data();
    mAudioIniParser->update(path.c_str());
    mAudioIniParser->dumpDetail();
}

bool MlkProjectConfigs::trySetAvrVendorId(const hidl_string& vendorId) {
    return trySetAvrText(mAvrVendorId, "mAvrVendorId", vendorId);
}

bool MlkProjectConfigs::trySetAvrOSDName(const hidl_string& osdName) {
    return trySetAvrText(mAvrOSDName, "mAvrOSDName", osdName);
}

bool MlkProjectConfigs::trySetAvrText(Name& member, const char* label, const hidl_string& text) {
    const std::lock_guard<std::mutex> lock(gAudioMutex);
    const Name formerText = member;
    const Name formerName = mAvrName;
    if (!assign(member, {text.c_str(), text.size()})) {
        return false;
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "%s:%s", label, textOf(member).c_str());
    if (!updateAudioConfig()) {
        member = formerText;
        mAvrName = formerName;
        return false;
    }
    return true;
}

bool MlkProjectConfigs::updateAudioConfig() {
    const std::string vendorId = textOf(mAvrVendorId);
    const std::string osdName = textOf(mAvrOSDName);
    if (vendorId.empty() || osdName.empty()) {
        return true;
    }
    const std::string name = "AVR_" + vendorId + "_" + osdName + ".ini";
    if (!assign(mAvrName, name)) {
        return false;
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "mAvrName:%s", name.c_str());
    if (mAudioIniParser->findItem(name.c_str())) {
        return true;
    }
    const std::string defaultPath = GetValue(kCategory, kAvrPathKey);
    if (defaultPath.empty()) {
        return true;
    }
    const size_t folder = defaultPath.size() - fileNameOf(defaultPath).size();
    if (folder == 0) {
        // 780 is what the tools that read this log know the message by.
        __android_log_print(ANDROID_LOG_ERROR, kTag, "MlErr : [%s %d], strrchr return null",
                            __func__, 780);
        return true;
    }
    const std::string path = defaultPath.substr(0, folder) + name;
    if (path.size() >= kAvrPathSize) {
        return false;
    }
    mAudioIniParser->update(path.c_str());
    mAudioIniParser->dumpDetail();
    return true;
}

Return<void> MlkProjectConfigs::setAvrVendorId(const hidl_string& vendorId,
                                               setAvrVendorId_cb _hidl_cb) {
    if (!trySetAvrVendorId(vendorId)) {
        __android_log_assert("trySetAvrVendorId", kTag, "the vendor id of the AVR does not fit");
    }
    _hidl_cb({true, true});
    return {};
}

Return<void> MlkProjectConfigs::setAvrOSDName(const hidl_string& osdName,
                                              setAvrOSDName_cb _hidl_cb) {
    if (!trySetAvrOSDName(osdName)) {
        __android_log_assert("trySetAvrOSDName", kTag, "the OSD name of the AVR does not fit");
    }
    _hidl_cb({true, true});
    return {};
}

int32_t MlkProjectConfigs::audioDelay(const ProjectConfigKey& key, bool isArc) const {
    const ConfigKey name = nameOf(key);
    const auto lookUp = [&](const Name& fileName) {
        return mAudioIniParser->getInfo(textOf(fileName).c_str(), name);
    };
    const std::lock_guard<std::mutex> lock(gAudioMutex);
    const std::string panel = lookUp(mPanelName);
    const std::string ic = lookUp(mICName);
    const std::string avrDefault = lookUp(mAvrDefaultName);
    const std::string hardware = lookUp(mHwAudioConfigName);
    __android_log_print(ANDROID_LOG_DEBUG, kTag,
                        "%s: Category:%s, Key:%s, mPanelName:%s, mICName:%s, mAvrDefaultName:%s, "
                        "mHwAudioConfigName:%s",
                        "getAudioDelay", key.category.c_str(), key.key.c_str(), mPanelName.data(),
                        mICName.data(), mAvrDefaultName.data(), mHwAudioConfigName.data());
    int32_t delay = add(add(parseDecimal(panel), parseDecimal(ic)), parseDecimal(hardware));
    if (!isArc) {
        __android_log_print(ANDROID_LOG_DEBUG, kTag,
                            "%s: panel:%s, IC:%s, hwAudioConfig:%s, audioDelay:%i", "getAudioDelay",
                            panel.c_str(), ic.c_str(), hardware.c_str(), delay);
        return delay;
    }
    delay = add(delay, parseDecimal(avrDefault));
    const std::string avrName = textOf(mAvrName);
    if (avrName.empty()) {
        __android_log_print(ANDROID_LOG_DEBUG, kTag,
                            "%s: panel:%s, IC:%s, avrDefault:%s, hwAudioConfig:%s, audioDelay:%i",
                            "getAudioDelay", panel.c_str(), ic.c_str(), avrDefault.c_str(),
                            hardware.c_str(), delay);
        return delay;
    }
    const std::string avr = lookUp(mAvrName);
    delay = add(delay, parseDecimal(avr));
    __android_log_print(ANDROID_LOG_DEBUG, kTag,
                        "%s: panel:%s, IC:%s, avrDefault:%s, avr[%s]:%s, hwAudioConfig:%s, "
                        "audioDelay:%i",
                        "getAudioDelay", panel.c_str(), ic.c_str(), avrDefault.c_str(),
                        avrName.c_str(), avr.c_str(), hardware.c_str(), delay);
    return delay;
}

Return<void> MlkProjectConfigs::getAudioDelay(const ProjectConfigKey& key,
                                              const hidl_string& avrName,
                                              getAudioDelay_cb _hidl_cb) {
    const bool isArc = avrName.c_str() != nullptr && avrName == "ARC";
    const int32_t delay = audioDelay(key, isArc);
    answerWith(_hidl_cb, true, std::to_string(delay));
    return {};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
