#pragma once

#include <cstddef>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/// A small store of texts under keys, as the TV feature service reads and writes its values. Keys
/// and values are NUL-terminated. Editors take no lock: their owner calls them from one thread at a
/// time.
class ConfigEditor {
  public:
    /// Size of the buffer that Get fills, in bytes: what a system property can hold and a NUL.
    static constexpr size_t kValueSize = 92;

    ConfigEditor() = default;
    virtual ~ConfigEditor() = default;
    ConfigEditor(const ConfigEditor&) = delete;
    ConfigEditor& operator=(const ConfigEditor&) = delete;

    /// Stores `value` under `key`. False when it is not stored, and for a null pointer.
    virtual bool Set(const char* key, const char* value) = 0;

    /// Copies the value stored under `key` into `value`, which has kValueSize bytes. False when
    /// there is none, and for a null pointer.
    virtual bool Get(const char* key, char* value) const = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
