// The process-wide tables of the HIDL runtime. The first use creates them, and they are never
// destroyed: generated code uses them in constructors and destructors of other libraries.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/ConcurrentMap.h>
#include <hwbinder/IBinder.h>
#include <sched.h>

#include <functional>
#include <string>

// Generated code uses the name that Android's C library gives the default policy.
#ifndef SCHED_NORMAL
#define SCHED_NORMAL SCHED_OTHER
#endif

namespace android::hardware::details {

/** Scheduling that an object asked for. A host leaves scheduling to the kernel. */
struct SchedPrio {
    int sched_policy;
    int prio;
};

using IBase = ::android::hidl::base::V1_0::IBase;
using BnConstructorMap = ConcurrentMap<std::string, std::function<sp<IBinder>(void*)>>;

/**
 * Makes the stub of an interface. The key is the interface's descriptor; the argument is the
 * implementation, as a pointer to the interface.
 */
BnConstructorMap& getBnConstructorMap();

/**
 * Generated code hands every interface's passthrough wrapper to this table, which keeps none: a
 * process of a host uses its own objects without wrappers. The linker then drops their code, which
 * is as large as two thirds of the stubs.
 */
class BsConstructorMap {
  public:
    template <typename Make>
    void set(const char* /* descriptor */, const Make&) {}
    size_t erase(const char* /* descriptor */) { return 0; }
};
inline BsConstructorMap getBsConstructorMap() {
    return {};
}

/** A table that generated code reaches with an arrow. */
template <typename Map>
class LazyMap {
  public:
    explicit constexpr LazyMap(Map& (*get)()) : mGet(get) {}
    Map* operator->() const { return &mGet(); }
    Map& operator*() const { return mGet(); }

  private:
    Map& (*mGet)();
};

/** The stub of each implementation while the stub lives: one stub for one implementation. */
extern const LazyMap<ConcurrentMap<IBase*, wp<IBinder>>> gBnMap;
extern const LazyMap<ConcurrentMap<wp<IBase>, SchedPrio>> gServicePrioMap;
extern const LazyMap<ConcurrentMap<wp<IBase>, bool>> gServiceSidMap;

}  // namespace android::hardware::details
