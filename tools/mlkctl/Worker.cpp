#include "tools/mlkctl/Worker.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

#include "tools/mlkctl/Pending.h"

namespace mlk::ctl {

struct Worker::State {
    std::mutex mutex;
    std::condition_variable changed;
    // All under the mutex.
    std::function<void()> work;  // empty: there is none, or it has ended
    std::exception_ptr thrown;
    bool stop = false;
};

void Worker::serve(State& state) {
    std::unique_lock<std::mutex> lock(state.mutex);
    while (true) {
        state.changed.wait(lock, [&] { return state.stop || state.work; });
        if (!state.work) return;
        lock.unlock();
        std::exception_ptr thrown;
        try {
            state.work();
        } catch (...) {
            thrown = std::current_exception();
        }
        lock.lock();
        // Whatever the work holds has gone before it counts as ended.
        state.work = nullptr;
        state.thrown = std::move(thrown);
        --details::pendingThreads();
        state.changed.notify_all();
    }
}

Worker::Worker()
    : mState(std::make_shared<State>()), mThread([state = mState] { serve(*state); }) {}

Worker::~Worker() {
    std::unique_lock<std::mutex> lock(mState->mutex);
    mState->stop = true;
    mState->changed.notify_all();
    const bool atWork = mState->work != nullptr;
    lock.unlock();
    atWork ? mThread.detach() : mThread.join();
}

bool Worker::run(std::function<void()> work, Clock::time_point deadline) {
    std::unique_lock<std::mutex> lock(mState->mutex);
    ++details::pendingThreads();
    mState->work = std::move(work);
    mState->thrown = nullptr;
    mState->changed.notify_all();
    if (!mState->changed.wait_until(lock, deadline, [this] { return !mState->work; })) return false;
    if (mState->thrown) std::rethrow_exception(std::exchange(mState->thrown, nullptr));
    return true;
}

}  // namespace mlk::ctl
