// RemoteBinder: an object in another process.
#pragma once

#include <hwbinder/IBinder.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "MessageReader.h"
#include "Socket.h"
#include "Wire.h"

namespace android::hardware::transport {

// Carries calls over as many connections as threads call at once: one to begin with, more by the
// service's name as they are needed. An object that was handed over as an argument has no name and
// its one connection; calls to it take turns.
//
// A call may take as long as callLimit() says, with all that it waits for. One that takes longer
// fails with TIMED_OUT. When its request was sent already, the object counts as dead from then on:
// what would arrive next on that connection is unknown.
//
// It stays the object of the server that it was made for: when that process is gone it is dead for
// good, even when another server has taken the name.
//
// Calls of one thread, one-way ones among them, arrive in their order as long as no other thread
// calls through the same object. A call that leads back to its caller, through an argument, is
// answered by another thread of the caller's pool; if it in turn calls an object without a name
// that waits for it, both wait for ever. Thread-safe.
class RemoteBinder : public IBinder {
  public:
    // The service of that name, or null when nobody answers.
    static sp<RemoteBinder> connect(const std::string& name);
    // The object at the other end of a connection that arrived in a parcel.
    static sp<RemoteBinder> fromConnection(unique_fd connection);
    ~RemoteBinder() override;

    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                      TransactCallback callback) override;
    status_t linkToDeath(const sp<DeathRecipient>& recipient) override;
    status_t unlinkToDeath(const wp<DeathRecipient>& recipient) override;

    // Called by the pool when the other end of the first connection is gone.
    void hearOfDeath();

  private:
    RemoteBinder(std::string name, uint64_t server, unique_fd first);

    // A connection, and what its calls leave to be used by the next.
    struct Link {
        explicit Link(unique_fd connection) : socket(std::move(connection)) {}
        const unique_fd socket;
        OutgoingMessage call;
        MessageReader replies{kMaxReplyBody};
    };

    // Null when the object is dead, or the time is over.
    Link* acquire(const Deadline& end);
    void release(Link* link);
    bool isDead();
    void markDead();
    void markDeadLocked();
    // lost: set when nothing more can come over that connection.
    status_t exchange(Link* link, bool oneway, Parcel* reply, const Deadline& end, bool* lost);
    status_t timedOut() const;

    const std::string mName;  // empty for an object without a name
    const uint64_t mServer;

    std::mutex mMutex;
    std::condition_variable mFreed;
    std::vector<std::unique_ptr<Link>> mLinks;    // under mMutex; the first is the one watched
    std::vector<Link*> mFree;                     // under mMutex: those that no call uses
    size_t mOpening = 0;                          // under mMutex: connections being made
    bool mDead = false;                           // under mMutex
    std::vector<sp<DeathRecipient>> mRecipients;  // under mMutex
    uint64_t mWatch = 0;                          // under mMutex: the pool's number of the watch
};

}  // namespace android::hardware::transport
