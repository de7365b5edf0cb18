#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace mlk::ctl {

/// A thread that does one piece of work after the other for its owner, who can give up waiting. A
/// worker that is at work when it is destroyed is left behind; anyPending() (Pending.h) counts it
/// until its work ends. For one thread.
class Worker {
  public:
    using Clock = std::chrono::steady_clock;

    Worker();
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Does the work and throws what it throws. False when it has not ended by the deadline: then
    /// the worker can only be destroyed, and the work must not refer to anything that may go.
    bool run(std::function<void()> work, Clock::time_point deadline);

  private:
    struct State;
    static void serve(State& state);

    std::shared_ptr<State> mState;
    std::thread mThread;
};

}  // namespace mlk::ctl
