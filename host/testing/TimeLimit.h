#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

namespace mlk::testing {

/**
 * Bounds the waits of a test that have no time limit of their own: calls, the end of a process.
 * When the time is over it runs an action that ends the waiting, such as killing the server, on a
 * separate thread; the destructor then fails the test.
 */
class TimeLimit {
  public:
    /** Only a broken test takes this long, even on a busy machine. */
    static constexpr std::chrono::seconds kUsual{20};

    explicit TimeLimit(std::function<void()> end, std::chrono::milliseconds limit = kUsual)
        : mEnd(std::move(end)), mLimit(limit), mThread([this] { watch(); }) {}
    ~TimeLimit() {
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mDone = true;
        }
        mChanged.notify_one();
        mThread.join();
        EXPECT_FALSE(mOver) << "not done within " << mLimit.count() << " ms";
    }
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;

    /** Whether the time is over. */
    bool isOver() const {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mOver;
    }

  private:
    void watch() {
        std::unique_lock<std::mutex> lock(mMutex);
        if (mChanged.wait_for(lock, mLimit, [this] { return mDone; })) {
            return;
        }
        mOver = true;
        lock.unlock();
        mEnd();
    }

    const std::function<void()> mEnd;
    const std::chrono::milliseconds mLimit;
    mutable std::mutex mMutex;
    std::condition_variable mChanged;
    bool mDone = false;  // under mMutex
    bool mOver = false;  // under mMutex
    std::thread mThread;
};

}  // namespace mlk::testing
