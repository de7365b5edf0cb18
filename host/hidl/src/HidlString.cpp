#include <hidl/HidlString.h>

#include <cstring>
#include <limits>
#include <ostream>

namespace android::hardware {

namespace {
constexpr char kEmpty[] = "";
}  // namespace

hidl_string::hidl_string() : mBuffer(kEmpty), mSize(0), mOwnsBuffer(false), mPad{} {}
hidl_string::~hidl_string() {
    if (mOwnsBuffer) {
        delete[] c_str();
    }
}
hidl_string::hidl_string(const char* text, size_t length) : hidl_string() {
    assign(text, length);
}
hidl_string::hidl_string(const char* text)
    : hidl_string(text, text == nullptr ? 0 : strlen(text)) {}
hidl_string::hidl_string(const std::string& text) : hidl_string(text.data(), text.size()) {}
hidl_string::hidl_string(const hidl_string& other) : hidl_string(other.c_str(), other.size()) {}
hidl_string::hidl_string(hidl_string&& other) noexcept : hidl_string() {
    moveFrom(other);
}

hidl_string& hidl_string::operator=(const hidl_string& other) {
    if (this != &other) {
        assign(other.c_str(), other.size());
    }
    return *this;
}
hidl_string& hidl_string::operator=(hidl_string&& other) noexcept {
    if (this != &other) {
        moveFrom(other);
    }
    return *this;
}
hidl_string& hidl_string::operator=(const char* text) {
    assign(text, text == nullptr ? 0 : strlen(text));
    return *this;
}
hidl_string& hidl_string::operator=(const std::string& text) {
    assign(text.data(), text.size());
    return *this;
}

void hidl_string::assign(const char* text, size_t length) {
    if (length == 0) {
        clear();
        return;
    }
    if (length >= std::numeric_limits<uint32_t>::max()) {
        details::logAlwaysFatal("a hidl_string holds at most 2^32-2 bytes");
    }
    // Copy before freeing the old text: the new one may be a part of it.
    auto* copy = new char[length + 1];
    memcpy(copy, text, length);
    copy[length] = '\0';
    setToExternal(copy, length, true);
}

void hidl_string::moveFrom(hidl_string& other) noexcept {
    clear();
    mBuffer = other.c_str();
    mSize = other.mSize;
    mOwnsBuffer = other.mOwnsBuffer;
    other.mBuffer = kEmpty;
    other.mSize = 0;
    other.mOwnsBuffer = false;
}

void hidl_string::clear() {
    setToExternal(kEmpty, 0);
}

void hidl_string::setToExternal(const char* text, size_t length, bool shouldOwn) {
    if (length >= std::numeric_limits<uint32_t>::max()) {
        details::logAlwaysFatal("a hidl_string holds at most 2^32-2 bytes");
    }
    if (mOwnsBuffer) {
        delete[] c_str();
    }
    mBuffer = text == nullptr ? kEmpty : text;
    mSize = text == nullptr ? 0 : static_cast<uint32_t>(length);
    mOwnsBuffer = text != nullptr && shouldOwn;
}

std::ostream& operator<<(std::ostream& stream, const hidl_string& text) {
    return stream << details::viewOf(text);
}

}  // namespace android::hardware
