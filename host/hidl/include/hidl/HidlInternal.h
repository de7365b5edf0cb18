// Basics that every HIDL type uses.
#pragma once

#include <cstdint>
#include <string>

namespace android::hardware::details {

/**
 * Tags by which templates tell the pure, proxy, stub and passthrough classes of an interface apart.
 */
struct i_tag {};
struct bnhw_tag {};
struct bphw_tag {};
struct bs_tag {};

/** Prints the message at fatal priority and aborts the process. */
[[noreturn]] void logAlwaysFatal(const char* message);

/**
 * A pointer that takes eight bytes on every architecture, so that structs have the same layout in
 * 32-bit and 64-bit processes.
 */
template <typename T>
class hidl_pointer {
  public:
    hidl_pointer() : mPointer(nullptr) {}
    hidl_pointer(T* pointer) : mPointer(pointer) {}
    hidl_pointer& operator=(T* pointer) {
        mPointer = pointer;
        return *this;
    }
    operator T*() const { return mPointer; }
    T* operator->() const { return mPointer; }

  private:
    alignas(8) T* mPointer;
};
static_assert(sizeof(hidl_pointer<int>) == 8, "a pointer has the size that the wire gives it");

/** Base of generated proxies and stubs. Only debuggable devices trace calls. */
class HidlInstrumentor {
  public:
    HidlInstrumentor(const std::string& /* package */, const std::string& /* interface */) {}
    virtual ~HidlInstrumentor() = default;

  protected:
    /** Generated code calls this when a client asks for tracing. It has no effect on a host. */
    void configureInstrumentation(bool /* log */ = true) {}
};

}  // namespace android::hardware::details
