// IBinder: an object that can be called, here or in another process.
#pragma once

#include <utils/Errors.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

#include <cstdint>
#include <functional>

namespace android::hardware {

class BHwBinder;
class Parcel;

// What calls go to. Thread-safe.
class IBinder : public virtual RefBase {
  public:
    // Given the reply as soon as it is complete, while what it points to is alive.
    using TransactCallback = std::function<void(Parcel&)>;

    // The caller does not wait and hears nothing.
    static constexpr uint32_t FLAG_ONEWAY = 1;

    // Told when the process of a remote object has died.
    class DeathRecipient : public virtual RefBase {
      public:
        // who: the dead object, while its proxy lives. Called on a thread of the RPC pool.
        virtual void binderDied(const wp<IBinder>& who) = 0;
    };

    // Runs method code with the arguments in data; reply holds the answer afterwards, and may be
    // null when nobody wants it. flags: FLAG_ONEWAY or 0. callback: given the reply too, may be
    // null.
    //
    // DEAD_OBJECT when the object's process is gone, FAILED_TRANSACTION when data or the reply is
    // too large to travel, a descriptor in them is none, or a one-way call finds no room in time;
    // what the parcel, the stub or the method answers otherwise.
    virtual status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                              TransactCallback callback = nullptr) = 0;

    // Reports the death of the object's process, once. DEAD_OBJECT when it is dead already,
    // INVALID_OPERATION for an object of this process.
    virtual status_t linkToDeath(const sp<DeathRecipient>& recipient) = 0;
    // Takes a recipient back; NAME_NOT_FOUND when it is not linked.
    virtual status_t unlinkToDeath(const wp<DeathRecipient>& recipient) = 0;

    // The object itself when it lives in this process, else null.
    virtual BHwBinder* localBinder() { return nullptr; }
};

// Base of generated stubs: an object of this process.
class BHwBinder : public IBinder {
  public:
    // Calls onTransact with a callback and a reply, whether the caller has them or not.
    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                      TransactCallback callback = nullptr) override;
    // Both INVALID_OPERATION: an object of this process dies with it.
    status_t linkToDeath(const sp<DeathRecipient>& recipient) override;
    status_t unlinkToDeath(const wp<DeathRecipient>& recipient) override;
    BHwBinder* localBinder() override { return this; }

  protected:
    // Decodes, calls the implementation, encodes; calls the callback with the reply as soon as the
    // implementation answered. A not-OK result without a callback is the caller's error. Called by
    // any thread of the RPC pool, and by several at once.
    virtual status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply,
                                uint32_t flags = 0, TransactCallback callback = nullptr) = 0;

    // Security labels of callers exist on devices only.
    void setRequestingSid(bool /* requested */) {}

    // Scheduling that the object asked for; kept for generated code.
    int mSchedPolicy = 0;
    int mSchedPriority = 0;
};

// What a proxy holds: the remote object.
class BpHwRefBase : public virtual RefBase {
  public:
    // Lives as long as the proxy.
    IBinder* remote() const { return mRemote.get(); }

  protected:
    explicit BpHwRefBase(const sp<IBinder>& remote) : mRemote(remote) {}

  private:
    const sp<IBinder> mRemote;
};

// What generated code sees of a proxy.
class IInterface : public virtual RefBase {
  public:
    // The remote object; null for null.
    static sp<IBinder> asBinder(const IInterface* interface);
    static sp<IBinder> asBinder(const sp<IInterface>& interface) {
        return asBinder(interface.get());
    }

  protected:
    virtual IBinder* onAsBinder() = 0;
};

// Base of generated proxies.
template <typename INTERFACE>
class BpInterface : public INTERFACE, public IInterface, public BpHwRefBase {
  public:
    explicit BpInterface(const sp<IBinder>& remote) : BpHwRefBase(remote) {}

  protected:
    IBinder* onAsBinder() override { return remote(); }
};

}  // namespace android::hardware
