// The process-wide tables of the HIDL runtime. They are made at first use and never destroyed, for
// generated code reaches them from constructors and destructors of other libraries.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/ConcurrentMap.h>
#include <hwbinder/IBinder.h>
#include <sched.h>

#include <functional>
#include <string>

// Generated code names the default policy as Android's C library does.
#ifndef SCHED_NORMAL
#define SCHED_NORMAL SCHED_OTHER
#endif

namespace android::hardware::details {

// Scheduling that an object asked for; a host lets the kernel decide.
struct SchedPrio {
    int sched_policy;
    int prio;
};

using IBase = ::android::hidl::base::V1_0::IBase;
using BnConstructorMap = ConcurrentMap<std::string, std::function<sp<IBinder>(void*)>>;
using BsConstructorMap = ConcurrentMap<std::string, std::function<sp<IBase>(void*)>>;

// Makes the stub of an interface by its descriptor; the argument is the implementation, as a
// pointer to the interface.
BnConstructorMap& getBnConstructorMap();
// Makes the passthrough wrapper of an interface by its descriptor.
BsConstructorMap& getBsConstructorMap();

// A table that generated code reaches with an arrow.
template <typename Map>
class LazyMap {
  public:
    explicit constexpr LazyMap(Map& (*get)()) : mGet(get) {}
    Map* operator->() const { return &mGet(); }
    Map& operator*() const { return mGet(); }

  private:
    Map& (*mGet)();
};

// The stub of an implementation while one lives: one implementation, one stub.
extern const LazyMap<ConcurrentMap<IBase*, wp<IBinder>>> gBnMap;
extern const LazyMap<ConcurrentMap<wp<IBase>, SchedPrio>> gServicePrioMap;
extern const LazyMap<ConcurrentMap<wp<IBase>, bool>> gServiceSidMap;

}  // namespace android::hardware::details
