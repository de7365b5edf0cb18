#pragma once

#include <vendor/morlak/mlkconfigs/1.0/IMlkTvConfigs.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "common/Answer.h"
#include "tvconfigs/ConfigEditor.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/TvConfigInfo.h"
#include "tvconfigs/TvConfigItems.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// Which television features are switched on, and the analogue and digital TV system.
///
/// Every value is kept under a key (TvConfigItems.h). It is loaded from the TV configuration file
/// when that holds the key, else from the system property of that name, else it is false or 0. The
/// getters answer what was loaded or set last; a property that somebody else changes is seen at the
/// next reload. A change goes to the property, and to the file where that holds the key.
///
/// Calls may come from any number of threads. Setters and reloads run one after the other, so that
/// values, properties and file agree after any number of them at once; getters do not wait for what
/// these write. No lock is held while an answer is given: a callback may call the service.
class MlkTvConfigs : public IMlkTvConfigs {
  public:
    /// Loads all values, and writes the digital system back. `path` is the TV configuration file;
    /// where it is null or cannot be read, that is "/tv.config" on the tvconfigs partition. Without
    /// either the service has properties and defaults only.
    explicit MlkTvConfigs(const char* path);

    // The systems and flags: each getter answers success and the value.
    //
    // The setter of a system refuses one outside of its range: success false, and what was asked
    // for. All other setters answer success and the value afterwards, whether or not it could be
    // stored; one that changes nothing writes nothing. The captions, though: with the master,
    // setCloseCaptionEnabled, at false, the three flags below are false, are set to false by
    // whatever is asked for, and are written at every call.
#define MLK_SYSTEM(getter, setter)                                                            \
    ::android::hardware::Return<void> getter(getter##_cb _hidl_cb) override {                 \
        return answer<tvSystemItem(#getter)>(kTvSystems, _hidl_cb);                           \
    }                                                                                         \
    ::android::hardware::Return<void> setter(int32_t system, setter##_cb _hidl_cb) override { \
        return change<tvSystemItem(#getter)>(kTvSystems, system, _hidl_cb);                   \
    }
    MLK_SYSTEM(getAtvSystem, setAtvSystem)
    MLK_SYSTEM(getDtvSystem, setDtvSystem)
#undef MLK_SYSTEM
#define MLK_FLAG(getter, setter)                                                            \
    ::android::hardware::Return<void> getter(getter##_cb _hidl_cb) override {               \
        return answer<tvFlagItem(#getter)>(kTvFlags, _hidl_cb);                             \
    }                                                                                       \
    ::android::hardware::Return<void> setter(bool enabled, setter##_cb _hidl_cb) override { \
        return change<tvFlagItem(#getter)>(kTvFlags, enabled, _hidl_cb);                    \
    }
    MLK_FLAG(atvEnabled, setAtvEnabled)
    MLK_FLAG(atvAntennaEnabled, setAtvAntennaEnabled)
    MLK_FLAG(atvCableEnabled, setAtvCableEnabled)
    MLK_FLAG(dtvEnabled, setDtvEnabled)
    MLK_FLAG(dtvAntennaEnabled, setDtvAntennaEnabled)
    MLK_FLAG(dtvCableEnabled, setDtvCableEnabled)
    MLK_FLAG(dtvSatelliteEnabled, setDtvSatelliteEnabled)
    MLK_FLAG(pvrEnabled, setPvrEnabled)
    MLK_FLAG(livepauseEnabled, setLivepauseEnabled)
    MLK_FLAG(hdmiEnabled, setHdmiEnabled)
    MLK_FLAG(vgaEnabled, setVgaEnabled)
    MLK_FLAG(avEnabled, setAvEnabled)
    MLK_FLAG(yppEnabled, setYppEnabled)
    MLK_FLAG(ciEnabled, setCiEnabled)
    MLK_FLAG(pipEnabled, setPipEnabled)
    MLK_FLAG(mheg5Enabled, setMheg5Enabled)
    MLK_FLAG(gingaEnabled, setGingaEnabled)
    MLK_FLAG(hbbtvEnabled, setHbbtvEnabled)
    MLK_FLAG(teltexEnabled, setTeltexEnabled)
    MLK_FLAG(closeCaptionEnabled, setCloseCaptionEnabled)
    MLK_FLAG(atscCloseCaptionEnabled, setAtscCloseCaptionEnabled)
    MLK_FLAG(ntscCloseCaptionEnabled, setNtscCloseCaptionEnabled)
    MLK_FLAG(isdbCloseCaptionEnabled, setIsdbCloseCaptionEnabled)
    MLK_FLAG(getWOWEnabled, setWOWEnabled)
#undef MLK_FLAG

    /// The value of the flag of that type; success and value false for a type without a flag.
    ::android::hardware::Return<void> getFlag(ConfigType type, getFlag_cb _hidl_cb) override;

    /// Calls the setter of the flag of that type, which gives the answer. A type without a flag is
    /// answered with success false and what was asked for.
    ::android::hardware::Return<void> setFlag(ConfigType type, bool enabled,
                                              setFlag_cb _hidl_cb) override;

    /// Takes the entries of another file, or of the same one again, and loads all values as at the
    /// start. Answers success always, and whether the file could be read; nothing changes when not.
    /// Later writes go to the file of the start, which takes over all entries then.
    ::android::hardware::Return<void> reloadTvConfig(const ::android::hardware::hidl_string& path,
                                                     reloadTvConfig_cb _hidl_cb) override;

  protected:
    using EditorList = std::vector<std::unique_ptr<ConfigEditor>>;

    /// With editors of the caller's choice: the file's, null for none at all, and those after it.
    MlkTvConfigs(std::unique_ptr<FileConfigEditor> fileEditor, EditorList others);

    /// What reloadTvConfig does with its path's text, which can be null on some platforms.
    bool Reload(const char* path);

  private:
    int32_t GetInt32(const char* key, int32_t defaultValue) const;
    bool GetBool(const char* key, bool defaultValue) const;
    bool GetText(const char* key, char* text) const;
    void Load(TvConfigInfo& info, const TvSystemRow& row) const;
    void Load(TvConfigInfo& info, const TvFlagRow& row) const;
    void Write(const TvConfigInfo& info, const TvSystemRow& row);
    void Write(const TvConfigInfo& info, const TvFlagRow& row);
    void WriteText(const char* key, const std::string& text);
    void InitDefaultValue();
    void Publish(const TvConfigInfo& info);

    template <typename Value>
    Value Cached(Value TvConfigInfo::*field) const {
        const std::lock_guard<std::mutex> guard(mInfoLock);
        return mConfigInfo.*field;
    }
    OptionalInt32 Set(const TvSystemRow& row, int32_t system);
    OptionalBool Set(const TvFlagRow& row, bool enabled);

    template <size_t kRow, typename Table, typename Callback>
    ::android::hardware::Return<void> answer(const Table& rows, const Callback& callback) const {
        answerWith(callback, true, Cached(rows[kRow].field));
        return {};
    }
    template <size_t kRow, typename Table, typename Value, typename Callback>
    ::android::hardware::Return<void> change(const Table& rows, Value value,
                                             const Callback& callback) {
        const auto answer = Set(rows[kRow], value);
        answerWith(callback, answer.success, answer.value);
        return {};
    }

    /// Held by setters and reloads from beginning to end, and by nobody else; covers the editors.
    std::mutex mChangeLock;
    /// Held to change mConfigInfo, in addition, and to read it without mChangeLock; never for long.
    mutable std::mutex mInfoLock;
    TvConfigInfo mConfigInfo;
    EditorList mEditorLst;                ///< In the order in which they are asked and written.
    FileConfigEditor* const mFileEditor;  ///< The first of them; null when there are none.
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
