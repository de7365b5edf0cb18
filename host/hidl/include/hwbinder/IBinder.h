#pragma once

#include <utils/Errors.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

#include <cstdint>
#include <functional>

namespace android::hardware {

class BHwBinder;
class Parcel;

/** An object that can be called, in this process or in another. Thread-safe. */
class IBinder : public virtual RefBase {
  public:
    /** Receives the reply as soon as it is complete, while everything it points to is alive. */
    using TransactCallback = std::function<void(Parcel&)>;

    /** The caller does not wait and gets no answer. */
    static constexpr uint32_t FLAG_ONEWAY = 1;

    /** Receives the death of a remote object's process. */
    class DeathRecipient : public virtual RefBase {
      public:
        /** who: the dead object, while its proxy lives. Runs on a thread of the RPC pool. */
        virtual void binderDied(const wp<IBinder>& who) = 0;
    };

    /**
     * Runs the method `code` with the arguments in data. reply receives the answer and may be null
     * when the caller does not want it. flags: FLAG_ONEWAY or 0. callback: also receives the reply;
     * may be null.
     *
     * DEAD_OBJECT when the object's process is gone. FAILED_TRANSACTION when data or the reply is
     * too large to send or contains an invalid descriptor, or when the socket stays full for a
     * one-way call. Otherwise the status of the parcel, the stub or the method.
     */
    virtual status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                              TransactCallback callback = nullptr) = 0;

    /**
     * Reports the death of the object's process once. DEAD_OBJECT when it is dead already,
     * INVALID_OPERATION for an object of this process.
     */
    virtual status_t linkToDeath(const sp<DeathRecipient>& recipient) = 0;
    /** Unlinks a recipient; NAME_NOT_FOUND when it is not linked. */
    virtual status_t unlinkToDeath(const wp<DeathRecipient>& recipient) = 0;

    /** Returns the object itself when it lives in this process, otherwise null. */
    virtual BHwBinder* localBinder() { return nullptr; }
};

/** Base of generated stubs: an object of this process. */
class BHwBinder : public IBinder {
  public:
    /** Calls onTransact with a callback and a reply even when the caller passes neither. */
    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                      TransactCallback callback = nullptr) override;
    /** Both return INVALID_OPERATION: an object of this process dies with it. */
    status_t linkToDeath(const sp<DeathRecipient>& recipient) override;
    status_t unlinkToDeath(const wp<DeathRecipient>& recipient) override;
    BHwBinder* localBinder() override { return this; }

  protected:
    /**
     * Decodes the call, calls the implementation and encodes the answer. Calls the callback with
     * the reply as soon as the implementation has answered. A status other than OK without a
     * callback is the caller's error. Any thread of the RPC pool calls it, several at once.
     */
    virtual status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply,
                                uint32_t flags = 0, TransactCallback callback = nullptr) = 0;

    /** Has no effect: only devices have security labels of callers. */
    void setRequestingSid(bool /* requested */) {}

    /** The scheduling that the object asked for; generated code uses these members. */
    int mSchedPolicy = 0;
    int mSchedPriority = 0;
};

/** Holds the remote object of a proxy. */
class BpHwRefBase : public virtual RefBase {
  public:
    /** Lives as long as the proxy. */
    IBinder* remote() const { return mRemote.get(); }

  protected:
    explicit BpHwRefBase(const sp<IBinder>& remote) : mRemote(remote) {}

  private:
    const sp<IBinder> mRemote;
};

/** The view that generated code has of a proxy. */
class IInterface : public virtual RefBase {
  public:
    /** Returns the remote object; null for null. */
    static sp<IBinder> asBinder(const IInterface* interface);
    static sp<IBinder> asBinder(const sp<IInterface>& interface) {
        return asBinder(interface.get());
    }

  protected:
    virtual IBinder* onAsBinder() = 0;
};

/** Base of generated proxies. */
template <typename INTERFACE>
class BpInterface : public INTERFACE, public IInterface, public BpHwRefBase {
  public:
    explicit BpInterface(const sp<IBinder>& remote) : BpHwRefBase(remote) {}

  protected:
    IBinder* onAsBinder() override { return remote(); }
};

}  // namespace android::hardware
