#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace android::hardware::details {

/**
 * Runs the one-way methods of a passthrough object, one after the other, on a thread that starts
 * with the first task. A task must not throw. Thread-safe; a task may destroy the runner.
 */
class TaskRunner {
  public:
    TaskRunner();
    /**
     * Waits until all queued tasks have run. When a task calls it, the thread runs the rest later.
     */
    ~TaskRunner();
    TaskRunner(const TaskRunner&) = delete;
    TaskRunner& operator=(const TaskRunner&) = delete;

    /** limit: how many tasks may wait. Without start() the queue takes no task. */
    void start(size_t limit);
    /**
     * False when `limit` tasks are waiting already or no thread can be started; the task is then
     * dropped.
     */
    bool push(const std::function<void()>& task);

  private:
    struct Queue;
    static void run(const std::shared_ptr<Queue>& queue);

    const std::shared_ptr<Queue> mQueue;  // shared with the thread, which may outlive the runner
    std::thread mThread;                  // under the queue's lock, except for the join
};

}  // namespace android::hardware::details
