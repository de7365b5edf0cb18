#include "ServerConnection.h"

#include <hidl/HidlBinderSupport.h>
#include <log/log.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <chrono>
#include <cinttypes>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "Limits.h"
#include "Socket.h"
#include "host/log/LogClient.h"

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware::transport {

namespace {

// How long a thread waits for the next call of the client it has just answered before it serves all
// connections again.
constexpr timeval kStay = {0, 10000};
// How many calls of one client a thread answers in a row when no other thread waits for calls: no
// client waits for more calls of another one.
constexpr int kMostInARow = 16;
// After this many calls in a row the connection leaves the pool's epoll instance, which makes each
// message cheaper. Leaving and coming back costs two more system calls, which pays only for a
// client that goes on.
constexpr int kCallsUntilSilence = 16;
// How long a thread waits for a client to read the next part of a reply before it serves others, as
// long as no other connection needs the thread.
constexpr std::chrono::milliseconds kSendPatience{10};

// The descriptor of an object's interface.
std::string nameOf(const sp<BHwBinder>& object) {
    std::string name = "an object";
    const auto implementation = details::implementationOf(object.get());
    if (implementation == nullptr) {
        return name;
    }
    (void)implementation->interfaceDescriptor([&](const hidl_string& text) { name = text; }).isOk();
    return name;
}

}  // namespace

ServerConnection::ServerConnection(unique_fd socket, const sp<BHwBinder>& object,
                                   std::optional<ConnectionShares::Place> place)
    : mPlace(std::move(place)),
      mSocket(std::move(socket)),
      mObject(object),
      mClient(peerProcess(mSocket.get())),
      mUnsent(mSocket.get()),
      mUnfinished(Stall::Kind::MESSAGE, mSocket.get()) {
    (void)setsockopt(mSocket.get(), SOL_SOCKET, SO_RCVTIMEO, &kStay, sizeof(kStay));
}

status_t ServerConnection::open(BHwBinder* object, unique_fd* end) {
    unique_fd own;
    const status_t status = connectedPair(&own, end);
    if (status != OK) {
        return status;
    }
    auto connection = std::make_shared<ServerConnection>(std::move(own), object);
    ThreadPool& pool = ThreadPool::instance();
    if (pool.add(std::move(connection), true) == 0) {
        return NO_MEMORY;
    }
    pool.start();
    return OK;
}

EventSource::Next ServerConnection::onEvents(uint32_t, ThreadPool& pool) {
    const ::mlk::host::LogClient saidForClient(mClient);
    if (!mUnsent.flush()) {
        return Next::DROP;
    }
    if (!mUnsent.empty()) {
        return Next::WAIT_FOR_SPACE;
    }
    // The first call has arrived. After answering it the thread stays for the next one, which is
    // cheaper than waiting for all connections. If others may need the thread, it only looks
    // whether the next call has arrived, and not for ever.
    int flags = MSG_DONTWAIT;
    for (int calls = 1;; ++calls) {
        switch (mReader.read(mSocket.get(), flags, MSG_DONTWAIT)) {
            case MessageReader::Result::AGAIN:
                return waitForInput();
            case MessageReader::Result::CLOSED:
                return Next::DROP;
            case MessageReader::Result::RUBBISH:
                ALOGD("malformed message, closing the connection");
                return Next::DROP;
            case MessageReader::Result::MESSAGE:
                break;
        }
        mUnfinished.end();
        if (!dispatch(mReader.take(), pool)) {
            return Next::DROP;
        }
        if (!mUnsent.empty()) {
            return Next::WAIT_FOR_SPACE;
        }
        flags = pool.anyThreadWaits() ? 0 : MSG_DONTWAIT;
        if (flags != 0 && calls >= kMostInARow) {
            return waitForInput();
        }
        if (calls == kCallsUntilSilence) {
            pool.silence(*this);
        }
    }
}

EventSource::Next ServerConnection::waitForInput() {
    mReader.trim();
    if (!mReader.hasBegun()) {
        return Next::WAIT_FOR_INPUT;
    }
    const bool kept = mUnfinished.keep(mReader.keptBytes(), mReader.keptDescriptors());
    return kept ? Next::WAIT_FOR_INPUT : Next::DROP;
}

// Runs the call. Returns an error when the call fails.
status_t ServerConnection::serve(IncomingMessage&& message, const IBinder::TransactCallback& answer,
                                 const bool& expected) {
    const uint32_t code = message.header().code;
    const bool oneway = message.header().type == MessageType::ONEWAY_CALL;
    Parcel data;
    Parcel reply;
    status_t status = data.adopt(std::move(message));
    if (status != OK) {
        return status;
    }
    status = mObject->transact(code, data, &reply, oneway ? IBinder::FLAG_ONEWAY : 0, answer);
    if (status != OK || !expected) {
        return status;
    }
    // Generated stubs leave a few base methods unanswered, which means success.
    if (reply.data().empty()) {
        (void)writeToParcel(Status::ok(), &reply);
    }
    answer(reply);
    return OK;
}

bool ServerConnection::dispatch(IncomingMessage&& message, const ThreadPool& pool) {
    const MessageType type = message.header().type;
    const uint32_t code = message.header().code;
    if (type != MessageType::CALL && type != MessageType::ONEWAY_CALL) {
        return false;
    }
    struct {
        ServerConnection* connection;
        const ThreadPool* pool;
        bool expected;  // by the caller, and not given yet
        bool alive;
    } state{this, &pool, type == MessageType::CALL, true};
    // A single pointer fits into the function itself, so copying the function allocates nothing.
    const IBinder::TransactCallback answer = [state = &state](Parcel& parcel) {
        if (!state->expected) {
            return;
        }
        OutgoingMessage& out = state->connection->mReply;
        const status_t encoded = state->connection->encode(parcel);
        if (encoded != OK) {
            out.encodeStatus(encoded);
        }
        state->expected = false;
        state->alive = false;  // unless sending succeeds
        state->alive = state->connection->send(*state->pool);
    };
    status_t status = OK;
    // An exception fails only the current call, not the whole process.
    try {
        status = serve(std::move(message), answer, state.expected);
    } catch (const std::bad_alloc&) {
        ALOGE("no memory for call %u", code);
        status = NO_MEMORY;
    } catch (const std::exception& exception) {
        ALOGE("call %u ended in an exception: %s", code, exception.what());
        status = UNKNOWN_ERROR;
    }
    if (state.expected) {
        mReply.encodeStatus(status);
        state.alive = send(pool);
    }
    return state.alive;
}

status_t ServerConnection::encode(const Parcel& parcel) {
    const status_t status = mReply.encode(parcel, MessageType::REPLY, OK, kMaxReplyBody);
    const uint64_t size = status == OK ? mReply.bodySize() : 0;
    if (size <= kDeviceReplyBody) {
        return status;
    }
    const bool refused = repliesAreLimitedAsOnADevice();
    ALOGW("%s: a reply of %" PRIu64 " bytes %s: a device delivers %" PRIu64 " at most",
          nameOf(mObject).c_str(), size, refused ? "is refused" : "would fail on a device",
          kDeviceReplyBody);
    return refused ? FAILED_TRANSACTION : OK;
}

bool ServerConnection::send(const ThreadPool& pool) {
    Sending& reply = mReply.sending();
    int error = sendPieces(mSocket.get(), &reply, MSG_DONTWAIT);
    // Does not copy the end of a large reply while its client is reading.
    while (error == EAGAIN && reply.begun && pool.anyThreadWaits() &&
           waitFor(mSocket.get(), POLLOUT, kSendPatience)) {
        error = sendPieces(mSocket.get(), &reply, MSG_DONTWAIT);
    }
    bool alive = error == 0 || (error == EAGAIN && mUnsent.keep(reply));
    if (!alive && error != EAGAIN && !reply.begun && !endsConnection(error)) {
        // The kernel refuses the reply for good, for example because of an invalid descriptor.
        ALOGE("a reply cannot be sent: %s", strerror(error));
        mReply.encodeStatus(FAILED_TRANSACTION);
        alive = sendPieces(mSocket.get(), &mReply.sending(), MSG_DONTWAIT) == 0;
    }
    mReply.finish();
    return alive;
}

}  // namespace android::hardware::transport
