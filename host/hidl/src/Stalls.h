#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <unordered_set>

namespace android::hardware::transport {

class Stall;

/**
 * Bounds what connections keep in this process while they wait for their clients: the bytes of
 * unfinished messages, the bytes of unsent replies and the descriptors of both, over all
 * connections, and the time that each may take. A connection that would exceed a bound is let in if
 * another one keeps at least as much and has waited for a second, or keeps more than twice as much:
 * that one is closed instead. So a client that hoards harms only itself. A message waits from its
 * first byte on, a reply from the last byte that its client read.
 *
 * Stalls closes a connection by shutting its socket down; the pool notices that and frees the rest.
 * Thread-safe.
 */
class Stalls {
  public:
    using Clock = std::chrono::steady_clock;

    struct Bounds {
        uint64_t messageBytes;
        uint64_t replyBytes;
        size_t descriptors;
        std::chrono::milliseconds time;
    };
    /** wake: called with the lock held when endOverdue() is due after this time. */
    explicit Stalls(const Bounds& bounds, std::function<void(std::chrono::milliseconds)> wake = {});

    /** The instance for the server connections of this process; the pool closes overdue ones. */
    static Stalls& instance();

    /** Closes the connections whose time is over, and schedules the next wake-up. */
    void endOverdue();

  private:
    friend class Stall;

    bool makeRoomLocked(const Stall& wanting);
    bool exceedsLocked(const Stall& wanting, bool* byDescriptors) const;
    Stall* victimLocked(const Stall& wanting, bool byDescriptors) const;
    void closeLocked(Stall* stall, const char* why);
    void countLocked(const Stall& stall, int sign);
    void wakeLocked(std::chrono::milliseconds delay);

    const Bounds mBounds;
    const std::function<void(std::chrono::milliseconds)> mWake;
    std::mutex mMutex;
    std::unordered_set<Stall*> mStalls;                    // under mMutex
    uint64_t mBytes[2] = {};                               // under mMutex: by Stall::Kind
    size_t mDescriptors = 0;                               // under mMutex
    Clock::time_point mWakeAt = Clock::time_point::max();  // under mMutex
    Clock::time_point mLastLine{};  // under mMutex: the time of the last log line
    size_t mUntold = 0;             // under mMutex: connections closed without a log line
};

/** What one connection keeps for one reason. Only the thread that serves the connection uses it. */
class Stall {
  public:
    enum class Kind { MESSAGE, REPLY };

    /** The socket is the connection's and must outlive this object. */
    Stall(Kind kind, int socket, Stalls& stalls = Stalls::instance())
        : mKind(kind), mSocket(socket), mStalls(stalls) {}
    ~Stall() { end(); }
    Stall(const Stall&) = delete;
    Stall& operator=(const Stall&) = delete;

    /**
     * Counts this amount instead of the previous one. False when it would exceed a bound; nothing
     * is counted then. The time runs from the first such call or from the last progress().
     */
    bool keep(uint64_t bytes, size_t descriptors);
    /** The client has made progress: its time starts anew. */
    void progress();
    /** Nothing is kept any more. */
    void end();

  private:
    friend class Stalls;

    const Kind mKind;
    const int mSocket;
    Stalls& mStalls;
    bool mKeeps = false;  // whether mStalls knows it; only the connection's thread reads it
    // Under the lock of mStalls.
    uint64_t mBytes = 0;
    size_t mDescriptors = 0;
    bool mClosed = false;
    Stalls::Clock::time_point mSince{};
};

}  // namespace android::hardware::transport
