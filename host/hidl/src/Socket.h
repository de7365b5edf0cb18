// How bytes and descriptors go through connected sockets.
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

// Whether the process at the other end of a connection is the same user's or root's.
bool peerIsTrusted(int socket);
// The user of the process at the other end; -1 when it cannot be told.
uid_t peerUser(int socket);
// Its process id when it connected; -1 when it cannot be told.
pid_t peerProcess(int socket);

// Two connected sockets.
status_t connectedPair(unique_fd* first, unique_fd* second);
// Whether the descriptor is a socket of the kind that connects processes.
bool isStreamSocket(int descriptor);
// Whether the other end of a connection is gone.
bool isHungUp(int socket);

// No limit to waiting.
constexpr std::chrono::milliseconds kForever{-1};
// Waits until the socket is ready for the events of poll(2), or gone; false when the time is over.
bool waitFor(int socket, short events, std::chrono::milliseconds limit);

// When something has to be done; never, unless a limit is given.
class Deadline {
  public:
    using Clock = std::chrono::steady_clock;

    Deadline() = default;
    // kForever gives one that never comes.
    explicit Deadline(std::chrono::milliseconds limit)
        : mEnd(limit == kForever ? Clock::time_point::max() : Clock::now() + limit) {}

    bool isNever() const { return mEnd == Clock::time_point::max(); }
    // The time until then, not less than zero; kForever when it never comes.
    std::chrono::milliseconds left() const;
    Clock::time_point time() const { return mEnd; }

  private:
    Clock::time_point mEnd = Clock::time_point::max();
};

// A message on its way out: what of it is left to send. The descriptors, which are somebody else's,
// go with the first byte.
struct Sending {
    std::vector<iovec> pieces;
    std::vector<int> descriptors;
    size_t next = 0;     // the first piece that is left
    bool begun = false;  // whether the first byte is gone

    void clear();
    // How many bytes are left.
    size_t left() const;
};

// Sends what is left of a message, as sendmsg does with these flags. 0 when everything is sent,
// EAGAIN when the rest does not fit now (MSG_DONTWAIT), else an errno.
int sendPieces(int socket, Sending* sending, int flags);
// The same, waiting for space up to the limit: EAGAIN when the time is over.
int sendWithin(int socket, Sending* sending, std::chrono::milliseconds limit);
// Whether this errno of sending says that nothing will ever be sent through that socket again.
bool endsConnection(int error);

// As recvmsg: appends descriptors that arrive. The bytes read, 0 at the end, -1 with errno set.
ssize_t receiveBytes(int socket, void* bytes, size_t capacity, std::vector<unique_fd>* descriptors,
                     int flags);

}  // namespace android::hardware::transport
