// Listener: a registered name.
#pragma once

#include <android-base/unique_fd.h>
#include <hwbinder/IBinder.h>

#include <cstdint>

#include "ThreadPool.h"

namespace android::hardware::transport {

// Takes connections from this user's and root's processes, and says hello to each. One thread at a
// time has it (ThreadPool).
class Listener : public EventSource {
  public:
    Listener(::android::base::unique_fd socket, const sp<BHwBinder>& object);

    Next onEvents(uint32_t events, ThreadPool& pool) override;
    int descriptor() const override { return mSocket.get(); }

  private:
    void welcome(::android::base::unique_fd socket, ThreadPool& pool) const;
    void refuseOne();

    const ::android::base::unique_fd mSocket;
    const sp<BHwBinder> mObject;
    const uint64_t mServer;             // names this registration
    ::android::base::unique_fd mSpare;  // given up for a moment when descriptors run out
    bool mRefusing = false;             // whether the last client was refused for want of one
};

}  // namespace android::hardware::transport
