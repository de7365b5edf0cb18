// hidl_string: a text that travels.
#pragma once

#include <hidl/HidlInternal.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace android::hardware {

// A text with a NUL behind its last byte; may hold NUL bytes. Owns its bytes unless it was told not
// to with setToExternal. Never has a null text, not even when made from a null pointer. At most
// 2^32-2 bytes: a longer one is fatal. Not thread-safe.
class hidl_string {
  public:
    // The empty text.
    hidl_string();
    ~hidl_string();
    // A copy of its own, also of a text that the other one only refers to.
    hidl_string(const hidl_string& other);
    // Takes the text over; the empty one is left there.
    hidl_string(hidl_string&& other) noexcept;
    // Copies a NUL-terminated text; null gives the empty one.
    hidl_string(const char* text);
    // Copies a text that need not be terminated.
    hidl_string(const char* text, size_t length);
    hidl_string(const std::string& text);

    // As the constructors; the text given may be a part of this one's.
    hidl_string& operator=(const hidl_string& other);
    hidl_string& operator=(hidl_string&& other) noexcept;
    hidl_string& operator=(const char* text);
    hidl_string& operator=(const std::string& text);

    // A copy.
    operator std::string() const { return {c_str(), size()}; }

    // The text with its NUL, never null; its bytes without it.
    const char* c_str() const { return mBuffer; }
    size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }
    void clear();

    // Refers to a text of somebody else's, which must be NUL-terminated and outlive this one;
    // shouldOwn makes it this one's own, freed with delete[]. A null text gives the empty one.
    void setToExternal(const char* text, size_t length, bool shouldOwn = false);

    // Where the pointer to the text stands inside the object, for the transport.
    static constexpr size_t kOffsetOfBuffer = 0;

  private:
    void assign(const char* text, size_t length);
    void moveFrom(hidl_string& other) noexcept;

    details::hidl_pointer<const char> mBuffer;
    uint32_t mSize;
    bool mOwnsBuffer;
    [[maybe_unused]] uint8_t mPad[3];  // travels: it must not carry what happened to be in memory
};
static_assert(sizeof(hidl_string) == 16);

namespace details {
// Good while the text is.
inline std::string_view viewOf(const hidl_string& text) {
    return {text.c_str(), text.size()};
}
}  // namespace details

// Byte for byte, NUL bytes among them.
inline bool operator==(const hidl_string& a, const hidl_string& b) {
    return details::viewOf(a) == details::viewOf(b);
}
inline bool operator!=(const hidl_string& a, const hidl_string& b) {
    return !(a == b);
}
inline bool operator<(const hidl_string& a, const hidl_string& b) {
    return details::viewOf(a) < details::viewOf(b);
}
inline bool operator==(const hidl_string& a, const char* b) {
    return details::viewOf(a) == b;
}
inline bool operator!=(const hidl_string& a, const char* b) {
    return details::viewOf(a) != b;
}

// Writes the bytes as they are.
std::ostream& operator<<(std::ostream& stream, const hidl_string& text);

}  // namespace android::hardware
