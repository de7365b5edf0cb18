#include "RemoteBinder.h"

#include <fcntl.h>
#include <hwbinder/Parcel.h>
#include <log/log.h>
#include <sys/epoll.h>

#include <algorithm>
#include <cerrno>

#include "MessageReader.h"
#include "ThreadPool.h"

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware::transport {

namespace {

// A server answers at most its pool's threads at once; more connections than this only queue there.
constexpr size_t kMaxConnections = 32;

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
    unique_fd connection = connectTo(openRuntimeFolder(false), name, &server);
    if (!connection.ok()) return nullptr;
    return sp<RemoteBinder>(new RemoteBinder(name, server, std::move(connection)));
}

sp<RemoteBinder> RemoteBinder::fromConnection(unique_fd connection) {
    return sp<RemoteBinder>(new RemoteBinder({}, 0, std::move(connection)));
}

RemoteBinder::RemoteBinder(std::string name, uint64_t server, unique_fd first)
    : mName(std::move(name)), mServer(server) {
    mFree.push_back(first.get());
    mConnections.push_back(std::move(first));
}

RemoteBinder::~RemoteBinder() {
    if (mWatch != 0) ThreadPool::instance().remove(mWatch);
}

int RemoteBinder::acquire() {
    std::unique_lock<std::mutex> lock(mMutex);
    if (mFree.empty() && !mDead && !mName.empty() && mConnections.size() < kMaxConnections) {
        lock.unlock();
        uint64_t server = 0;
        unique_fd more = connectTo(openRuntimeFolder(false), mName, &server);
        lock.lock();
        // A server that took the name over is not ours; one that has no descriptor left for another
        // connection still answers on those there are.
        if (more.ok() && server == mServer && !mDead) {
            mConnections.push_back(std::move(more));
            return mConnections.back().get();
        }
    }
    mFreed.wait(lock, [this] { return mDead || !mFree.empty(); });
    if (mDead) return -1;
    const int connection = mFree.back();
    mFree.pop_back();
    return connection;
}

void RemoteBinder::release(int connection) {
    std::lock_guard<std::mutex> lock(mMutex);
    mFree.push_back(connection);
    mFreed.notify_one();
}

void RemoteBinder::markDead() {
    std::lock_guard<std::mutex> lock(mMutex);
    mDead = true;
    mFreed.notify_all();
}

status_t RemoteBinder::exchange(int connection, OutgoingMessage* call, bool oneway, Parcel* reply) {
    const int error = sendPieces(connection, &call->pieces(), call->descriptors(), 0);
    call->forgetDescriptors();
    if (error != 0) return DEAD_OBJECT;
    if (oneway) return OK;
    MessageReader reader(kMaxReplyBody);
    MessageReader::Result result;
    do {
        result = reader.read(connection, 0, 0);
    } while (result == MessageReader::Result::AGAIN);
    if (result != MessageReader::Result::MESSAGE) return DEAD_OBJECT;
    IncomingMessage message = reader.take();
    if (message.header().type != MessageType::REPLY) return DEAD_OBJECT;
    const auto status = static_cast<status_t>(message.header().code);
    if (status != OK) return status == DEAD_OBJECT ? FAILED_TRANSACTION : status;
    return reply->adopt(std::move(message));
}

status_t RemoteBinder::transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags,
                                TransactCallback callback) {
    const bool oneway = (flags & FLAG_ONEWAY) != 0;
    OutgoingMessage call;
    const status_t encoded = call.encode(
            data, oneway ? MessageType::ONEWAY_CALL : MessageType::CALL, code, kMaxCallBody);
    if (encoded != OK) return encoded;
    const int connection = acquire();
    if (connection < 0) return DEAD_OBJECT;
    const status_t status = exchange(connection, &call, oneway, reply);
    if (status == DEAD_OBJECT) {
        markDead();
        return status;
    }
    release(connection);
    if (status == OK && callback != nullptr && !oneway) callback(*reply);
    return status;
}

status_t RemoteBinder::linkToDeath(const sp<DeathRecipient>& recipient) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mDead && mWatch == 0) return DEAD_OBJECT;
    if (mWatch == 0) {
        auto watch = std::make_shared<DeathWatch>(this, mConnections.front().get());
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
        mDead = true;
        mFreed.notify_all();
        mWatch = 0;
        recipients.swap(mRecipients);
    }
    for (const sp<DeathRecipient>& recipient : recipients) recipient->binderDied(this);
}

}  // namespace android::hardware::transport
