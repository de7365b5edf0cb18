#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// The rules of the TV configuration file in the plainest way, a byte at a time: what the editor is
/// compared with.
struct SlowEditor {
    std::vector<std::pair<std::string, std::string>> items;
    int linesTooLong = 0;

    /// Reads the file; throws std::runtime_error when it cannot be opened.
    void update(const std::string& path);
    bool updateValue(const std::string& key, const std::string& value);
    /// Empties the file, then writes it.
    void save(const std::string& path) const;

  private:
    void takeLine(const char* line);
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
