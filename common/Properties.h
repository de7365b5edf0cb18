#pragma once

#include <cstdint>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The system properties of one set.
 *
 * The service uses those of the process (platform/Platform.h); a program that inspects another set
 * implements its own. Keys are NUL-terminated. Values have at most 91 bytes. Implementations are
 * thread-safe.
 */
class Properties {
  public:
    Properties() = default;
    virtual ~Properties() = default;
    Properties(const Properties&) = delete;
    Properties& operator=(const Properties&) = delete;

    /** Returns the value of a property; empty if the property is missing or empty. */
    virtual std::string get(const char* key) const = 0;

    /** True for "1", "y", "yes", "on", "true"; false for their opposites; else the default. */
    virtual bool getBool(const char* key, bool defaultValue) const = 0;

    /** The value as a number, whose prefix selects the base ("0x10" is 16); else the default. */
    virtual int32_t getInt32(const char* key, int32_t defaultValue) const = 0;

    /** Sets a property. @return false if the set refuses the key or the value */
    virtual bool set(const char* key, const char* value) = 0;
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
