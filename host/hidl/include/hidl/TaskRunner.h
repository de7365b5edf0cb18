// TaskRunner: where a passthrough object runs its one-way methods.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace android::hardware::details {

// Runs tasks one after the other on a thread of its own, which starts with the first task. A task
// must not throw. Thread-safe; a task may be the one that destroys the runner.
class TaskRunner {
  public:
    TaskRunner();
    // Waits until what is queued has run; called by a task, leaves the rest to the thread.
    ~TaskRunner();
    TaskRunner(const TaskRunner&) = delete;
    TaskRunner& operator=(const TaskRunner&) = delete;

    // limit: how many tasks may wait; none may before.
    void start(size_t limit);
    // False when limit tasks are waiting already, or there can be no thread; the task is then
    // dropped.
    bool push(const std::function<void()>& task);

  private:
    struct Queue;
    static void run(const std::shared_ptr<Queue>& queue);

    const std::shared_ptr<Queue> mQueue;  // the thread's too: it may outlive the runner
    std::thread mThread;                  // under the queue's lock, but for the join
};

}  // namespace android::hardware::details
