// ProcessState: this process as a server of objects.
#pragma once

#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

namespace android::hardware {

// Generated code's way to the RPC pool.
class ProcessState : public virtual RefBase {
  public:
    // The one of this process; lives until it ends.
    static sp<ProcessState> self();

    // Starts the RPC pool's first thread unless it runs: from now on calls to objects of this
    // process, and deaths of remote ones, are heard. Thread-safe.
    void startThreadPool();
};

}  // namespace android::hardware
