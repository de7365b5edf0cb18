#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace mlk::ctl {

namespace details {
/** The number of threads of all Pending that have not ended. */
std::atomic<int>& pendingThreads();
}  // namespace details

/** Whether a thread of a Pending still runs. Then the process has to end with _exit. */
bool anyPending();

/**
 * Work that may never end, such as a call to a service that hangs. It runs on a thread of its own,
 * which is abandoned if it takes too long.
 */
template <typename T>
class Pending {
  public:
    using Clock = std::chrono::steady_clock;

    /**
     * Starts the work. It must own everything it refers to, and must not throw.
     */
    explicit Pending(std::function<T()> work) : mState(std::make_shared<State>()) {
        ++details::pendingThreads();
        std::thread([state = mState, work = std::move(work)]() mutable {
            T result = work();
            // Destroy what the work holds before the thread counts as ended.
            work = nullptr;
            const std::lock_guard<std::mutex> lock(state->mutex);
            state->result = std::move(result);
            --details::pendingThreads();
            state->done.notify_all();
        }).detach();
    }

    /** The result, or nothing if the work has not ended by the deadline. */
    std::optional<T> waitUntil(Clock::time_point deadline) const {
        std::unique_lock<std::mutex> lock(mState->mutex);
        mState->done.wait_until(lock, deadline, [this] { return mState->result.has_value(); });
        return mState->result;
    }

  private:
    struct State {
        std::mutex mutex;
        std::condition_variable done;
        std::optional<T> result;  // under mutex
    };
    std::shared_ptr<State> mState;
};

}  // namespace mlk::ctl
