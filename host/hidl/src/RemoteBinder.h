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

/**
 * An object in another process. Keeps one connection for each concurrent call: one at first, more
 * by the service's name as needed. An object that arrived as an argument has no name and only one
 * connection; calls to it take turns.
 *
 * callLimit() bounds a call including all its waiting. A call that takes longer fails with
 * TIMED_OUT. If its request was already sent, the object counts as dead from then on, because the
 * connection's next message is unknown.
 *
 * The object belongs to one server process. When that process is gone the object stays dead, even
 * when another server takes the name.
 *
 * Calls of one thread, one-way calls included, arrive in order as long as no other thread calls
 * through the same object. When a call leads back to its caller through an argument, another thread
 * of the caller's pool answers it. If that one calls an object without a name that waits for it,
 * both wait for ever. Thread-safe.
 */
class RemoteBinder : public IBinder {
  public:
    /** Connects to the service of that name; null when no server answers. */
    static sp<RemoteBinder> connect(const std::string& name);
    /** Makes the object for a connection that arrived in a parcel. */
    static sp<RemoteBinder> fromConnection(unique_fd connection);
    ~RemoteBinder() override;

    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                      TransactCallback callback) override;
    status_t linkToDeath(const sp<DeathRecipient>& recipient) override;
    status_t unlinkToDeath(const wp<DeathRecipient>& recipient) override;

    /** The pool calls it when the other end of the first connection closes. */
    void hearOfDeath();

  private:
    RemoteBinder(std::string name, uint64_t server, unique_fd first);

    // A connection, with buffers that its calls reuse.
    struct Link {
        explicit Link(unique_fd connection) : socket(std::move(connection)) {}
        const unique_fd socket;
        OutgoingMessage call;
        MessageReader replies{kMaxReplyBody};
    };

    // Null when the object is dead or the time is over.
    Link* acquire(const Deadline& end);
    // Keeps a new connection, which is not free yet.
    Link* addLinkLocked(unique_fd connection);
    void release(Link* link);
    bool isDead();
    void markDead();
    void markDeadLocked();
    // What became of a call that was to be sent.
    struct Exchanged {
        status_t status;
        bool isLost;  // the connection is no longer usable
    };
    Exchanged exchange(Link* link, bool oneway, Parcel* reply, const Deadline& end);
    status_t timedOut() const;

    const std::string mName;  // empty for an object without a name
    const uint64_t mServer;

    std::mutex mMutex;
    std::condition_variable mFreed;
    std::vector<std::unique_ptr<Link>> mLinks;    // under mMutex; the death watch uses the first
    std::vector<Link*> mFree;                     // under mMutex: the links that no call uses
    size_t mOpening = 0;                          // under mMutex: connections being opened
    bool mDead = false;                           // under mMutex
    std::vector<sp<DeathRecipient>> mRecipients;  // under mMutex
    uint64_t mWatch = 0;                          // under mMutex: the pool's id of the watch
};

}  // namespace android::hardware::transport
