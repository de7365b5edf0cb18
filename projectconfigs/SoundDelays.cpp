#define LOG_TAG "MlkProjectConfigs"

#include "projectconfigs/SoundDelays.h"

#include <log/log.h>

#include <type_traits>
#include <utility>

#include "common/Decimal.h"
#include "common/Paths.h"
#include "projectconfigs/AuxiliaryFile.h"
#include "projectconfigs/KnownItems.h"
#include "projectconfigs/LogLines.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

constexpr AuxiliaryFileSource kPanel = {item::kPanelAudio,
                                        "mPanelName:", "Can't get audio config path!"};
constexpr AuxiliaryFileSource kIC = {item::kICAudio, "mICName:", "Can't get audio config IC path!"};
constexpr AuxiliaryFileSource kAvrDefault = {
        item::kAvrAudio, "mAvrDefaultName:", "Can't get audio config AVR path!"};

// A sum out of the range of 32 bits wraps.
int32_t add(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

}  // namespace

SoundDelays::SoundDelays(const ProjectParser& items, const Partitions& partitions,
                         const std::string& hardware, ReadObserver* observer)
    : mItems(items),
      mFiles(observer),
      mPanelName(loadAuxiliaryFile(items, kPanel, mFiles)),
      mICName(loadAuxiliaryFile(items, kIC, mFiles)),
      mAvrDefaultName(loadAuxiliaryFile(items, kAvrDefault, mFiles)),
      mHardwareName(kHardwareAudioPrefix + hardware + kAudioFileEnd) {
    mFiles.update((partitions.tvconfigs + kHardwareAudioFolder + mHardwareName).c_str());
    mFiles.dumpDetail();
}

bool SoundDelays::trySetAvrVendorId(std::string_view vendorId) {
    return trySetAvrText(&Avr::vendorId, "mAvrVendorId", vendorId);
}

bool SoundDelays::trySetAvrOSDName(std::string_view osdName) {
    return trySetAvrText(&Avr::osdName, "mAvrOSDName", osdName);
}

bool SoundDelays::trySetAvrText(std::string Avr::*text, const char* label, std::string_view value) {
    if (value.size() > kFileNameSize) {
        return false;
    }
    const std::lock_guard<std::mutex> lock(mMutex);
    Avr changed = mAvr;
    // A NUL in a client's text ends it.
    changed.*text = value.substr(0, value.find('\0'));
    ALOGD("%s:%s", label, (changed.*text).c_str());
    if (!updateAudioConfig(changed)) {
        return false;
    }
    // The last step, and it cannot fail: a change that ends early leaves the former AVR.
    static_assert(std::is_nothrow_move_assignable_v<Avr>);
    mAvr = std::move(changed);
    return true;
}

// Names and loads the file of the AVR. False if its name or path does not fit. Runs with mMutex
// held.
bool SoundDelays::updateAudioConfig(Avr& avr) {
    if (avr.vendorId.empty() || avr.osdName.empty()) {
        return true;
    }
    std::string name = kAvrAudioPrefix + avr.vendorId + "_" + avr.osdName + kAudioFileEnd;
    if (name.size() > kFileNameSize) {
        return false;
    }
    avr.fileName = std::move(name);
    ALOGD("mAvrName:%s", avr.fileName.c_str());
    if (mFiles.findItem(avr.fileName.c_str())) {
        return true;
    }
    const std::string defaultPath = mItems.getInfo(item::kAvrAudio);
    if (defaultPath.empty()) {
        return true;
    }
    const size_t folder = defaultPath.size() - fileNameOf(defaultPath).size();
    if (folder == 0) {
        ALOGE("MlErr : [%s %d], strrchr return null", __func__, log_line::kAvrPath);
        return true;
    }
    const std::string path = defaultPath.substr(0, folder) + avr.fileName;
    if (path.size() >= kAvrPathSize) {
        return false;
    }
    mFiles.update(path.c_str());
    mFiles.dumpDetail();
    return true;
}

int32_t SoundDelays::delay(const ConfigKey& key, bool isArc) const {
    const auto lookUp = [&](const std::string& fileName) {
        return mFiles.getInfo(fileName.c_str(), key);
    };
    const std::lock_guard<std::mutex> lock(mMutex);
    const std::string panel = lookUp(mPanelName);
    const std::string ic = lookUp(mICName);
    const std::string avrDefault = lookUp(mAvrDefaultName);
    const std::string hardware = lookUp(mHardwareName);
    // The name of the interface's method, for the log.
    constexpr const char* kMethod = "getAudioDelay";
    ALOGD("%s: Category:%s, Key:%s, mPanelName:%s, mICName:%s, mAvrDefaultName:%s, "
          "mHwAudioConfigName:%s",
          kMethod, std::string(key.category).c_str(), std::string(key.key).c_str(),
          mPanelName.c_str(), mICName.c_str(), mAvrDefaultName.c_str(), mHardwareName.c_str());
    int32_t delay = add(add(parseDecimal(panel), parseDecimal(ic)), parseDecimal(hardware));
    if (!isArc) {
        ALOGD("%s: panel:%s, IC:%s, hwAudioConfig:%s, audioDelay:%i", kMethod, panel.c_str(),
              ic.c_str(), hardware.c_str(), delay);
        return delay;
    }
    delay = add(delay, parseDecimal(avrDefault));
    if (mAvr.fileName.empty()) {
        ALOGD("%s: panel:%s, IC:%s, avrDefault:%s, hwAudioConfig:%s, audioDelay:%i", kMethod,
              panel.c_str(), ic.c_str(), avrDefault.c_str(), hardware.c_str(), delay);
        return delay;
    }
    const std::string avr = lookUp(mAvr.fileName);
    delay = add(delay, parseDecimal(avr));
    ALOGD("%s: panel:%s, IC:%s, avrDefault:%s, avr[%s]:%s, hwAudioConfig:%s, "
          "audioDelay:%i",
          kMethod, panel.c_str(), ic.c_str(), avrDefault.c_str(), mAvr.fileName.c_str(),
          avr.c_str(), hardware.c_str(), delay);
    return delay;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
