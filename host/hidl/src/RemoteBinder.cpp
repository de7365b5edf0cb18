#include "RemoteBinder.h"

#include <fcntl.h>
#include <hwbinder/Parcel.h>
#include <log/log.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <new>

#include "Limits.h"
#include "RuntimeFolder.h"
#include "ThreadPool.h"

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware::transport {

namespace {

// A server answers at most as many calls at once as its pool has threads; more connections than
// this would only queue.
constexpr size_t kMaxConnections = 32;
// How long a one-way call waits for space in the socket before it fails: its caller must not wait
// for a server that does not read.
constexpr std::chrono::milliseconds kOnewayPatience{1000};

// Waits in the pool until the other end of a connection closes.
class DeathWatch : public EventSource {
  public:
    // Duplicates the descriptor, so that the object may be destroyed before the watch.
    DeathWatch(const wp<RemoteBinder>& object, int connection)
        : mObject(object), mConnection(fcntl(connection, F_DUPFD_CLOEXEC, 0)) {}

    Next onEvents(uint32_t, ThreadPool&) override {
        const sp<RemoteBinder> object = mObject.promote();
        if (object != nullptr) {
            object->hearOfDeath();
        }
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
    unique_fd connection = connectTo(findRuntimeFolder(), name, &server, Deadline(callLimit()));
    if (!connection.ok()) {
        return nullptr;
    }
    return sp<RemoteBinder>(new RemoteBinder(name, server, std::move(connection)));
}

sp<RemoteBinder> RemoteBinder::fromConnection(unique_fd connection) {
    return sp<RemoteBinder>(new RemoteBinder({}, 0, std::move(connection)));
}

RemoteBinder::RemoteBinder(std::string name, uint64_t server, unique_fd first)
    : mName(std::move(name)), mServer(server) {
    mFree.push_back(addLinkLocked(std::move(first)));
}

RemoteBinder::Link* RemoteBinder::addLinkLocked(unique_fd connection) {
    // release() must not run out of memory: the link would be lost after an answered call.
    mFree.reserve(mLinks.size() + 1);
    mLinks.push_back(std::make_unique<Link>(std::move(connection)));
    return mLinks.back().get();
}

RemoteBinder::~RemoteBinder() {
    uint64_t watch;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        watch = mWatch;
    }
    if (watch != 0) {
        ThreadPool::instance().remove(watch);
    }
}

RemoteBinder::Link* RemoteBinder::acquire(const Deadline& end) {
    std::unique_lock<std::mutex> lock(mMutex);
    if (mFree.empty() && !mDead && !mName.empty() && mLinks.size() + mOpening < kMaxConnections) {
        ++mOpening;
        lock.unlock();
        uint64_t server = 0;
        unique_fd more;
        try {
            more = connectTo(findRuntimeFolder(), mName, &server, end);
        } catch (const std::bad_alloc&) {
            ALOGE("no memory for another connection to %s", mName.c_str());
        }
        lock.lock();
        --mOpening;
        // A server that took the name over is a different one. A server that has no other
        // connection for this process still answers on the existing ones.
        if (more.ok() && server == mServer && !mDead) {
            return addLinkLocked(std::move(more));
        }
    }
    const auto isOver = [this] { return mDead || !mFree.empty(); };
    if (end.isNever()) {
        mFreed.wait(lock, isOver);
    } else {
        (void)mFreed.wait_until(lock, end.time(), isOver);
    }
    if (mDead || mFree.empty()) {
        return nullptr;
    }
    Link* const link = mFree.back();
    mFree.pop_back();
    return link;
}

void RemoteBinder::release(Link* link) {
    std::lock_guard<std::mutex> lock(mMutex);
    mFree.push_back(link);
    mFreed.notify_one();
}

bool RemoteBinder::isDead() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mDead;
}

void RemoteBinder::markDead() {
    std::lock_guard<std::mutex> lock(mMutex);
    markDeadLocked();
}

void RemoteBinder::markDeadLocked() {
    if (mDead) {
        return;
    }
    mDead = true;
    mFreed.notify_all();
    // A server that answered with rubbish may live on. Nobody waits for it any longer, and the
    // watch, if there is one, sees its connection end.
    for (const auto& link : mLinks) {
        (void)shutdown(link->socket.get(), SHUT_RDWR);
    }
}

namespace {

// Receives the next message of a connection: MESSAGE; AGAIN when it does not arrive in time; any
// other result when none will follow.
MessageReader::Result receiveMessage(int connection, MessageReader* reader,
                                     IncomingMessage* message, const Deadline& end) {
    const int flags = end.isNever() ? 0 : MSG_DONTWAIT;
    while (true) {
        const MessageReader::Result result = reader->read(connection, flags, flags);
        if (result == MessageReader::Result::MESSAGE) {
            *message = reader->take();
        }
        if (result != MessageReader::Result::AGAIN) {
            return result;
        }
        // A connection that came from another process may be non-blocking. A server that sends
        // without an end has no more time than others.
        const std::chrono::milliseconds left = end.left();
        if (left == std::chrono::milliseconds::zero() || !waitFor(connection, POLLIN, left)) {
            return result;
        }
    }
}

}  // namespace

status_t RemoteBinder::timedOut() const {
    ALOGE("%s does not answer in time",
          mName.empty() ? "an object that was handed over" : mName.c_str());
    return TIMED_OUT;
}

RemoteBinder::Exchanged RemoteBinder::exchange(Link* link, bool oneway, Parcel* reply,
                                               const Deadline& end) {
    const int connection = link->socket.get();
    Sending& sending = link->call.sending();
    std::chrono::milliseconds patience = end.left();
    if (oneway) {
        patience = end.isNever() ? kOnewayPatience : std::min(kOnewayPatience, patience);
    }
    const int error = sendWithin(connection, &sending, patience);
    const bool isBegun = sending.begun;
    link->call.finish();
    if (error == EAGAIN && !oneway) {
        return {timedOut(), true};
    }
    if (error != 0) {
        // When the kernel refuses the call, for example because of an invalid descriptor in it, the
        // connection is unchanged.
        const bool isLost = isBegun || endsConnection(error);
        return {isLost ? DEAD_OBJECT : FAILED_TRANSACTION, isLost};
    }
    if (oneway) {
        return {OK, false};
    }
    IncomingMessage message;
    const MessageReader::Result result = receiveMessage(connection, &link->replies, &message, end);
    if (result == MessageReader::Result::AGAIN) {
        return {timedOut(), true};
    }
    if (result != MessageReader::Result::MESSAGE) {
        return {DEAD_OBJECT, true};
    }
    if (message.header().type != MessageType::REPLY) {
        return {DEAD_OBJECT, true};
    }
    const auto status = static_cast<status_t>(message.header().code);
    if (status == OK) {
        return {reply->adopt(std::move(message)), false};
    }
    // Only the end of the connection means death.
    return {status == DEAD_OBJECT ? FAILED_TRANSACTION : status, false};
}

status_t RemoteBinder::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                                TransactCallback callback) {
    const bool oneway = (flags & FLAG_ONEWAY) != 0;
    const Deadline end(callLimit());
    Link* const link = acquire(end);
    if (link == nullptr) {
        return isDead() ? DEAD_OBJECT : timedOut();
    }
    Exchanged exchanged{DEAD_OBJECT, true};
    try {
        const status_t encoded = link->call.encode(
                data, oneway ? MessageType::ONEWAY_CALL : MessageType::CALL, code, kMaxCallBody);
        if (encoded != OK) {
            link->call.finish();
            release(link);
            return encoded;
        }
        exchanged = exchange(link, oneway, reply, end);
    } catch (const std::bad_alloc&) {
        // The state of the connection is unknown: the object counts as dead.
        link->call.finish();
    }
    if (exchanged.isLost) {
        markDead();
        return exchanged.status;
    }
    release(link);
    if (exchanged.status == OK && callback != nullptr && !oneway) {
        callback(*reply);
    }
    return exchanged.status;
}

status_t RemoteBinder::linkToDeath(const sp<DeathRecipient>& recipient) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (isHungUp(mLinks.front()->socket.get())) {
        markDeadLocked();
    }
    if (mDead) {
        return DEAD_OBJECT;
    }
    if (mWatch == 0) {
        auto watch = std::make_shared<DeathWatch>(this, mLinks.front()->socket.get());
        mWatch = ThreadPool::instance().add(std::move(watch), false);
        if (mWatch == 0) {
            return NO_MEMORY;
        }
    }
    mRecipients.push_back(recipient);
    return OK;
}

status_t RemoteBinder::unlinkToDeath(const wp<DeathRecipient>& recipient) {
    std::lock_guard<std::mutex> lock(mMutex);
    const auto it = std::find_if(mRecipients.begin(), mRecipients.end(),
                                 [&](const sp<DeathRecipient>& one) { return recipient == one; });
    if (it == mRecipients.end()) {
        return NAME_NOT_FOUND;
    }
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
    for (const sp<DeathRecipient>& recipient : recipients) {
        recipient->binderDied(this);
    }
}

}  // namespace android::hardware::transport
