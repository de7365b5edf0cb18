#pragma once

#include <hidl/HidlInternal.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace android::hardware {

/**
 * A text that is followed by a NUL and may contain NUL bytes. Owns its bytes unless setToExternal
 * says otherwise. The text is never null, even when made from a null pointer. It has at most 2^32-2
 * bytes; a longer one is fatal. Not thread-safe.
 */
class hidl_string {
  public:
    /** The empty text. */
    hidl_string();
    ~hidl_string();
    /** Copies the bytes, even when the other text does not own them. */
    hidl_string(const hidl_string& other);
    /** Takes the text over; the other one becomes empty. */
    hidl_string(hidl_string&& other) noexcept;
    /** Copies a NUL-terminated text; null gives the empty text. */
    hidl_string(const char* text);
    /** Copies a text that need not be terminated. */
    hidl_string(const char* text, size_t length);
    hidl_string(const std::string& text);

    /** Like the constructors. The given text may be a part of this one. */
    hidl_string& operator=(const hidl_string& other);
    hidl_string& operator=(hidl_string&& other) noexcept;
    hidl_string& operator=(const char* text);
    hidl_string& operator=(const std::string& text);

    /** A copy. */
    operator std::string() const { return {c_str(), size()}; }

    /** The text with its NUL, never null; its length in bytes without the NUL. */
    const char* c_str() const { return mBuffer; }
    size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }
    void clear();

    /**
     * Refers to an external text, which must be NUL-terminated and outlive this object. With
     * shouldOwn, this object frees it with delete[]. A null text gives the empty text.
     */
    void setToExternal(const char* text, size_t length, bool shouldOwn = false);

    /** Offset of the pointer to the text inside the object, for the transport. */
    static constexpr size_t kOffsetOfBuffer = 0;

  private:
    void assign(const char* text, size_t length);
    void moveFrom(hidl_string& other) noexcept;

    details::hidl_pointer<const char> mBuffer;
    uint32_t mSize;
    bool mOwnsBuffer;
    [[maybe_unused]] uint8_t mPad[3];  // is sent along, so it must not leak what was in memory
};
static_assert(sizeof(hidl_string) == 16);

namespace details {
/** A view that is valid as long as the text. */
inline std::string_view viewOf(const hidl_string& text) {
    return {text.c_str(), text.size()};
}
}  // namespace details

/** Compares all bytes, including NUL bytes. */
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

/** Writes the bytes as they are. */
std::ostream& operator<<(std::ostream& stream, const hidl_string& text);

}  // namespace android::hardware
