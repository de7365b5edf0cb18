// MessageReader: messages out of a stream of bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Wire.h"

namespace android::hardware::transport {

// Collects one message after the other from a socket. What it holds between messages is bounded: a
// buffer for the message under way and the descriptors that came with it. Used by one thread at a
// time.
class MessageReader {
  public:
    // bodyLimit: what a message may hold; a longer one is rubbish.
    explicit MessageReader(uint64_t bodyLimit) : mBodyLimit(bodyLimit) {}

    enum class Result {
        MESSAGE,  // a whole one is there: take it
        AGAIN,    // nothing more has arrived for now
        CLOSED,   // the other end is gone
        RUBBISH,  // this is no message; nothing after it can be understood
    };
    // Reads until a whole message is there. Waits for its first bytes, and for the others, as the
    // flags (MSG_DONTWAIT) and the socket's own receive time-out say.
    Result read(int socket, int flagsFirst, int flagsRest);
    // Whether the bytes that have arrived already give a result other than AGAIN: several messages
    // may arrive at once, and nothing more has to arrive behind them.
    bool hasResult();

    // Whether a part of a message, or messages, are here that were not taken.
    bool hasBegun() const { return mFilled != 0; }
    // For when nobody reads for a while: gives back what memory is not needed for the message under
    // way.
    void trim();
    // What it keeps of this process: bytes, descriptors.
    size_t keptBytes() const { return mMessage.capacity; }
    size_t keptDescriptors() const { return mMessage.descriptors.size(); }

    // The message, with the descriptors that belong to it: as many as its header says, or fewer
    // when they were not sent or there was no room for them in this process.
    IncomingMessage take();

  private:
    Result inspect();

    const uint64_t mBodyLimit;
    IncomingMessage mMessage;  // its descriptors may include those of later messages
    size_t mFilled = 0;
    size_t mTotal = 0;  // of the message under way; 0 while its header is incomplete
};

}  // namespace android::hardware::transport
