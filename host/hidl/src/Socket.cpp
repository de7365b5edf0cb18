#include "Socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "Wire.h"

namespace android::hardware::transport {

uid_t peerUser(int socket) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    const int got = getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size);
    return got == 0 ? peer.uid : static_cast<uid_t>(-1);
}

pid_t peerProcess(int socket) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    const int got = getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size);
    return got == 0 ? peer.pid : -1;
}

bool peerIsTrusted(int socket) {
    const uid_t user = peerUser(socket);
    return user == geteuid() || user == 0;
}

status_t connectedPair(unique_fd* first, unique_fd* second) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        return -errno;
    }
    first->reset(ends[0]);
    second->reset(ends[1]);
    return OK;
}

std::chrono::milliseconds Deadline::left() const {
    if (isNever()) {
        return kForever;
    }
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(mEnd - Clock::now());
    return std::max(rest, std::chrono::milliseconds::zero());
}

namespace {
bool hasOption(int socket, int option, int wanted) {
    int value = 0;
    socklen_t size = sizeof(value);
    return getsockopt(socket, SOL_SOCKET, option, &value, &size) == 0 && value == wanted;
}
}  // namespace

bool isPacketSocket(int descriptor) {
    return hasOption(descriptor, SO_DOMAIN, AF_UNIX) &&
           hasOption(descriptor, SO_TYPE, SOCK_SEQPACKET);
}

bool isHungUp(int socket) {
    pollfd state{socket, POLLRDHUP, 0};
    return poll(&state, 1, 0) == 1;
}

bool waitFor(int socket, short events, std::chrono::milliseconds limit) {
    const Deadline end(limit);
    while (true) {
        pollfd state{socket, events, 0};
        const int ready = poll(&state, 1, static_cast<int>(end.left().count()));
        if (ready > 0) {
            return true;
        }
        if (ready == 0) {
            return false;
        }
        if (errno != EINTR) {
            return true;  // the next operation on the socket reports the error
        }
    }
}

void Sending::clear() {
    pieces.clear();
    descriptors.clear();
    next = 0;
    begun = false;
    announced = false;
}

size_t Sending::left() const {
    size_t bytes = 0;
    for (size_t i = next; i < pieces.size(); ++i) {
        bytes += pieces[i].iov_len;
    }
    return bytes;
}

namespace {

// Skips the bytes that were sent.
void advance(Sending* sending, size_t sent) {
    sending->begun = true;
    std::vector<iovec>& pieces = sending->pieces;
    while (sending->next < pieces.size() && sent >= pieces[sending->next].iov_len) {
        sent -= pieces[sending->next++].iov_len;
    }
    if (sent == 0) {
        return;
    }
    iovec& piece = pieces[sending->next];
    piece.iov_base = static_cast<uint8_t*>(piece.iov_base) + sent;
    piece.iov_len -= sent;
}

// The next packet of a message: pieces of it, the last one possibly cut. The cut lasts as long as
// the object.
class Packet {
  public:
    explicit Packet(Sending* sending) : mFirst(sending->pieces.data() + sending->next) {
        constexpr size_t kMaxPieces = 256;
        const size_t pieces = std::min(sending->pieces.size() - sending->next, kMaxPieces);
        size_t space = kMostPacketBytes;
        while (mCount < pieces && space > 0) {
            iovec& piece = mFirst[mCount++];
            if (piece.iov_len > space) {
                mCut = piece.iov_len - space;
                piece.iov_len = space;
            }
            space -= piece.iov_len;
        }
    }
    ~Packet() { mFirst[mCount - 1].iov_len += mCut; }
    Packet(const Packet&) = delete;
    Packet& operator=(const Packet&) = delete;

    iovec* pieces() const { return mFirst; }
    size_t count() const { return mCount; }

  private:
    iovec* const mFirst;
    size_t mCount = 0;
    size_t mCut = 0;
};

// Holds the largest number of descriptors that the kernel passes at once.
struct Control {
    alignas(cmsghdr) char bytes[CMSG_SPACE(sizeof(int) * kMaxDescriptors)];
};

void attach(const std::vector<int>& descriptors, Control* control, msghdr* message) {
    const size_t bytes = sizeof(int) * descriptors.size();
    message->msg_control = control->bytes;
    message->msg_controllen = CMSG_SPACE(bytes);
    memset(control->bytes, 0, message->msg_controllen);
    cmsghdr* rights = CMSG_FIRSTHDR(message);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(bytes);
    memcpy(CMSG_DATA(rights), descriptors.data(), bytes);
}

ssize_t sendPacket(int socket, Sending* sending, int flags) {
    const bool withDescriptors = !sending->begun && !sending->descriptors.empty();
    // Most messages are one small piece, for which send(2) is cheaper than sendmsg(2).
    const iovec& first = sending->pieces[sending->next];
    const bool isLast = sending->next + 1 == sending->pieces.size();
    if (isLast && first.iov_len <= kMostPacketBytes && !withDescriptors) {
        return send(socket, first.iov_base, first.iov_len, flags);
    }
    const Packet packet(sending);
    msghdr message{};
    message.msg_iov = packet.pieces();
    message.msg_iovlen = packet.count();
    Control control;
    if (withDescriptors) {
        attach(sending->descriptors, &control, &message);
    }
    return sendmsg(socket, &message, flags);
}

ssize_t announceDescriptors(int socket, int flags) {
    const Header header{Header::kMagic, MessageType::DESCRIPTORS, 0, 0, 0, 0, 0};
    return send(socket, &header, sizeof(header), flags);
}

}  // namespace

int sendPieces(int socket, Sending* sending, int flags) {
    while (sending->next < sending->pieces.size()) {
        const bool announces =
                !sending->begun && !sending->announced && !sending->descriptors.empty();
        const ssize_t result = announces ? announceDescriptors(socket, flags | MSG_NOSIGNAL)
                                         : sendPacket(socket, sending, flags | MSG_NOSIGNAL);
        if (result >= 0 && announces) {
            sending->announced = true;
        } else if (result >= 0) {
            advance(sending, static_cast<size_t>(result));
        } else if (errno != EINTR) {
            return errno == EWOULDBLOCK ? EAGAIN : errno;
        }
    }
    return 0;
}

int sendWithin(int socket, Sending* sending, std::chrono::milliseconds limit) {
    if (limit == kForever) {
        // A socket that came from another process may be non-blocking. The limit is checked only on
        // EAGAIN, because reading the clock for every call costs time.
        int error;
        do {
            error = sendPieces(socket, sending, 0);
        } while (error == EAGAIN && waitFor(socket, POLLOUT, kForever));
        return error;
    }
    const Deadline end(limit);
    int error;
    do {
        error = sendPieces(socket, sending, MSG_DONTWAIT);
    } while (error == EAGAIN && waitFor(socket, POLLOUT, end.left()));
    return error;
}

bool endsConnection(int error) {
    return error == EPIPE || error == ECONNRESET || error == ENOTCONN || error == ENOTSOCK;
}

namespace {

ssize_t receivePlain(int socket, void* bytes, size_t capacity, int flags) {
    const ssize_t result = TEMP_FAILURE_RETRY(recv(socket, bytes, capacity, flags | MSG_TRUNC));
    if (result > static_cast<ssize_t>(capacity)) {
        errno = EMSGSIZE;
        return -1;
    }
    return result;
}

}  // namespace

ssize_t receiveBytes(int socket, void* bytes, size_t capacity, std::vector<unique_fd>* descriptors,
                     int flags) {
    if (descriptors == nullptr) {
        return receivePlain(socket, bytes, capacity, flags);
    }
    Control control;
    iovec piece{bytes, capacity};
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = control.bytes;
    message.msg_controllen = sizeof(control.bytes);
    const ssize_t result = TEMP_FAILURE_RETRY(recvmsg(socket, &message, flags | MSG_CMSG_CLOEXEC));
    if (result < 0) {
        return result;
    }
    for (cmsghdr* part = CMSG_FIRSTHDR(&message); part != nullptr;
         part = CMSG_NXTHDR(&message, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) {
            continue;
        }
        const size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        // Owns the descriptors at once, even if memory for the caller's vector runs out.
        std::array<unique_fd, kMaxDescriptors> arrived;
        for (size_t i = 0; i < count; ++i) {
            int descriptor;
            memcpy(&descriptor, CMSG_DATA(part) + i * sizeof(int), sizeof(int));
            arrived[i].reset(descriptor);
        }
        descriptors->reserve(descriptors->size() + count);
        std::move(arrived.begin(), arrived.begin() + static_cast<ptrdiff_t>(count),
                  std::back_inserter(*descriptors));
    }
    if ((message.msg_flags & MSG_TRUNC) != 0) {
        errno = EMSGSIZE;
        return -1;
    }
    return result;
}

}  // namespace android::hardware::transport
