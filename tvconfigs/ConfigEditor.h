#pragma once

#include <cstddef>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * A store of texts under keys, where TvFeatures keeps its values.
 *
 * Keys and values are NUL-terminated. Editors take no lock: their owner calls them from one thread
 * at a time.
 */
class ConfigEditor {
  public:
    /** Bytes of the buffer that Get() fills: the longest value of a system property and a NUL. */
    static constexpr size_t kValueSize = 92;

    ConfigEditor() = default;
    virtual ~ConfigEditor() = default;
    ConfigEditor(const ConfigEditor&) = delete;
    ConfigEditor& operator=(const ConfigEditor&) = delete;

    /** Stores `value` under `key`. @return false if it is not stored, or for a null pointer */
    virtual bool Set(const char* key, const char* value) = 0;

    /**
     * Copies the value of `key` into `value`, a buffer of kValueSize bytes.
     *
     * @return false if the key has no value, or for a null pointer
     */
    virtual bool Get(const char* key, char* value) const = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
