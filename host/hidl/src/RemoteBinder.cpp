#include "RemoteBinder.h"

#include <fcntl.h>
#include <hwbinder/Parcel.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <new>

#include "RuntimeFolder.h"
#include "ThreadPool.h"

namespace android::hardware::transport {

namespace {

// A server answers at most its pool's threads at once; more connections than this only queue there.
constexpr size_t kMaxConnections = 32;
// How long a one-way call waits for room before it fails: its caller is not to wait for a server
// that does not read.
constexpr std::chrono::milliseconds kOnewayPatience{1000};

// Waits in the pool for the other end of a connection to go.
class DeathWatch : public EventSource {
  public:
    // A descriptor of its own for the connection, so that the object may go before the watch.
    DeathWatch(const wp<RemoteBinder>& object, int connection)
        : mObject(object), mConnection(fcntl(connection, F_DUPFD_CLOEXEC, 0)) {}

    Next onEvents(uint32_t, ThreadPool&) override {
        const sp<RemoteBinder> object = mObject.promote();
        if (object != nullptr) object->hearOfDeath();
        return Next::DROP;
    }
    int descriptor() const override { return mConnection.get(); }

  private:
    const wp<RemoteBinder> mObject;
    const unique_fd mConnection;
};

}  // namespace

sp<RemoteBinder> RemoteBinder::connect(const std::string& name) {
    uint64_t server = 0;
    unique_fd connection = connectTo(findRuntimeFolder(), name, &server);
    if (!connection.ok()) return nullptr;
    return sp<RemoteBinder>(new RemoteBinder(name, server, std::move(connection)));
}

sp<RemoteBinder> RemoteBinder::fromConnection(unique_fd connection) {
    return sp<RemoteBinder>(new RemoteBinder({}, 0, std::move(connection)));
}

RemoteBinder::RemoteBinder(std::string name, uint64_t server, unique_fd first)
    : mName(std::move(name)), mServer(server) {
    mLinks.push_back(std::make_unique<Link>(std::move(first)));
    mFree.push_back(mLinks.back().get());
}

RemoteBinder::~RemoteBinder() {
    uint64_t watch;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        watch = mWatch;
    }
    if (watch != 0) ThreadPool::instance().remove(watch);
}

RemoteBinder::Link* RemoteBinder::acquire() {
    std::unique_lock<std::mutex> lock(mMutex);
    if (mFree.empty() && !mDead && !mName.empty() && mLinks.size() + mOpening < kMaxConnections) {
        ++mOpening;
        lock.unlock();
        uint64_t server = 0;
        unique_fd more = connectTo(findRuntimeFolder(), mName, &server);
        lock.lock();
        --mOpening;
        // A server that took the name over is not ours; one that has no descriptor left for another
        // connection still answers on those there are.
        if (more.ok() && server == mServer && !mDead) {
            mLinks.push_back(std::make_unique<Link>(std::move(more)));
            return mLinks.back().get();
        }
    }
    mFreed.wait(lock, [this] { return mDead || !mFree.empty(); });
    if (mDead) return nullptr;
    Link* const link = mFree.back();
    mFree.pop_back();
    return link;
}

void RemoteBinder::release(Link* link) {
    std::lock_guard<std::mutex> lock(mMutex);
    mFree.push_back(link);
    mFreed.notify_one();
}

void RemoteBinder::markDead() {
    std::lock_guard<std::mutex> lock(mMutex);
    markDeadLocked();
}

void RemoteBinder::markDeadLocked() {
    if (mDead) return;
    mDead = true;
    mFreed.notify_all();
    // A server may live on that answered with rubbish; nobody waits for it any longer, and the
    // watch, if there is one, sees its connection end.
    for (const auto& link : mLinks) (void)shutdown(link->socket.get(), SHUT_RDWR);
}

namespace {

// The next message on a connection; false when there will be none.
bool receiveMessage(int connection, MessageReader* reader, IncomingMessage* message) {
    while (true) {
        switch (reader->read(connection, 0, 0)) {
            case MessageReader::Result::MESSAGE:
                *message = reader->take();
                return true;
            case MessageReader::Result::AGAIN:
                // A connection that came from another process may be set not to wait.
                (void)waitFor(connection, POLLIN, kForever);
                break;
            default:
                return false;
        }
    }
}

}  // namespace

status_t RemoteBinder::exchange(Link* link, bool oneway, Parcel* reply) {
    const int connection = link->socket.get();
    Sending& sending = link->call.sending();
    const int error = sendWithin(connection, &sending, oneway ? kOnewayPatience : kForever);
    const bool whole = !sending.begun;
    link->call.finish();
    // A call that the kernel does not take, for a descriptor in it that is none, say, has left the
    // connection as it was.
    if (error != 0) return whole && !endsConnection(error) ? FAILED_TRANSACTION : DEAD_OBJECT;
    if (oneway) return OK;
    IncomingMessage message;
    if (!receiveMessage(connection, &link->replies, &message)) return DEAD_OBJECT;
    if (message.header().type != MessageType::REPLY) return DEAD_OBJECT;
    const auto status = static_cast<status_t>(message.header().code);
    if (status == OK) return reply->adopt(std::move(message));
    // Only the end of the connection means death.
    return status == DEAD_OBJECT ? FAILED_TRANSACTION : status;
}

status_t RemoteBinder::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                                TransactCallback callback) {
    const bool oneway = (flags & FLAG_ONEWAY) != 0;
    Link* const link = acquire();
    if (link == nullptr) return DEAD_OBJECT;
    status_t status = DEAD_OBJECT;
    try {
        status = link->call.encode(data, oneway ? MessageType::ONEWAY_CALL : MessageType::CALL,
                                   code, kMaxCallBody);
        if (status != OK) {
            link->call.finish();
            release(link);
            return status;
        }
        status = exchange(link, oneway, reply);
    } catch (const std::bad_alloc&) {
        // What the connection was left with is unknown: the object counts as dead.
        link->call.finish();
        status = DEAD_OBJECT;
    }
    if (status == DEAD_OBJECT) {
        markDead();
        return status;
    }
    release(link);
    if (status == OK && callback != nullptr && !oneway) callback(*reply);
    return status;
}

status_t RemoteBinder::linkToDeath(const sp<DeathRecipient>& recipient) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (isHungUp(mLinks.front()->socket.get())) markDeadLocked();
    if (mDead) return DEAD_OBJECT;
    if (mWatch == 0) {
        auto watch = std::make_shared<DeathWatch>(this, mLinks.front()->socket.get());
        mWatch = ThreadPool::instance().add(std::move(watch), false);
        if (mWatch == 0) return NO_MEMORY;
    }
    mRecipients.push_back(recipient);
    return OK;
}

status_t RemoteBinder::unlinkToDeath(const wp<DeathRecipient>& recipient) {
    std::lock_guard<std::mutex> lock(mMutex);
    const auto it = std::find_if(mRecipients.begin(), mRecipients.end(),
                                 [&](const sp<DeathRecipient>& one) { return recipient == one; });
    if (it == mRecipients.end()) return NAME_NOT_FOUND;
    mRecipients.erase(it);
    return OK;
}

void RemoteBinder::hearOfDeath() {
    std::vector<sp<DeathRecipient>> recipients;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        markDeadLocked();
        mWatch = 0;
        recipients.swap(mRecipients);
    }
    for (const sp<DeathRecipient>& recipient : recipients) recipient->binderDied(this);
}

}  // namespace android::hardware::transport
