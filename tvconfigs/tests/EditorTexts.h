#pragma once

#include <optional>
#include <string>

#include "host/testing/TempDir.h"
#include "tvconfigs/FileConfigEditor.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The value that the editor has for the key; nullopt if it has no such entry. */
inline std::optional<std::string> valueOf(const ConfigEditor& editor, const std::string& key) {
    char value[ConfigEditor::kValueSize] = {};
    if (!editor.Get(key.c_str(), value)) {
        return {};
    }
    return value;
}

/** All entries of the editor, one a line, as it writes them. */
inline std::string entriesOf(FileConfigEditor& editor) {
    const ::mlk::testing::TempDir dir;
    return editor.Save(dir.path("entries").c_str()) ? dir.read("entries") : "not written";
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
