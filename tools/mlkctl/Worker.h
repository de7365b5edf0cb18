#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace mlk::ctl {

/**
 * A thread that does work for its owner, who may stop waiting. If the worker is destroyed during
 * its work, the thread goes on alone; anyPending() (Pending.h) counts it until its work ends. For
 * one thread.
 */
class Worker {
  public:
    using Clock = std::chrono::steady_clock;
    using Duration = std::chrono::duration<double>;

    /** A piece of a group. Returns false if the pieces after it must not begin. */
    using Piece = std::function<bool()>;

    /** How a group ended. */
    struct Outcome {
        size_t ended; /**< number of pieces that have ended, counted from the first */
        bool hangs;   /**< the next piece took longer than its limit */
    };

    Worker();
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /**
     * Does the work and throws what it throws. Returns false if it takes longer than the limit:
     * then the worker can only be destroyed. The work must own everything it refers to.
     */
    bool run(std::function<void()> work, Duration limit);

    /**
     * Does the pieces one after the other, each within the limit. The group is handed to the thread
     * once, because handing over costs more than a quick piece. A piece that throws ends the group,
     * and this throws the same. After a piece that hangs the worker can only be destroyed. The
     * pieces must own everything they refer to.
     */
    Outcome runAll(std::vector<Piece> pieces, Duration limit);

  private:
    struct State;
    static void serve(State& state);

    std::shared_ptr<State> mState;
    std::thread mThread;
};

}  // namespace mlk::ctl
