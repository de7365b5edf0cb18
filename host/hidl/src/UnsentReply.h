// UnsentReply: the end of a reply that its client has not taken yet.
#pragma once

#include <android-base/unique_fd.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "Socket.h"

namespace android::hardware::transport {

// Keeps a copy of what is left of a message until the client reads on. All connections together
// keep a bounded amount: clients that ask and never read cannot eat the process's memory. Used by
// one thread at a time; the bound is kept across threads.
class UnsentReply {
  public:
    UnsentReply() = default;
    ~UnsentReply() { drop(); }
    UnsentReply(const UnsentReply&) = delete;
    UnsentReply& operator=(const UnsentReply&) = delete;

    bool empty() const { return mBytes == nullptr; }
    // Takes what is left of the message, with duplicates of its descriptors when they are still to
    // be sent. False when that would be too much, or there are no descriptors left; nothing is kept
    // then. Must be empty before.
    bool keep(const Sending& message);
    // Sends what fits now. False when the client is gone.
    bool flush(int socket);

  private:
    void drop();

    std::unique_ptr<uint8_t[]> mBytes;
    size_t mSize = 0;
    Sending mSending;
    std::vector<unique_fd> mDescriptors;
};

}  // namespace android::hardware::transport
