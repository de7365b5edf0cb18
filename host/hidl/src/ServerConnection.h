// The server's end of the transport: connections that bring calls, and the listener they come from.
#pragma once

#include <android-base/unique_fd.h>
#include <hwbinder/IBinder.h>

#include <chrono>
#include <cstdint>
#include <vector>

#include "MessageReader.h"
#include "ThreadPool.h"
#include "Wire.h"

namespace android::hardware::transport {

// One client's connection to one object. It answers a call before it reads the next, so a client
// that does not take its answers holds up nobody: what does not fit into the socket is kept here,
// one reply at most, and the thread goes on. Whatever a client sends that is no message ends its
// connection. One thread at a time has it (ThreadPool).
class ServerConnection : public EventSource {
  public:
    ServerConnection(unique_fd socket, const sp<BHwBinder>& object);

    // Makes a new connection to an object of this process; end receives the client's end.
    static status_t open(BHwBinder* object, unique_fd* end);

    Next onEvents(uint32_t events, ThreadPool& pool) override;
    int descriptor() const override { return mSocket.get(); }

  private:
    bool dispatch(IncomingMessage message);
    bool send();
    bool flush();
    void keepUnsent(std::vector<iovec>* pieces, bool anySent);

    const unique_fd mSocket;
    const sp<BHwBinder> mObject;
    MessageReader mReader{kMaxCallBody};
    OutgoingMessage mReply;
    std::vector<uint8_t> mUnsent;  // the end of a reply that the client has not taken yet
    size_t mUnsentPosition = 0;
    std::vector<unique_fd> mUnsentDescriptors;  // when nothing of that reply was sent
};

// A registered name: takes connections from this user's and root's processes.
class Listener : public EventSource {
  public:
    Listener(unique_fd socket, const sp<BHwBinder>& object);

    Next onEvents(uint32_t events, ThreadPool& pool) override;
    int descriptor() const override { return mSocket.get(); }

  private:
    void welcome(unique_fd socket, ThreadPool& pool) const;
    void refuseOne();

    const unique_fd mSocket;
    const sp<BHwBinder> mObject;
    const uint64_t mServer;  // a random number that names this registration
    unique_fd mSpare;        // given up for a moment to refuse a client when descriptors run out
};

}  // namespace android::hardware::transport
