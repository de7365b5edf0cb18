#pragma once

#include <cstdint>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The system properties of one set.
 *
 * The service uses the process's own (platform/Platform.h); a program that looks at a set from
 * outside brings others. Keys and defaults are NUL-terminated. Values have at most 91 bytes.
 * Implementations take calls from any number of threads.
 */
class Properties {
  public:
    Properties() = default;
    virtual ~Properties() = default;
    Properties(const Properties&) = delete;
    Properties& operator=(const Properties&) = delete;

    /** Value of a property; empty if the set does not have it, or has it with an empty value. */
    virtual std::string get(const char* key) const = 0;

    /** True for "1", "y", "yes", "on" and "true", false for their opposites, else the default. */
    virtual bool getBool(const char* key, bool defaultValue) const = 0;

    /** The value as a number, whose prefix gives its base ("0x10" is 16), else the default. */
    virtual int32_t getInt32(const char* key, int32_t defaultValue) const = 0;

    /** Sets a property. @return false if the set refuses the key or the value */
    virtual bool set(const char* key, const char* value) = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
