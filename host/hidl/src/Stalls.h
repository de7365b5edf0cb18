// Stalls: what connections keep of this process while they wait for their clients.
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

// Bounds the bytes of unfinished messages, the bytes of unsent replies, and the descriptors of
// both, of all connections together; and the time each may take. Who would exceed a bound gets in
// if a connection that keeps no less has made no progress for a second, or one keeps more than
// twice as much: that one is closed instead. So a client that hoards costs nobody but itself.
//
// A connection is closed by shutting its socket down: the pool hears of that and frees the rest.
// Thread-safe.
class Stalls {
  public:
    using Clock = std::chrono::steady_clock;

    struct Bounds {
        uint64_t messageBytes;
        uint64_t replyBytes;
        size_t descriptors;
        std::chrono::milliseconds time;
    };
    // wake: called, with the lock held, when something has to be ended after this time.
    explicit Stalls(const Bounds& bounds, std::function<void(std::chrono::milliseconds)> wake = {});

    // Those of the server's connections of this process; the pool ends them in time.
    static Stalls& instance();

    // Closes the connections whose time is over, and has itself woken for the next.
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
    Clock::time_point mLastLine{};                         // under mMutex: of the log
    size_t mUntold = 0;                                    // under mMutex: closed without a line
};

// What one connection keeps for one reason. One thread at a time uses it, as it has the connection.
class Stall {
  public:
    enum class Kind { MESSAGE, REPLY };

    // The socket is that of the connection, and outlives this.
    Stall(Kind kind, int socket, Stalls& stalls = Stalls::instance())
        : mKind(kind), mSocket(socket), mStalls(stalls) {}
    ~Stall() { end(); }
    Stall(const Stall&) = delete;
    Stall& operator=(const Stall&) = delete;

    // Counts this instead of what was counted before. False when there is no room: nothing is
    // counted then. Its time runs from the first of these calls, or from the last progress().
    bool keep(uint64_t bytes, size_t descriptors);
    // The client has gone on: its time starts anew.
    void progress();
    // There is no limit to its time, because it is not the client that is waited for.
    void stopClock();
    // Nothing is kept any more.
    void end();

  private:
    friend class Stalls;

    const Kind mKind;
    const int mSocket;
    Stalls& mStalls;
    bool mKeeps = false;  // whether mStalls knows it; only the connection's thread looks
    // Under the lock of mStalls.
    uint64_t mBytes = 0;
    size_t mDescriptors = 0;
    bool mTimed = false;
    bool mClosed = false;
    Stalls::Clock::time_point mSince{};
};

}  // namespace android::hardware::transport
