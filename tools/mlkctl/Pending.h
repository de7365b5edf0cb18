#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
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

/** Counts a thread as pending for as long as it lives. */
class PendingThread {
  public:
    PendingThread() { ++pendingThreads(); }
    ~PendingThread() { --pendingThreads(); }
    PendingThread(const PendingThread&) = delete;
    PendingThread& operator=(const PendingThread&) = delete;
};
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
     * Starts the work, which must own everything it refers to. Throws std::system_error if no
     * thread can be started, and std::bad_alloc.
     */
    explicit Pending(std::function<T()> work) : mState(std::make_shared<State>()) {
        auto running = std::make_unique<details::PendingThread>();
        std::thread([state = mState, work = std::move(work),
                     running = std::move(running)]() mutable {
            std::optional<T> result;
            std::exception_ptr thrown;
            try {
                result = work();
            } catch (...) {
                thrown = std::current_exception();
            }
            // Destroy what the work holds before the thread counts as ended.
            work = nullptr;
            const std::lock_guard<std::mutex> lock(state->mutex);
            state->result = std::move(result);
            state->thrown = std::move(thrown);
            running = nullptr;
            state->done.notify_all();
        }).detach();
    }

    /**
     * The result, or nothing if the work has not ended by the deadline. Throws what the work threw.
     */
    std::optional<T> waitUntil(Clock::time_point deadline) const {
        std::unique_lock<std::mutex> lock(mState->mutex);
        mState->done.wait_until(lock, deadline,
                                [this] { return mState->result.has_value() || mState->thrown; });
        if (mState->thrown) {
            std::rethrow_exception(mState->thrown);
        }
        return mState->result;
    }

  private:
    struct State {
        std::mutex mutex;
        std::condition_variable done;
        // One of these once the work has ended; under the mutex.
        std::optional<T> result;
        std::exception_ptr thrown;
    };
    std::shared_ptr<State> mState;
};

}  // namespace mlk::ctl
