#include <hidl/TaskRunner.h>

#include <condition_variable>
#include <deque>
#include <system_error>
#include <utility>

namespace android::hardware::details {

struct TaskRunner::Queue {
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<std::function<void()>> tasks;  // under mutex, as all members below
    size_t limit = 0;
    bool stopping = false;
};

TaskRunner::TaskRunner() : mQueue(std::make_shared<Queue>()) {}

TaskRunner::~TaskRunner() {
    {
        std::lock_guard<std::mutex> lock(mQueue->mutex);
        mQueue->stopping = true;
    }
    mQueue->wake.notify_all();
    if (mThread.get_id() == std::this_thread::get_id()) {
        mThread.detach();
    } else if (mThread.joinable()) {
        mThread.join();
    }
}

void TaskRunner::start(size_t limit) {
    std::lock_guard<std::mutex> lock(mQueue->mutex);
    mQueue->limit = limit;
}

bool TaskRunner::push(const std::function<void()>& task) {
    std::lock_guard<std::mutex> lock(mQueue->mutex);
    if (mQueue->tasks.size() >= mQueue->limit) {
        return false;
    }
    if (!mThread.joinable()) {
        try {
            mThread = std::thread([queue = mQueue] { run(queue); });
        } catch (const std::system_error&) {
            return false;
        }
    }
    mQueue->tasks.push_back(task);
    mQueue->wake.notify_one();
    return true;
}

void TaskRunner::run(const std::shared_ptr<Queue>& queue) {
    std::unique_lock<std::mutex> lock(queue->mutex);
    while (true) {
        queue->wake.wait(lock, [&] { return queue->stopping || !queue->tasks.empty(); });
        if (queue->tasks.empty()) {
            return;
        }
        std::function<void()> task = std::move(queue->tasks.front());
        queue->tasks.pop_front();
        lock.unlock();
        task();
        task = nullptr;  // without the lock: its captures may destroy the runner
        lock.lock();
    }
}

}  // namespace android::hardware::details
