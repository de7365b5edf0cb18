// UnsentReply: the end of a reply that its client has not taken yet.
#pragma once

#include <android-base/unique_fd.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "Socket.h"
#include "Stalls.h"

namespace android::hardware::transport {

// Keeps a copy of what is left of a message until the client reads on. All connections together
// keep a bounded amount, for a bounded time without progress (Stalls): clients that ask and never
// read cannot eat the process's memory. Used by one thread at a time.
class UnsentReply {
  public:
    explicit UnsentReply(int socket) : UnsentReply(socket, Stalls::instance()) {}
    UnsentReply(int socket, Stalls& stalls)
        : mSocket(socket), mStall(Stall::Kind::REPLY, socket, stalls) {}
    UnsentReply(const UnsentReply&) = delete;
    UnsentReply& operator=(const UnsentReply&) = delete;

    bool empty() const { return mBytes == nullptr; }
    // Takes what is left of the message, with duplicates of its descriptors when they are still to
    // be sent. False when that would be too much, or there are no descriptors left; nothing is kept
    // then. Must be empty before.
    bool keep(const Sending& message);
    // Sends what fits now. False when the client is gone.
    bool flush();

  private:
    void drop();

    const int mSocket;
    std::unique_ptr<uint8_t[]> mBytes;
    size_t mSize = 0;
    Stall mStall;
    Sending mSending;
    std::vector<unique_fd> mDescriptors;
};

}  // namespace android::hardware::transport
