#pragma once

#include <cstdint>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>

#include "common/ConfigKey.h"
#include "common/Partitions.h"
#include "projectconfigs/IniProjectParser.h"
#include "projectconfigs/ProjectParser.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

// The names of the audio files that no item names.
inline constexpr const char* kHardwareAudioFolder = "/audio/"; /**< of tvconfigs */
inline constexpr const char* kHardwareAudioPrefix = "audio_";  /**< the hardware's name follows */
inline constexpr const char* kAvrAudioPrefix = "AVR_"; /**< vendor id, "_" and OSD name follow */
inline constexpr const char* kAudioFileEnd = ".ini";

/**
 * The audio files of a set and the sound delays that they add up to.
 *
 * The constructor loads the files of the panel, the audio IC, the default AVR (audio/video
 * receiver) and the hardware. Each AVR that is set adds its file: "AVR_<vendor id>_<OSD name>.ini"
 * in the folder of the default AVR's file.
 *
 * Any number of threads may call. mMutex guards the AVR in use, so that a delay belongs to
 * one AVR even if another thread sets it. Log tag: "MlkProjectConfigs".
 */
class SoundDelays {
  public:
    /**
     * Loads the files that the project's "[AUDIO]" items name, and that of the hardware:
     * "audio/audio_<hardware>.ini" of the tvconfigs partition.
     *
     * @param items     the project's items; must outlive the object
     * @param hardware  the property "ro.hardware"
     * @param observer  hears of every line of these files; must outlive the object; null for none
     */
    SoundDelays(const ProjectParser& items, const Partitions& partitions,
                const std::string& hardware, ReadObserver* observer = nullptr);

    /**
     * Sets one of the two texts that identify the AVR in use. If both are known, loads the AVR's
     * file unless it is loaded already.
     *
     * If memory runs out, the AVR stays as it was.
     *
     * @return false, with nothing changed, if the text, the file's name or its path does not fit:
     *         a text and a name have at most kFileNameSize bytes, a path has fewer than
     * kAvrPathSize
     */
    bool trySetAvrVendorId(std::string_view vendorId);
    bool trySetAvrOSDName(std::string_view osdName);

    /**
     * The sum of the key's values in the files of the panel, the audio IC and the hardware. A sum
     * out of the range of 32 bits wraps; a value that is no number counts as 0.
     *
     * @param isArc  adds the values in the files of the default AVR and of the AVR in use
     */
    int32_t delay(const ConfigKey& key, bool isArc) const;

    /** Name of the hardware's file. */
    const std::string& hardwareName() const { return mHardwareName; }

    /** Writes every audio file with its items. */
    void dump(std::ostream& out) const { mFiles.dump(out); }

  private:
    // The AVR in use; its texts are empty until they are set.
    struct Avr {
        std::string vendorId;
        std::string osdName;
        std::string fileName;  // of the file that adds its delays
    };

    bool trySetAvrText(std::string Avr::*text, const char* label, std::string_view value);
    bool updateAudioConfig(Avr& avr);

    const ProjectParser& mItems;
    IniProjectParser mFiles;
    // Names of the files that mFiles holds.
    std::string mPanelName;
    std::string mICName;
    std::string mAvrDefaultName;
    std::string mHardwareName;
    mutable std::mutex mMutex;  // guards mAvr
    Avr mAvr;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
