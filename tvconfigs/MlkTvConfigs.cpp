#include "tvconfigs/MlkTvConfigs.h"

#include <TvPartitionPath.h>
#include <android/log.h>
#include <unistd.h>

#include <cstring>
#include <string_view>
#include <utility>

#include "common/Decimal.h"
#include "tvconfigs/LogTag.h"
#include "tvconfigs/PropConfigEditor.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using ::android::hardware::Void;

namespace {

/// The row of a flag's getter.
constexpr const TvFlagRow* flag(std::string_view method) {
    return &kTvFlags[tvFlagItem(method)];
}

constexpr const TvSystemRow& kAtvSystem = kTvSystems[tvSystemItem("getAtvSystem")];
constexpr const TvSystemRow& kDtvSystem = kTvSystems[tvSystemItem("getDtvSystem")];

// Properties are asked for in a fixed order, which is not quite the record's; masters come before
// what is below them.
constexpr const TvFlagRow* kAtvFlags[] = {flag("atvEnabled"), flag("atvAntennaEnabled"),
                                          flag("atvCableEnabled")};
constexpr const TvFlagRow* kOtherFlags[] = {flag("dtvEnabled"),
                                            flag("dtvAntennaEnabled"),
                                            flag("dtvCableEnabled"),
                                            flag("dtvSatelliteEnabled"),
                                            flag("pvrEnabled"),
                                            flag("livepauseEnabled"),
                                            flag("vgaEnabled"),
                                            flag("avEnabled"),
                                            flag("yppEnabled"),
                                            flag("hdmiEnabled"),
                                            flag("ciEnabled"),
                                            flag("pipEnabled"),
                                            flag("mheg5Enabled"),
                                            flag("gingaEnabled"),
                                            flag("hbbtvEnabled"),
                                            flag("teltexEnabled"),
                                            flag("closeCaptionEnabled"),
                                            flag("atscCloseCaptionEnabled"),
                                            flag("ntscCloseCaptionEnabled"),
                                            flag("isdbCloseCaptionEnabled"),
                                            flag("getWOWEnabled")};
static_assert(std::size(kAtvFlags) + std::size(kOtherFlags) == std::size(kTvFlags));

// The order in which they are written when their master goes.
constexpr const TvFlagRow* kCaptions[] = {flag("atscCloseCaptionEnabled"),
                                          flag("isdbCloseCaptionEnabled"),
                                          flag("ntscCloseCaptionEnabled")};

/// The flag that has to be true for this one to be loaded; null when there is none.
bool TvConfigInfo::*masterOf(const TvFlagRow& row) {
    switch (row.rule) {
        case FlagRule::UNDER_ATV:
            return &TvConfigInfo::mAtvEnabled;
        case FlagRule::UNDER_DTV:
            return &TvConfigInfo::mDtvEnabled;
        case FlagRule::CAPTION:
            return &TvConfigInfo::mCloseCaptionEnabled;
        case FlagRule::PLAIN:
        case FlagRule::CAPTION_MASTER:
            break;
    }
    return nullptr;
}

std::string fileToUse(const char* path) {
    if (path != nullptr && access(path, R_OK) == 0) {
        return path;
    }
    return std::string(TvPartitionPath::GetInstance()->GetTvconfigsPath()) + "/tv.config";
}

}  // namespace

MlkTvConfigs::MlkTvConfigs(const char* path)
    : MlkTvConfigs(std::make_unique<FileConfigEditor>(fileToUse(path).c_str()), [] {
          EditorList others;
          others.push_back(std::make_unique<PropConfigEditor>());
          return others;
      }()) {}

MlkTvConfigs::MlkTvConfigs(std::unique_ptr<FileConfigEditor> fileEditor, EditorList others)
    : mEditorLst(std::move(others)), mFileEditor(fileEditor.get()) {
    if (fileEditor != nullptr) {
        mEditorLst.insert(mEditorLst.begin(), std::move(fileEditor));
    }
    InitDefaultValue();
    mConfigInfo.Dump();
}

void MlkTvConfigs::InitDefaultValue() {
    TvConfigInfo info;
    Load(info, kAtvSystem);
    for (const TvFlagRow* row : kAtvFlags) {
        Load(info, *row);
    }
    Load(info, kDtvSystem);
    Write(info, kDtvSystem);
    for (const TvFlagRow* row : kOtherFlags) {
        Load(info, *row);
    }
    Publish(info);
}

void MlkTvConfigs::Publish(const TvConfigInfo& info) {
    const std::lock_guard<std::mutex> guard(mInfoLock);
    mConfigInfo = info;
}

void MlkTvConfigs::Load(TvConfigInfo& info, const TvSystemRow& row) const {
    info.*row.field = GetInt32(row.key, 0);
}

void MlkTvConfigs::Load(TvConfigInfo& info, const TvFlagRow& row) const {
    bool TvConfigInfo::*const master = masterOf(row);
    info.*row.field = (master == nullptr || info.*master) && GetBool(row.key, false);
}

bool MlkTvConfigs::GetText(const char* key, char* text) const {
    for (const auto& editor : mEditorLst) {
        memset(text, 0, ConfigEditor::kValueSize);
        if (editor->Get(key, text)) {
            return true;
        }
    }
    return false;
}

int32_t MlkTvConfigs::GetInt32(const char* key, int32_t defaultValue) const {
    char text[ConfigEditor::kValueSize];
    return GetText(key, text) ? parseDecimal(text) : defaultValue;
}

bool MlkTvConfigs::GetBool(const char* key, bool defaultValue) const {
    char text[ConfigEditor::kValueSize];
    if (!GetText(key, text)) {
        return defaultValue;
    }
    // "false" has no digits: it needs no case of its own.
    return strcmp(text, "true") == 0 || parseDecimal(text) > 0;
}

void MlkTvConfigs::Write(const TvConfigInfo& info, const TvSystemRow& row) {
    WriteText(row.key, std::to_string(info.*row.field));
}

void MlkTvConfigs::Write(const TvConfigInfo& info, const TvFlagRow& row) {
    WriteText(row.key, info.*row.field ? "true" : "false");
}

void MlkTvConfigs::WriteText(const char* key, const std::string& text) {
    for (const auto& editor : mEditorLst) {
        // An editor that cannot store it keeps nobody from seeing the change.
        editor->Set(key, text.c_str());
    }
}

OptionalInt32 MlkTvConfigs::Set(const TvSystemRow& row, int32_t system) {
    if (system < row.least || system > row.most) {
        return {false, system};
    }
    const std::lock_guard<std::mutex> guard(mChangeLock);
    if (mConfigInfo.*row.field != system) {
        TvConfigInfo info = mConfigInfo;
        info.*row.field = system;
        Publish(info);
        Write(info, row);
    }
    return {true, system};
}

OptionalBool MlkTvConfigs::Set(const TvFlagRow& row, bool enabled) {
    const std::lock_guard<std::mutex> guard(mChangeLock);
    const bool forced = row.rule == FlagRule::CAPTION && !mConfigInfo.mCloseCaptionEnabled;
    const bool clearing = row.rule == FlagRule::CAPTION_MASTER && !enabled;
    TvConfigInfo info = mConfigInfo;
    info.*row.field = enabled && !forced;
    for (const TvFlagRow* caption : kCaptions) {
        info.*caption->field = info.*caption->field && !clearing;
    }
    const bool changed = info.*row.field != mConfigInfo.*row.field;
    Publish(info);
    // What the master turns off is written even where it is off: the file may say otherwise.
    if (changed || forced) {
        Write(info, row);
    }
    if (clearing) {
        for (const TvFlagRow* caption : kCaptions) {
            Write(info, *caption);
        }
    }
    return {true, info.*row.field};
}

Return<void> MlkTvConfigs::getFlag(ConfigType type, getFlag_cb _hidl_cb) {
    const TvFlagRow* row = findFlag(type);
    if (row == nullptr) {
        __android_log_print(ANDROID_LOG_DEBUG, kTvConfigsTag, "unknown config type, return false");
        _hidl_cb({false, false});
    } else {
        _hidl_cb({true, Cached(row->field)});
    }
    return Void();
}

Return<void> MlkTvConfigs::setFlag(ConfigType type, bool enabled, setFlag_cb _hidl_cb) {
    const TvFlagRow* row = findFlag(type);
    if (row != nullptr) {
        return (this->*row->setter)(enabled, std::move(_hidl_cb));
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTvConfigsTag, "unknown type, set value to false");
    _hidl_cb({false, enabled});
    return Void();
}

bool MlkTvConfigs::Reload(const char* path) {
    // The name of the method that was called.
    constexpr char kMethod[] = "reloadTvConfig";
    if (path == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTvConfigsTag,
                            "[%s:%d] invalid paramter (path is null)", kMethod, __LINE__);
        return false;
    }
    if (mFileEditor == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTvConfigsTag,
                            "[%s:%d] invalid paramter (mEditorLst's size is 0)", kMethod, __LINE__);
        return false;
    }
    const std::lock_guard<std::mutex> guard(mChangeLock);
    if (!mFileEditor->Update(path)) {
        return false;
    }
    InitDefaultValue();
    mConfigInfo.Dump();
    return true;
}

Return<void> MlkTvConfigs::reloadTvConfig(const hidl_string& path, reloadTvConfig_cb _hidl_cb) {
    _hidl_cb({true, Reload(path.c_str())});
    return Void();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
