#pragma once

#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

namespace android::hardware {

/** This process as a server of objects: generated code starts the RPC pool through it. */
class ProcessState : public virtual RefBase {
  public:
    /** Returns the process's one object, which lives until the process ends. */
    static sp<ProcessState> self();

    /**
     * Starts the first thread of the RPC pool unless it runs. From then on the process answers
     * calls to its objects and hears of the deaths of remote ones. Thread-safe.
     */
    void startThreadPool();
};

}  // namespace android::hardware
