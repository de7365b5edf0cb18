#include <hidl/TaskRunner.h>

namespace android::hardware::details {

TaskRunner::~TaskRunner() {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mStopping = true;
    }
    mWake.notify_all();
    if (mThread.joinable()) mThread.join();
}

void TaskRunner::start(size_t limit) {
    std::lock_guard<std::mutex> lock(mMutex);
    mLimit = limit;
}

bool TaskRunner::push(const std::function<void()>& task) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mTasks.size() >= mLimit) return false;
    mTasks.push_back(task);
    if (!mThread.joinable()) mThread = std::thread([this] { run(); });
    mWake.notify_one();
    return true;
}

void TaskRunner::run() {
    std::unique_lock<std::mutex> lock(mMutex);
    while (true) {
        mWake.wait(lock, [this] { return mStopping || !mTasks.empty(); });
        if (mTasks.empty()) return;
        const std::function<void()> task = std::move(mTasks.front());
        mTasks.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

}  // namespace android::hardware::details
