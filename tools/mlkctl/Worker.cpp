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
    // All under the mutex; the pieces themselves are the thread's while it is at work.
    std::vector<Piece> pieces;
    bool atWork = false;
    size_t ended = 0;           // of these pieces
    Clock::time_point started;  // the one that is being done
    std::exception_ptr thrown;
    bool stop = false;
};

void Worker::serve(State& state) {
    std::unique_lock<std::mutex> lock(state.mutex);
    while (true) {
        state.changed.wait(lock, [&] { return state.stop || state.atWork; });
        if (!state.atWork) {
            return;
        }
        bool goesOn = true;
        std::exception_ptr thrown;
        while (goesOn && state.ended < state.pieces.size()) {
            const Piece piece = std::move(state.pieces[state.ended]);
            state.started = Clock::now();
            lock.unlock();
            try {
                goesOn = piece();
            } catch (...) {
                thrown = std::current_exception();
                goesOn = false;
            }
            lock.lock();
            ++state.ended;
        }
        // Whatever the work holds has gone before it counts as ended.
        state.pieces.clear();
        state.thrown = std::move(thrown);
        state.atWork = false;
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
    const bool atWork = mState->atWork;
    lock.unlock();
    if (atWork) {
        mThread.detach();
    } else {
        mThread.join();
    }
}

bool Worker::run(std::function<void()> work, Duration limit) {
    std::vector<Piece> pieces;
    pieces.emplace_back([work = std::move(work)] {
        work();
        return true;
    });
    return !runAll(std::move(pieces), limit).hangs;
}

Worker::Outcome Worker::runAll(std::vector<Piece> pieces, Duration limit) {
    const auto most = std::chrono::duration_cast<Clock::duration>(limit);
    std::unique_lock<std::mutex> lock(mState->mutex);
    ++details::pendingThreads();
    mState->pieces = std::move(pieces);
    mState->ended = 0;
    mState->started = Clock::now();
    mState->thrown = nullptr;
    mState->atWork = true;
    mState->changed.notify_all();
    while (mState->atWork) {
        const Clock::time_point end = mState->started + most;
        // The piece that was waited for may have ended, and another have begun.
        if (mState->changed.wait_until(lock, end) == std::cv_status::timeout && mState->atWork &&
            Clock::now() >= mState->started + most) {
            return {mState->ended, true};
        }
    }
    if (mState->thrown) {
        std::rethrow_exception(std::exchange(mState->thrown, nullptr));
    }
    return {mState->ended, false};
}

}  // namespace mlk::ctl
