#include <hidl/HidlToString.h>

#include <log/log.h>

#include <cinttypes>
#include <cstdio>

namespace android::hardware {

namespace details {

void logAlwaysFatal(const char* message) {
    LOG_ALWAYS_FATAL("%s", message);
}

std::string toHexString(uint64_t value) {
    char text[19];
    (void)snprintf(text, sizeof(text), "0x%" PRIx64, value);
    return text;
}

}  // namespace details

std::string toString(const hidl_string& text) {
    return "\"" + std::string(text) + "\"";
}

std::string toString(const hidl_handle& handle) {
    const native_handle_t* native = handle.getNativeHandle();
    if (native == nullptr) {
        return "no handle";
    }
    return "handle of " + std::to_string(native->numFds) + " descriptors";
}

std::string toString(const hidl_memory& memory) {
    return "memory " + toString(memory.name()) + " of " + std::to_string(memory.size()) + " bytes";
}

std::string toString(const void* pointer) {
    return details::toHexString(reinterpret_cast<uintptr_t>(pointer));
}

}  // namespace android::hardware
