#define LOG_TAG "MlkTvConfigs"

#include "tvconfigs/TvFeatures.h"

#include <log/log.h>
#include <unistd.h>

#include <cstring>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

#include "common/Decimal.h"
#include "tvconfigs/PropConfigEditor.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

namespace {

// The row of a flag's getter.
constexpr const TvFlagRow* flag(std::string_view method) {
    return &kTvFlags[tvFlagItem(method)];
}

constexpr const TvSystemRow& kAtvSystem = kTvSystems[tvSystemItem("getAtvSystem")];
constexpr const TvSystemRow& kDtvSystem = kTvSystems[tvSystemItem("getDtvSystem")];

// The order in which values are loaded. A master comes before the flags below it. HDMI comes after
// the other inputs; in the record, which follows the flags' numbers, it comes before them. Both
// orders are fixed: editors are asked in the one, and the dump prints the other.
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

// The order in which the captions are written when their master is set to false.
constexpr const TvFlagRow* kCaptions[] = {flag("atscCloseCaptionEnabled"),
                                          flag("isdbCloseCaptionEnabled"),
                                          flag("ntscCloseCaptionEnabled")};

}  // namespace

std::string tvFeatureFile(const char* path, const Partitions& partitions) {
    if (path != nullptr && access(path, R_OK) == 0) {
        return path;
    }
    return partitions.tvconfigs + kDefaultTvConfigFile;
}

TvFeatures::TvFeatures(const char* path, const Partitions& partitions, Properties& properties)
    : TvFeatures(std::make_unique<FileConfigEditor>(tvFeatureFile(path, partitions).c_str()), [&] {
          EditorList others;
          others.push_back(std::make_unique<PropConfigEditor>(properties));
          return others;
      }()) {}

TvFeatures::TvFeatures(std::unique_ptr<FileConfigEditor> fileEditor, EditorList others)
    : mEditorLst(std::move(others)), mFileEditor(fileEditor.get()) {
    if (fileEditor != nullptr) {
        mEditorLst.insert(mEditorLst.begin(), std::move(fileEditor));
    }
    InitDefaultValue();
    mConfigInfo.Dump();
}

void TvFeatures::InitDefaultValue() {
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

void TvFeatures::Publish(const TvConfigInfo& info) {
    const std::lock_guard<std::mutex> guard(mInfoLock);
    mConfigInfo = info;
}

void TvFeatures::Load(TvConfigInfo& info, const TvSystemRow& row) const {
    info.*row.field = GetInt32(row.key, 0);
}

void TvFeatures::Load(TvConfigInfo& info, const TvFlagRow& row) const {
    const TvFlagRow* const master = masterOf(row);
    info.*row.field = (master == nullptr || info.*master->field) && GetBool(row.key, false);
}

bool TvFeatures::GetText(const char* key, char* text) const {
    for (const auto& editor : mEditorLst) {
        memset(text, 0, ConfigEditor::kValueSize);
        if (editor->Get(key, text)) {
            return true;
        }
    }
    return false;
}

int32_t TvFeatures::GetInt32(const char* key, int32_t defaultValue) const {
    char text[ConfigEditor::kValueSize];
    return GetText(key, text) ? parseDecimal(text) : defaultValue;
}

bool TvFeatures::GetBool(const char* key, bool defaultValue) const {
    char text[ConfigEditor::kValueSize];
    if (!GetText(key, text)) {
        return defaultValue;
    }
    // "false" has no digits: it needs no case of its own.
    return strcmp(text, "true") == 0 || parseDecimal(text) > 0;
}

void TvFeatures::Write(const TvConfigInfo& info, const TvSystemRow& row) {
    WriteText(row.key, std::to_string(info.*row.field));
}

void TvFeatures::Write(const TvConfigInfo& info, const TvFlagRow& row) {
    WriteText(row.key, info.*row.field ? "true" : "false");
}

void TvFeatures::WriteText(const char* key, const std::string& text) {
    for (const auto& editor : mEditorLst) {
        // The change counts even if an editor cannot store it.
        editor->Set(key, text.c_str());
    }
}

// Readers see the change before it is written. If memory runs out, it is taken back, so that the
// client's next attempt writes it.
template <typename WriteRows>
void TvFeatures::Change(const TvConfigInfo& info, const WriteRows& writeRows) {
    const TvConfigInfo former = mConfigInfo;
    Publish(info);
    try {
        writeRows();
    } catch (const std::bad_alloc&) {
        Publish(former);
        throw;
    }
}

bool TvFeatures::set(const TvSystemRow& row, int32_t system) {
    if (system < row.least || system > row.most) {
        return false;
    }
    const std::lock_guard<std::mutex> guard(mChangeLock);
    if (mConfigInfo.*row.field != system) {
        TvConfigInfo info = mConfigInfo;
        info.*row.field = system;
        Change(info, [&] { Write(info, row); });
    }
    return true;
}

bool TvFeatures::set(const TvFlagRow& row, bool enabled) {
    const std::lock_guard<std::mutex> guard(mChangeLock);
    const bool forced = row.rule == FlagRule::CAPTION && !mConfigInfo.mCloseCaptionEnabled;
    const bool clearing = row.rule == FlagRule::CAPTION_MASTER && !enabled;
    TvConfigInfo info = mConfigInfo;
    info.*row.field = enabled && !forced;
    for (const TvFlagRow* caption : kCaptions) {
        info.*caption->field = info.*caption->field && !clearing;
    }
    const bool changed = info.*row.field != mConfigInfo.*row.field;
    Change(info, [&] {
        // A caption that the master turns off is written even if it is off: the file may differ.
        if (changed || forced) {
            Write(info, row);
        }
        if (clearing) {
            for (const TvFlagRow* caption : kCaptions) {
                Write(info, *caption);
            }
        }
    });
    return info.*row.field;
}

bool TvFeatures::reload(const char* path) {
    // The log names the method of the interface.
    constexpr char kMethod[] = "reloadTvConfig";
    if (path == nullptr) {
        ALOGE("[%s:%d] invalid paramter (path is null)", kMethod, __LINE__);
        return false;
    }
    if (mFileEditor == nullptr) {
        ALOGE("[%s:%d] invalid paramter (mEditorLst's size is 0)", kMethod, __LINE__);
        return false;
    }
    const std::lock_guard<std::mutex> guard(mChangeLock);
    const TvConfigInfo former = mConfigInfo;
    FileConfigEditor::Items formerItems;
    if (!mFileEditor->Update(path, &formerItems)) {
        return false;
    }
    try {
        InitDefaultValue();
        mConfigInfo.Dump();
    } catch (const std::bad_alloc&) {
        mFileEditor->restore(std::move(formerItems));
        Publish(former);
        throw;
    }
    return true;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
