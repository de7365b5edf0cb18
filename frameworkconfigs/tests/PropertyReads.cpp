#include "frameworkconfigs/tests/PropertyReads.h"

#include <cutils/properties.h>

#include <mutex>
#include <utility>

namespace {

std::mutex gLock;
std::vector<std::string> gReads;

void record(const std::string& read) {
    const std::lock_guard<std::mutex> guard(gLock);
    gReads.push_back(read);
}

}  // namespace

std::vector<std::string> takePropertyReads() {
    const std::lock_guard<std::mutex> guard(gLock);
    return std::exchange(gReads, {});
}

// The linker turns calls of NAME into calls of __wrap_NAME, and __real_NAME into NAME.
extern "C" {

int __real_property_get(const char* key, char* value, const char* defaultValue);
int8_t __real_property_get_bool(const char* key, int8_t defaultValue);
int32_t __real_property_get_int32(const char* key, int32_t defaultValue);

int __wrap_property_get(const char* key, char* value, const char* defaultValue) {
    record(key);
    return __real_property_get(key, value, defaultValue);
}

int8_t __wrap_property_get_bool(const char* key, int8_t defaultValue) {
    record(key);
    return __real_property_get_bool(key, defaultValue);
}

int32_t __wrap_property_get_int32(const char* key, int32_t defaultValue) {
    record(key);
    return __real_property_get_int32(key, defaultValue);
}
}
