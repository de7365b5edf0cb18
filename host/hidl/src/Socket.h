// Sends bytes and descriptors through connected sockets.
#pragma once

#include <android-base/unique_fd.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <utils/Errors.h>

#include <chrono>
#include <cstddef>
#include <vector>

namespace android::hardware::transport {

using ::android::base::unique_fd;

/** Whether the process at the other end runs as the same user or as root. */
bool peerIsTrusted(int socket);
/** The user of the process at the other end; -1 when unknown. */
uid_t peerUser(int socket);
/** The process id of the other end when it connected; -1 when unknown. */
pid_t peerProcess(int socket);

/** Makes two connected packet sockets. */
status_t connectedPair(unique_fd* first, unique_fd* second);
/** Whether the descriptor is a Unix packet socket, as connections are. */
bool isPacketSocket(int descriptor);
/** Whether the other end of a connection is closed. */
bool isHungUp(int socket);

/** No time limit. */
constexpr std::chrono::milliseconds kForever{-1};
/**
 * Waits until the socket is ready for the events of poll(2) or closed; false when the time is over.
 */
bool waitFor(int socket, short events, std::chrono::milliseconds limit);

/** A point in time by which something must be done; never, unless a limit is given. */
class Deadline {
  public:
    using Clock = std::chrono::steady_clock;

    Deadline() = default;
    /** kForever gives a deadline that never comes. */
    explicit Deadline(std::chrono::milliseconds limit)
        : mEnd(limit == kForever ? Clock::time_point::max() : Clock::now() + limit) {}

    bool isNever() const { return mEnd == Clock::time_point::max(); }
    /** The time until the deadline, at least zero; kForever when it never comes. */
    std::chrono::milliseconds left() const;
    Clock::time_point time() const { return mEnd; }

  private:
    Clock::time_point mEnd = Clock::time_point::max();
};

/**
 * The largest packet. A longer message is sent in several, so that the kernel needs no large blocks
 * and every socket has space for a packet.
 */
constexpr size_t kMostPacketBytes = size_t{32} * 1024;

/**
 * A message that is being sent: the part that is left. Its descriptors, which it does not own, go
 * with the first byte, after a packet that announces them.
 */
struct Sending {
    std::vector<iovec> pieces;
    std::vector<int> descriptors;
    size_t next = 0;         // the first piece that is left
    bool begun = false;      // whether the first byte has been sent
    bool announced = false;  // whether the receiver expects descriptors

    void clear();
    /** The number of bytes that are left. */
    size_t left() const;
};

/**
 * Sends the rest of a message in as few packets as possible, like sendmsg with these flags. 0 when
 * everything is sent, EAGAIN when the rest does not fit now (MSG_DONTWAIT), otherwise an errno.
 */
int sendPieces(int socket, Sending* sending, int flags);
/** The same, but waits for space up to the limit; EAGAIN when the time is over. */
int sendWithin(int socket, Sending* sending, std::chrono::milliseconds limit);
/** Whether this errno of sending means that the socket can send nothing any more. */
bool endsConnection(int error);

/**
 * Receives a packet, like recvmsg; appends descriptors that arrive. Without a vector the kernel
 * closes them, and receiving is cheaper. Returns the number of bytes, 0 at the end, or -1 with
 * errno set: EMSGSIZE when the packet is larger than the capacity.
 */
ssize_t receiveBytes(int socket, void* bytes, size_t capacity, std::vector<unique_fd>* descriptors,
                     int flags);

}  // namespace android::hardware::transport
