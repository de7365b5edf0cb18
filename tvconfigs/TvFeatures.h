#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "common/Partitions.h"
#include "common/Properties.h"
#include "tvconfigs/ConfigEditor.h"
#include "tvconfigs/FileConfigEditor.h"
#include "tvconfigs/TvConfigInfo.h"
#include "tvconfigs/TvConfigItems.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The TV feature file of a set.
 *
 * @param path  the file that the project names; null for none
 * @return `path` if it can be read, else "/tv.config" on the tvconfigs partition
 */
std::string tvFeatureFile(const char* path, const Partitions& partitions);

/**
 * The television features of one set, and its analogue and digital TV system.
 *
 * Every value is kept under a key (TvConfigItems.h). It is loaded from the TV feature file if
 * that holds the key, else from the system property of that name, else it is false or 0. The
 * getters give what was loaded or set last; a property that another program changes is seen at the
 * next reload. A change goes to the property, and to the file if that holds the key.
 *
 * Knows no service and no process: a program may have the features of any number of sets side by
 * side.
 *
 *     const TvFeatures features(nullptr, partitions, properties);
 *     const bool atv = features.get(kTvFlags[tvFlagItem("atvEnabled")]);
 *
 * Calls may come from any number of threads. Setters and reloads run one after the other, so that
 * values, properties and file agree after any number of them at once; getters do not wait for what
 * these write. Log tag: "MlkTvConfigs".
 */
class TvFeatures {
  public:
    using EditorList = std::vector<std::unique_ptr<ConfigEditor>>;

    /**
     * Loads all values, writes the digital system back and logs all values.
     *
     * @param path        the TV feature file. If it is null or cannot be read, the file is
     *                    "/tv.config" on the tvconfigs partition. If neither can be read, there are
     *                    properties and defaults only
     * @param partitions  the set's mount points
     * @param properties  the set's system properties; must outlive the object
     */
    TvFeatures(const char* path, const Partitions& partitions, Properties& properties);

    /**
     * The same with other editors.
     *
     * @param fileEditor  the one that reload() updates; null for none
     * @param others      those that are asked and written after it
     */
    TvFeatures(std::unique_ptr<FileConfigEditor> fileEditor, EditorList others);

    TvFeatures(const TvFeatures&) = delete;
    TvFeatures& operator=(const TvFeatures&) = delete;

    /** The value of a system or of a flag. */
    int32_t get(const TvSystemRow& row) const { return Cached(row.field); }
    bool get(const TvFlagRow& row) const { return Cached(row.field); }

    /**
     * Sets a system. Writes it if it changes, and serves it even if it cannot be stored.
     *
     * @return false, with nothing changed, if it is outside of the row's range
     */
    bool set(const TvSystemRow& row, int32_t system);

    /**
     * Sets a flag. Writes it if it changes, and serves it even if it cannot be stored.
     *
     * The captions have a rule of their own: while their master is false, they are false. Setting
     * the master to false writes false to the three of them, and setting one of them while the
     * master is false writes false to it, every time.
     *
     * @return the value afterwards
     */
    bool set(const TvFlagRow& row, bool enabled);

    /**
     * Takes the entries of another file, or of the same one again, and loads all values as at the
     * start. Later writes go to the file of the start, which takes over all entries then.
     *
     * If memory runs out, entries and values stay as they were.
     *
     * @param path  null is refused
     * @return false, with nothing changed, if the file cannot be read
     */
    bool reload(const char* path);

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
    template <typename WriteRows>
    void Change(const TvConfigInfo& info, const WriteRows& writeRows);

    template <typename Value>
    Value Cached(Value TvConfigInfo::*field) const {
        const std::lock_guard<std::mutex> guard(mInfoLock);
        return mConfigInfo.*field;
    }

    // Held by setters and reloads from beginning to end, and nowhere else; guards the editors.
    std::mutex mChangeLock;
    // Held to change mConfigInfo, inside mChangeLock, and to read it without mChangeLock; only for
    // a copy.
    mutable std::mutex mInfoLock;
    TvConfigInfo mConfigInfo;
    EditorList mEditorLst;                // in the order in which they are asked and written
    FileConfigEditor* const mFileEditor;  // the first of them; null if there is no file
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
