// TaskRunner: where a passthrough object runs its one-way methods.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace android::hardware::details {

// Runs tasks one after the other on a thread of its own, which starts with the first task.
// Thread-safe.
class TaskRunner {
  public:
    TaskRunner() = default;
    // Runs what is queued, then ends the thread.
    ~TaskRunner();
    TaskRunner(const TaskRunner&) = delete;
    TaskRunner& operator=(const TaskRunner&) = delete;

    // limit: how many tasks may wait.
    void start(size_t limit);
    // False when limit tasks are waiting already; the task is then dropped.
    bool push(const std::function<void()>& task);

  private:
    void run();

    std::mutex mMutex;
    std::condition_variable mWake;
    std::deque<std::function<void()>> mTasks;  // under mMutex
    size_t mLimit = 0;                         // under mMutex
    bool mStopping = false;                    // under mMutex
    std::thread mThread;                       // under mMutex, but for the join
};

}  // namespace android::hardware::details
