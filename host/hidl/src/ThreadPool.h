// ThreadPool: the threads that answer calls and hear of deaths.
#pragma once

#include <android-base/unique_fd.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace android::hardware::transport {

class ThreadPool;

// Something with a descriptor that the pool waits on. One thread at a time has it.
class EventSource {
  public:
    virtual ~EventSource() = default;

    // What the pool shall do with the source next.
    enum class Next {
        WAIT_FOR_INPUT,
        WAIT_FOR_SPACE,  // wait until bytes can be sent
        DROP,            // forget the source
    };
    // events: as epoll reports them. An exception ends the source as DROP does.
    virtual Next onEvents(uint32_t events, ThreadPool& pool) = 0;
    virtual int descriptor() const = 0;
};

// Every thread waits on all sources; the one that gets an event serves its source, and another
// thread is started when none is left waiting and the maximum allows it. So a call never passes
// from thread to thread, and an idle process has one thread. Threads never end.
//
// Thread-safe. There is one per process; it is never destroyed.
class ThreadPool {
  public:
    static ThreadPool& instance();

    // maxThreads: at least 1; callerWillJoin: one of them will come by join().
    void configure(size_t maxThreads, bool callerWillJoin);
    // Starts the first thread unless one was started.
    void start();
    // Makes the calling thread one of the pool's. A thread that was not announced, and comes when
    // there are as many as may be, sleeps.
    [[noreturn]] void join();

    // Whether the calling thread is one that answers calls.
    static bool ownsThisThread();

    // Waits on the source from now on. input false: waits only for the other end's death. A number
    // that names the source; 0 when the kernel refuses it.
    uint64_t add(std::shared_ptr<EventSource> source, bool input);
    // Forgets the source; a thread that has it now goes on to the end of its event.
    void remove(uint64_t id);

    // Whether a thread is waiting for events: then the one that asks may stay with its source.
    bool anyThreadWaits() const { return mWaiting.load(std::memory_order_relaxed) > 0; }

  private:
    ThreadPool();
    [[noreturn]] void run();
    void serve(uint64_t id, uint32_t events);
    bool takePlace();
    void startThreadLocked();
    void startThreadIfNoneWaits();

    const ::android::base::unique_fd mEpoll;
    std::atomic<int> mWaiting{0};  // threads in epoll_wait or on their way to it

    std::mutex mMutex;
    std::unordered_map<uint64_t, std::shared_ptr<EventSource>> mSources;  // under mMutex
    uint64_t mLastId = 0;                                                 // under mMutex
    size_t mMaxThreads = 1;                                               // under mMutex
    bool mCallerWillJoin = false;                                         // under mMutex
    size_t mThreads = 0;                                                  // under mMutex
};

}  // namespace android::hardware::transport
