#pragma once

#include <android-base/unique_fd.h>
#include <hwbinder/IBinder.h>

#include <cstdint>
#include <optional>

#include "ConnectionShares.h"
#include "MessageReader.h"
#include "Stalls.h"
#include "ThreadPool.h"
#include "UnsentReply.h"
#include "Wire.h"

namespace android::hardware::transport {

/**
 * The server's end of one client's connection to one object. It answers a call before it reads the
 * next. A client that does not read its replies delays nobody: the connection keeps what does not
 * fit into the socket, at most one reply, and the thread serves others. A malformed message ends
 * the connection; a message without a sound parcel is answered with an error. Only one thread at a
 * time uses it (ThreadPool).
 */
class ServerConnection : public EventSource {
  public:
    /** place: the client's right to this connection, if it had to get one. */
    ServerConnection(unique_fd socket, const sp<BHwBinder>& object,
                     std::optional<ConnectionShares::Place> place = {});

    /**
     * Opens a new connection to an object of this process; end receives the client's end. Starts
     * the pool if necessary, so that calls to the object are answered. An errno as a status when
     * descriptors run out.
     */
    static status_t open(BHwBinder* object, unique_fd* end);

    Next onEvents(uint32_t events, ThreadPool& pool) override;
    int descriptor() const override { return mSocket.get(); }

  private:
    // The pool's next step when the client must send a message or the rest of one.
    Next waitForInput();
    // Both return false when the connection has ended.
    bool dispatch(IncomingMessage&& message, const ThreadPool& pool);
    bool send(const ThreadPool& pool);
    // Encodes the parcel as the reply; logs a warning when it is too large for a device.
    status_t encode(const Parcel& parcel);

    // `expected` says whether the caller still waits for an answer.
    status_t serve(IncomingMessage&& message, const IBinder::TransactCallback& answer,
                   const bool& expected);

    // Given back after the socket, which is destroyed first, is closed.
    const std::optional<ConnectionShares::Place> mPlace;
    const unique_fd mSocket;
    const sp<BHwBinder> mObject;
    const pid_t mClient;  // the process whose log limit a call's lines count towards
    MessageReader mReader{kMaxCallBody};
    OutgoingMessage mReply;
    UnsentReply mUnsent;
    Stall mUnfinished;
};

}  // namespace android::hardware::transport
