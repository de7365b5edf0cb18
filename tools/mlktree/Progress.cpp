#include "tools/mlktree/Progress.h"

#include <chrono>
#include <ostream>

namespace mlk::tree {

Progress::Progress(std::ostream& errors, bool isTerminal) : mErrors(errors) {
    if (isTerminal) {
        mThread = std::thread([this] { run(); });
    }
}

void Progress::now(const std::string& what) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mWhat = what;
}

void Progress::stop() {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsDone = true;
    }
    mChanged.notify_one();
    if (mThread.joinable()) {
        mThread.join();
    }
}

void Progress::run() {
    constexpr const char* kErase = "\r\033[K";
    std::unique_lock<std::mutex> lock(mMutex);
    const auto begin = std::chrono::steady_clock::now();
    for (int seconds = 1;; ++seconds) {
        const bool isDone = mChanged.wait_until(lock, begin + std::chrono::seconds(seconds),
                                                [this] { return mIsDone; });
        if (isDone) {
            if (seconds > 1) {
                mErrors << kErase << std::flush;
            }
            return;
        }
        mErrors << kErase << "mlktree: " << mWhat << ", " << seconds << " s" << std::flush;
    }
}

}  // namespace mlk::tree
