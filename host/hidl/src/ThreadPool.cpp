#include "ThreadPool.h"

#include <log/log.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <thread>

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware::transport {

namespace {

thread_local bool tIsOwn = false;

uint32_t epollEvents(EventSource::Next next) {
    const uint32_t kind = next == EventSource::Next::WAIT_FOR_SPACE ? EPOLLOUT : EPOLLIN;
    return kind | EPOLLONESHOT;
}

}  // namespace

ThreadPool& ThreadPool::instance() {
    static auto* pool = new ThreadPool;
    return *pool;
}

ThreadPool::ThreadPool() : mEpoll(epoll_create1(EPOLL_CLOEXEC)) {
    LOG_ALWAYS_FATAL_IF(!mEpoll.ok(), "epoll_create1: %s", strerror(errno));
}

void ThreadPool::configure(size_t maxThreads, bool callerWillJoin) {
    LOG_ALWAYS_FATAL_IF(maxThreads == 0, "the RPC pool needs at least one thread");
    std::lock_guard<std::mutex> lock(mMutex);
    mMaxThreads = maxThreads;
    mCallerWillJoin = callerWillJoin;
}

void ThreadPool::start() {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mThreads == 0) {
        startThreadLocked();
    }
}

void ThreadPool::join() {
    if (takePlace()) {
        ++mWaiting;
        run();
    }
    while (true) {
        pause();
    }
}

bool ThreadPool::takePlace() {
    std::lock_guard<std::mutex> lock(mMutex);
    mCallerWillJoin = false;
    if (mThreads >= mMaxThreads) {
        return false;
    }
    ++mThreads;
    return true;
}

void ThreadPool::startThreadLocked() {
    // One thread is reserved for the caller that will join; when it is the only one allowed, calls
    // wait for it.
    const size_t most = mMaxThreads - (mCallerWillJoin ? 1 : 0);
    if (mThreads >= most) {
        return;
    }
    ++mWaiting;
    ++mThreads;
    try {
        std::thread([this] { run(); }).detach();
    } catch (const std::exception& exception) {
        --mWaiting;
        --mThreads;
        ALOGE("cannot start an RPC thread, %zu run: %s", mThreads, exception.what());
    }
}

void ThreadPool::startThreadIfNoneWaits() {
    if (anyThreadWaits()) {
        return;
    }
    std::lock_guard<std::mutex> lock(mMutex);
    if (!anyThreadWaits()) {
        startThreadLocked();
    }
}

uint64_t ThreadPool::add(std::shared_ptr<EventSource> source, bool input) {
    const int descriptor = source->descriptor();
    std::lock_guard<std::mutex> lock(mMutex);
    const uint64_t id = ++mLastId;
    epoll_event event{};
    event.events = (input ? uint32_t{EPOLLIN} : uint32_t{EPOLLRDHUP}) | EPOLLONESHOT;
    event.data.u64 = id;
    // First the part that memory may be missing for: the set must not hold an id that nobody knows.
    const auto added = mSources.emplace(id, source).first;
    if (epoll_ctl(mEpoll.get(), EPOLL_CTL_ADD, descriptor, &event) != 0) {
        ALOGE("cannot wait on a connection: %s", strerror(errno));
        mSources.erase(added);
        return 0;
    }
    return id;
}

void ThreadPool::remove(uint64_t id) {
    std::shared_ptr<EventSource> removed;  // destroyed after the lock is released
    std::lock_guard<std::mutex> lock(mMutex);
    auto it = mSources.find(id);
    if (it == mSources.end()) {
        return;
    }
    removed = std::move(it->second);
    mSources.erase(it);
    (void)epoll_ctl(mEpoll.get(), EPOLL_CTL_DEL, removed->descriptor(), nullptr);
}

void ThreadPool::silence(const EventSource& source) {
    (void)epoll_ctl(mEpoll.get(), EPOLL_CTL_DEL, source.descriptor(), nullptr);
}

bool ThreadPool::waitAgainLocked(uint64_t id, int descriptor, EventSource::Next next) {
    epoll_event event{};
    event.events = epollEvents(next);
    event.data.u64 = id;
    if (epoll_ctl(mEpoll.get(), EPOLL_CTL_MOD, descriptor, &event) == 0) {
        return true;
    }
    const bool isSilenced = errno == ENOENT;
    return isSilenced && epoll_ctl(mEpoll.get(), EPOLL_CTL_ADD, descriptor, &event) == 0;
}

void ThreadPool::serve(uint64_t id, uint32_t events) {
    std::shared_ptr<EventSource> source;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        auto it = mSources.find(id);
        if (it == mSources.end()) {
            return;
        }
        source = it->second;
    }
    EventSource::Next next = EventSource::Next::DROP;
    try {
        next = source->onEvents(events, *this);
    } catch (const std::exception& exception) {
        // An exception costs one connection, not the process.
        ALOGE("a connection ends: %s", exception.what());
    }
    if (next != EventSource::Next::DROP) {
        std::unique_lock<std::mutex> lock(mMutex);
        // Under the lock, so that a source that was removed meanwhile is not armed again.
        if (mSources.count(id) == 0 || waitAgainLocked(id, source->descriptor(), next)) {
            return;
        }
        const int error = errno;
        lock.unlock();
        ALOGE("a connection ends: cannot wait on it: %s", strerror(error));
    }
    remove(id);
}

bool ThreadPool::ownsThisThread() {
    return tIsOwn;
}

void ThreadPool::run() {
    tIsOwn = true;
    while (true) {
        epoll_event event{};
        const int count = epoll_wait(mEpoll.get(), &event, 1, -1);
        if (count != 1) {
            continue;
        }
        --mWaiting;
        startThreadIfNoneWaits();
        serve(event.data.u64, event.events);
        ++mWaiting;
    }
}

}  // namespace android::hardware::transport
