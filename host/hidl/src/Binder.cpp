#include <hidl/HidlBinderSupport.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/Static.h>
#include <hwbinder/IBinder.h>
#include <hwbinder/ProcessState.h>
#include <unistd.h>

#include <android/hidl/base/1.0/BnHwBase.h>

#include "ThreadPool.h"

namespace android::hardware {

status_t BHwBinder::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                             TransactCallback callback) {
    // Generated stubs use both without checking for null.
    if (callback == nullptr) {
        callback = [](Parcel&) {};
    }
    if (reply != nullptr) {
        return onTransact(code, data, reply, flags, std::move(callback));
    }
    Parcel unwanted;
    return onTransact(code, data, &unwanted, flags, std::move(callback));
}

// An object of this process dies with it, so a recipient could never be called.
status_t BHwBinder::linkToDeath(const sp<DeathRecipient>&) {
    return INVALID_OPERATION;
}
status_t BHwBinder::unlinkToDeath(const wp<DeathRecipient>&) {
    return INVALID_OPERATION;
}

sp<IBinder> IInterface::asBinder(const IInterface* interface) {
    if (interface == nullptr) {
        return nullptr;
    }
    return const_cast<IInterface*>(interface)->onAsBinder();
}

sp<ProcessState> ProcessState::self() {
    // Leaked: generated code may ask for it while the process ends.
    static const auto* state = new sp<ProcessState>(new ProcessState);
    return *state;
}

void ProcessState::startThreadPool() {
    transport::ThreadPool::instance().start();
}

void configureRpcThreadpool(size_t maxThreads, bool callerWillJoin) {
    transport::ThreadPool::instance().configure(maxThreads, callerWillJoin);
}

void joinRpcThreadpool() {
    transport::ThreadPool::instance().join();
}

sp<IBinder> getOrCreateCachedBinder(::android::hidl::base::V1_0::IBase* interface) {
    if (interface == nullptr) {
        return nullptr;
    }
    if (interface->isRemote()) {
        auto* proxy = dynamic_cast<BpHwRefBase*>(interface);
        return proxy == nullptr ? nullptr : sp<IBinder>(proxy->remote());
    }
    std::string descriptor;
    const auto asked = interface->interfaceDescriptor(
            [&](const hidl_string& name) { descriptor = std::string(name); });
    const auto make = details::getBnConstructorMap().get(descriptor, nullptr);
    if (!asked.isOk() || make == nullptr) {
        return nullptr;
    }
    return details::gBnMap->getOrMake(
            interface, [](const wp<IBinder>& stub) { return stub.promote(); },
            [&] { return make(interface); });
}

namespace details {

BnConstructorMap& getBnConstructorMap() {
    static auto* map = new BnConstructorMap;
    return *map;
}

namespace {
template <typename Map>
Map& leaked() {
    static auto* map = new Map;
    return *map;
}
}  // namespace

const LazyMap<ConcurrentMap<IBase*, wp<IBinder>>> gBnMap(&leaked);
const LazyMap<ConcurrentMap<wp<IBase>, SchedPrio>> gServicePrioMap(&leaked);
const LazyMap<ConcurrentMap<wp<IBase>, bool>> gServiceSidMap(&leaked);

int32_t getPidIfSharable() {
    return getpid();
}
bool debuggable() {
    return true;
}

sp<IBase> implementationOf(BHwBinder* stub) {
    auto* base = dynamic_cast<::android::hidl::base::V1_0::BnHwBase*>(stub);
    return base == nullptr ? nullptr : base->getImpl();
}

Return<bool> canCastInterface(IBase* object, const char* descriptor, bool emitError) {
    bool can = false;
    const auto asked = object->interfaceChain([&](const hidl_vec<hidl_string>& chain) {
        for (const hidl_string& name : chain) {
            can = can || name == descriptor;
        }
    });
    if (!asked.isOk() && emitError) {
        return Status::fromStatusT(DEAD_OBJECT);
    }
    return can;
}

}  // namespace details
}  // namespace android::hardware
