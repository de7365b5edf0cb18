#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The rules of the TV feature file in the plainest way, a byte at a time. Tests compare the
 * editor with it.
 */
struct SlowEditor {
    std::vector<std::pair<std::string, std::string>> items;
    int linesTooLong = 0;

    /** Reads the file. Throws std::runtime_error if it cannot be opened. */
    void update(const std::string& path);
    /** Changes the first entry of the key. @return false if no entry has the key */
    bool updateValue(const std::string& key, const std::string& value);
    /** Empties the file, then writes it. Throws std::runtime_error if it cannot be opened. */
    void save(const std::string& path) const;

  private:
    void takeLine(const char* line);
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
