#pragma once

#include <android-base/unique_fd.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "Socket.h"
#include "Stalls.h"

namespace android::hardware::transport {

/**
 * The end of a reply that its client has not read yet. Keeps a copy of it until the client reads
 * on. Stalls bounds the amount that all connections keep, and the time without progress: clients
 * that ask and never read cannot exhaust the process's memory. Only one thread at a time may use
 * it.
 */
class UnsentReply {
  public:
    explicit UnsentReply(int socket) : UnsentReply(socket, Stalls::instance()) {}
    UnsentReply(int socket, Stalls& stalls)
        : mSocket(socket), mStall(Stall::Kind::REPLY, socket, stalls) {}
    UnsentReply(const UnsentReply&) = delete;
    UnsentReply& operator=(const UnsentReply&) = delete;

    bool empty() const { return mBytes == nullptr; }
    /**
     * Copies the rest of the message, and duplicates its descriptors when they are still to be
     * sent. False when a bound, the memory or the supply of descriptors is exhausted; nothing is
     * kept then. Must be empty before.
     */
    bool keep(const Sending& message);
    /** Sends what fits now. False when the client is gone. */
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
