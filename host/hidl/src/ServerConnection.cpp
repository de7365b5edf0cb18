#include "ServerConnection.h"

#include <fcntl.h>
#include <log/log.h>
#include <poll.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Socket.h"

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware::transport {

namespace {

// How long a thread waits for the next call of the client it has just answered before it goes back
// to waiting for everybody.
constexpr timeval kStay = {0, 10 * 1000};
// How long a thread waits in all for a client to take a reply that does not fit into the socket.
constexpr std::chrono::milliseconds kSendPatience{500};

}  // namespace

ServerConnection::ServerConnection(unique_fd socket, const sp<BHwBinder>& object)
    : mSocket(std::move(socket)), mObject(object) {
    (void)setsockopt(mSocket.get(), SOL_SOCKET, SO_RCVTIMEO, &kStay, sizeof(kStay));
}

status_t ServerConnection::open(BHwBinder* object, unique_fd* end) {
    unique_fd own;
    const status_t status = connectedPair(&own, end);
    if (status != OK) return status;
    auto connection = std::make_shared<ServerConnection>(std::move(own), object);
    return ThreadPool::instance().add(std::move(connection), true) == 0 ? NO_MEMORY : OK;
}

EventSource::Next ServerConnection::onEvents(uint32_t, ThreadPool& pool) {
    if (!flush()) return Next::DROP;
    if (!mUnsent.empty()) return Next::WAIT_FOR_SPACE;
    // The first call is there. After its answer the thread stays for the next one, unless others
    // would then be without a thread.
    int flags = MSG_DONTWAIT;
    while (true) {
        switch (mReader.read(mSocket.get(), flags, MSG_DONTWAIT)) {
            case MessageReader::Result::AGAIN:
                return Next::WAIT_FOR_INPUT;
            case MessageReader::Result::CLOSED:
                return Next::DROP;
            case MessageReader::Result::RUBBISH:
                ALOGD("a client sent what is no call; its connection ends");
                return Next::DROP;
            case MessageReader::Result::MESSAGE:
                break;
        }
        if (!dispatch(mReader.take())) return Next::DROP;
        if (!mUnsent.empty()) return Next::WAIT_FOR_SPACE;
        if (!pool.anyThreadWaits()) return Next::WAIT_FOR_INPUT;
        flags = 0;
    }
}

bool ServerConnection::dispatch(IncomingMessage message) {
    const MessageType type = message.header().type;
    const uint32_t code = message.header().code;
    const bool oneway = type == MessageType::ONEWAY_CALL;
    if (!oneway && type != MessageType::CALL) return false;
    Parcel data;
    if (data.adopt(std::move(message)) != OK) {
        ALOGD("a client sent a broken call; its connection ends");
        return false;
    }
    Parcel reply;
    bool answered = false;
    bool alive = true;
    const auto answer = [&](Parcel& parcel) {
        answered = true;
        const status_t encoded = mReply.encode(parcel, MessageType::REPLY, OK, kMaxReplyBody);
        if (encoded != OK) mReply.encodeStatus(encoded);
        alive = send();
    };
    const status_t status =
            mObject->transact(code, data, &reply, oneway ? IBinder::FLAG_ONEWAY : 0,
                              oneway ? IBinder::TransactCallback([](Parcel&) {}) : answer);
    if (!oneway && !answered) {
        if (status == OK) {
            answer(reply);
        } else {
            mReply.encodeStatus(status);
            alive = send();
        }
    }
    mReader.reuse(data.release());
    return alive;
}

bool ServerConnection::send() {
    std::vector<iovec>& pieces = mReply.pieces();
    const size_t whole = pieces.size();
    const void* const start = pieces.empty() ? nullptr : pieces.front().iov_base;
    int error = sendPieces(mSocket.get(), &pieces, mReply.descriptors(), MSG_DONTWAIT);
    const bool anySent = pieces.size() != whole || pieces.front().iov_base != start;
    if (error == EAGAIN && anySent) {
        const auto limit = std::chrono::steady_clock::now() + kSendPatience;
        while (error == EAGAIN) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                    limit - std::chrono::steady_clock::now());
            pollfd socket{mSocket.get(), POLLOUT, 0};
            if (left.count() <= 0 || poll(&socket, 1, static_cast<int>(left.count())) == 0) break;
            error = sendPieces(mSocket.get(), &pieces, {}, MSG_DONTWAIT);
        }
    }
    if (error == EAGAIN) keepUnsent(&pieces, anySent);
    mReply.forgetDescriptors();
    return error == 0 || error == EAGAIN;
}

void ServerConnection::keepUnsent(std::vector<iovec>* pieces, bool anySent) {
    size_t size = 0;
    for (const iovec& piece : *pieces) size += piece.iov_len;
    mUnsent.reserve(size);
    for (const iovec& piece : *pieces) {
        const auto* bytes = static_cast<const uint8_t*>(piece.iov_base);
        mUnsent.insert(mUnsent.end(), bytes, bytes + piece.iov_len);
    }
    mUnsentPosition = 0;
    if (anySent) return;
    for (const int descriptor : mReply.descriptors()) {
        mUnsentDescriptors.emplace_back(fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
    }
}

bool ServerConnection::flush() {
    if (mUnsent.empty()) return true;
    std::vector<iovec> pieces{{mUnsent.data() + mUnsentPosition, mUnsent.size() - mUnsentPosition}};
    std::vector<int> descriptors;
    for (const unique_fd& descriptor : mUnsentDescriptors) descriptors.push_back(descriptor.get());
    const int error = sendPieces(mSocket.get(), &pieces, descriptors, MSG_DONTWAIT);
    if (error != 0 && error != EAGAIN) return false;
    const size_t left = pieces.empty() ? 0 : pieces.front().iov_len;
    if (mUnsentPosition != mUnsent.size() - left) mUnsentDescriptors.clear();
    mUnsentPosition = mUnsent.size() - left;
    if (left == 0) std::vector<uint8_t>().swap(mUnsent);
    return true;
}

namespace {

uint64_t randomNumber() {
    uint64_t number = 0;
    if (getrandom(&number, sizeof(number), 0) != sizeof(number)) {
        number = static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    }
    return number;
}

unique_fd anyDescriptor() {
    return unique_fd(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

}  // namespace

Listener::Listener(unique_fd socket, const sp<BHwBinder>& object)
    : mSocket(std::move(socket)),
      mObject(object),
      mServer(randomNumber()),
      mSpare(anyDescriptor()) {}

EventSource::Next Listener::onEvents(uint32_t, ThreadPool& pool) {
    while (true) {
        unique_fd socket(accept4(mSocket.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (socket.ok()) {
            welcome(std::move(socket), pool);
        } else if (errno == EMFILE || errno == ENFILE) {
            refuseOne();
            return Next::WAIT_FOR_INPUT;
        } else if (errno != EINTR && errno != ECONNABORTED) {
            return Next::WAIT_FOR_INPUT;
        }
    }
}

void Listener::welcome(unique_fd socket, ThreadPool& pool) const {
    if (!peerIsTrusted(socket.get())) {
        ALOGE("refused a connection from another user");
        return;
    }
    const Hello hello{Hello::kMagic, Hello::kVersion, mServer};
    if (::send(socket.get(), &hello, sizeof(hello), MSG_DONTWAIT | MSG_NOSIGNAL) !=
        static_cast<ssize_t>(sizeof(hello))) {
        return;
    }
    pool.add(std::make_shared<ServerConnection>(std::move(socket), mObject), true);
}

void Listener::refuseOne() {
    // Without this the client would stay in the queue and wake a thread over and over.
    mSpare.reset();
    unique_fd(accept4(mSocket.get(), nullptr, nullptr, SOCK_CLOEXEC)).reset();
    mSpare = anyDescriptor();
}

}  // namespace android::hardware::transport
