#pragma once

#include <cstddef>
#include <cstdint>

#include "Wire.h"

namespace android::hardware::transport {

/**
 * Collects messages from a socket, one after the other. Its memory between messages is bounded: a
 * buffer for the current message and the descriptors that came with it. Only one thread at a time
 * may use it.
 */
class MessageReader {
  public:
    /** bodyLimit: the largest body of a message; a longer one is RUBBISH. */
    explicit MessageReader(uint64_t bodyLimit) : mBodyLimit(bodyLimit) {}

    enum class Result {
        MESSAGE,  // a whole message has arrived: take it
        AGAIN,    // nothing more has arrived for now
        CLOSED,   // the other end is closed
        RUBBISH,  // malformed message; what follows is unusable
    };
    /**
     * Reads until a whole message has arrived. The flags (MSG_DONTWAIT) and the socket's receive
     * time-out say whether and how long it waits for the first bytes and for the rest.
     * Announcements that no message follows do not keep it: it answers AGAIN.
     */
    Result read(int socket, int flagsFirst, int flagsRest);
    /** Whether it holds a part of a message, or a message that was not taken. */
    bool hasBegun() const { return mFilled != 0; }
    /**
     * Frees the memory that the current message does not need. Call it when nobody will read for a
     * while.
     */
    void trim();
    /** The bytes and the descriptors that it keeps. */
    size_t keptBytes() const { return mMessage.capacity; }
    size_t keptDescriptors() const { return mMessage.descriptors.size(); }

    /**
     * Returns the message with its descriptors: as many as its header declares, or fewer when they
     * were not sent or this process could not receive them.
     */
    IncomingMessage take();

  private:
    Result inspect();

    const uint64_t mBodyLimit;
    IncomingMessage mMessage;
    size_t mFilled = 0;
    size_t mTotal = 0;  // size of the current message; 0 while its header is incomplete
    bool mExpectsDescriptors = false;  // whether descriptors were announced for the current message
};

}  // namespace android::hardware::transport
