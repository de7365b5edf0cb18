#pragma once

#include <android-base/unique_fd.h>
#include <hwbinder/IBinder.h>

#include <cstdint>
#include <string>

#include "ThreadPool.h"

namespace android::hardware::transport {

/**
 * The listening socket of a registered name. Accepts connections from processes of this user and of
 * root, and sends each a hello. Closes a connection without a hello if its process has its share of
 * connections already (ConnectionShares), or if no descriptors are left.
 *
 * Logs an error when another process has taken the name over: that process connects once, so that
 * the listener looks (listenOn). Only one thread at a time uses it (ThreadPool).
 */
class Listener : public EventSource {
  public:
    /** path: the socket's file. */
    Listener(::android::base::unique_fd socket, std::string path, const sp<BHwBinder>& object);

    Next onEvents(uint32_t events, ThreadPool& pool) override;
    int descriptor() const override { return mSocket.get(); }

  private:
    void welcome(::android::base::unique_fd socket, ThreadPool& pool) const;
    void refuseOne();
    void lookForName();

    const ::android::base::unique_fd mSocket;
    const std::string mPath;
    const uint64_t mFile;  // the inode of the socket's file; 0 when unknown
    const sp<BHwBinder> mObject;
    const uint64_t mServer;             // identifies this registration
    ::android::base::unique_fd mSpare;  // closed for a moment when descriptors run out
    bool mNameIsLost = false;           // whether another process has the name
    bool mRefusing = false;  // whether the last client was refused because descriptors had run out
};

}  // namespace android::hardware::transport
