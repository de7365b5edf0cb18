#pragma once

#include <android-base/unique_fd.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace android::hardware::transport {

class ThreadPool;

/** Something with a descriptor that the pool waits for. Only one thread at a time uses it. */
class EventSource {
  public:
    virtual ~EventSource() = default;

    /** The pool's next step for the source. */
    enum class Next {
        WAIT_FOR_INPUT,
        WAIT_FOR_SPACE,  // wait until bytes can be sent
        DROP,            // forget the source
    };
    /** events: as reported by epoll. An exception drops the source, like DROP. */
    virtual Next onEvents(uint32_t events, ThreadPool& pool) = 0;
    virtual int descriptor() const = 0;
};

/**
 * The threads that answer calls and hear of deaths. Every thread waits for all sources. The thread
 * that gets an event serves its source; the pool starts another thread when none is left waiting
 * and the maximum allows it. So a call never passes from thread to thread, and an idle process has
 * one thread. Threads never end.
 *
 * Thread-safe. A process has one pool, which is never destroyed.
 */
class ThreadPool {
  public:
    static ThreadPool& instance();

    /** maxThreads: at least 1. callerWillJoin: whether one of them will come by join(). */
    void configure(size_t maxThreads, bool callerWillJoin);
    /** Starts the first thread unless it has been started. */
    void start();
    /**
     * Makes the calling thread a thread of the pool. An unannounced thread sleeps when the pool
     * already has its maximum.
     */
    [[noreturn]] void join();

    /** Whether the calling thread belongs to the pool. */
    static bool ownsThisThread();

    /**
     * Starts to wait for the source. With input false, waits only for the other end to close.
     * Returns an id for the source; 0 when the kernel refuses it.
     */
    uint64_t add(std::shared_ptr<EventSource> source, bool input);
    /** Forgets the source. A thread that is serving it finishes its current event. */
    void remove(uint64_t id);

    /**
     * Takes the source out of the epoll instance until its onEvents returns: the kernel then does
     * less for each message to it. Only this onEvents may call it, otherwise the pool never hears
     * of the source again.
     */
    void silence(const EventSource& source);

    /** Whether a thread is waiting for events. Then the calling thread may stay with its source. */
    bool anyThreadWaits() const { return mWaiting.load(std::memory_order_relaxed) > 0; }

  private:
    ThreadPool();
    [[noreturn]] void run();
    void serve(uint64_t id, uint32_t events);
    bool waitAgainLocked(uint64_t id, int descriptor, EventSource::Next next);
    bool takePlace();
    void startThreadLocked();
    void startThreadIfNoneWaits();

    const ::android::base::unique_fd mEpoll;
    std::atomic<int> mWaiting{0};  // threads in epoll_wait or on their way there

    std::mutex mMutex;
    std::unordered_map<uint64_t, std::shared_ptr<EventSource>> mSources;  // under mMutex
    uint64_t mLastId = 0;                                                 // under mMutex
    size_t mMaxThreads = 1;                                               // under mMutex
    bool mCallerWillJoin = false;                                         // under mMutex
    size_t mThreads = 0;                                                  // under mMutex
};

}  // namespace android::hardware::transport
