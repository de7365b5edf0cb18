// ServerConnection: the server's end of a connection that brings calls.
#pragma once

#include <android-base/unique_fd.h>
#include <hwbinder/IBinder.h>

#include <cstdint>

#include "MessageReader.h"
#include "Stalls.h"
#include "ThreadPool.h"
#include "UnsentReply.h"
#include "Wire.h"

namespace android::hardware::transport {

// One client's connection to one object. It answers a call before it reads the next, so a client
// that does not take its answers holds up nobody: what does not fit into the socket is kept here,
// one reply at most, and the thread goes on. Whatever a client sends that is no message ends its
// connection; a message that holds no sound parcel is answered with an error. One thread at a time
// has it (ThreadPool).
class ServerConnection : public EventSource {
  public:
    ServerConnection(unique_fd socket, const sp<BHwBinder>& object);

    // Makes a new connection to an object of this process; end receives the client's end. Starts
    // the pool unless it runs: an object that is handed out has to be answered for. An errno as a
    // status when there are no descriptors left.
    static status_t open(BHwBinder* object, unique_fd* end);

    Next onEvents(uint32_t events, ThreadPool& pool) override;
    int descriptor() const override { return mSocket.get(); }

  private:
    // What the pool does next where the client has to send the rest of a message, or any; and where
    // it has to take a reply, or others have to be served before its next call.
    Next waitForInput();
    Next waitForSpace();
    // Both: false when the connection is at its end.
    bool dispatch(IncomingMessage&& message, const ThreadPool& pool);
    bool send(const ThreadPool& pool);
    // Makes a reply of the parcel; a warning names one that is too large for a device.
    status_t encode(const Parcel& parcel);

    // `expected` says whether the caller still waits for an answer.
    status_t serve(IncomingMessage&& message, const IBinder::TransactCallback& answer,
                   const bool& expected);

    const unique_fd mSocket;
    const sp<BHwBinder> mObject;
    const pid_t mClient;  // whose log lines they are that a call causes
    MessageReader mReader{kMaxCallBody};
    OutgoingMessage mReply;
    UnsentReply mUnsent;
    Stall mUnfinished;
};

}  // namespace android::hardware::transport
