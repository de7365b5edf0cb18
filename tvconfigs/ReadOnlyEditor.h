#pragma once

#include <memory>
#include <utility>

#include "tvconfigs/ConfigEditor.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Gives the values of another editor and stores nothing.
 *
 * TvFeatures writes the digital system back when it loads its values. A program that must not
 * change a set's file and properties wraps the editors:
 *
 *     TvFeatures::EditorList editors;
 *     editors.push_back(std::make_unique<ReadOnlyEditor>(
 *             std::make_unique<FileConfigEditor>(tvFeatureFile(path, partitions).c_str())));
 *     editors.push_back(std::make_unique<ReadOnlyEditor>(
 *             std::make_unique<PropConfigEditor>(properties)));
 *     const TvFeatures features(nullptr, std::move(editors));
 */
class ReadOnlyEditor : public ConfigEditor {
  public:
    /** @param editor  has the values; not null */
    explicit ReadOnlyEditor(std::unique_ptr<const ConfigEditor> editor)
        : mEditor(std::move(editor)) {}

    /** Changes nothing. @return false for a null pointer, else true, as if it were stored */
    bool Set(const char* key, const char* value) override {
        return key != nullptr && value != nullptr;
    }

    /** Asks the other editor. */
    bool Get(const char* key, char* value) const override { return mEditor->Get(key, value); }

  private:
    const std::unique_ptr<const ConfigEditor> mEditor;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
