#include "Stalls.h"

#include <log/log.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <memory>
#include <utility>

#include "Limits.h"
#include "Socket.h"
#include "ThreadPool.h"
#include "Wire.h"

#undef LOG_TAG
#define LOG_TAG "hidl"

namespace android::hardware::transport {

namespace {

using std::chrono::milliseconds;

// The largest calls of a whole pool of threads at once; the largest reply once.
constexpr uint64_t kMostMessageBytes = uint64_t{16} * 1024 * 1024;
constexpr uint64_t kMostReplyBytes = kMaxReplyBody + sizeof(Header);
constexpr size_t kMostDescriptors = 512;
// A stall without progress for this long may be closed in favour of another.
constexpr milliseconds kFresh{1000};
// At most one line in this time: stalled clients must not fill the log.
constexpr milliseconds kBetweenLines{1000};

// A share of the process's descriptors, so that clients cannot use up the rest.
size_t mostDescriptors(size_t bound) {
    return std::min(bound, descriptorLimit() / 4);
}

// Wakes a thread of the pool when the time of a stall is over.
class StallTimer : public EventSource {
  public:
    StallTimer() : mTimer(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {}

    void set(milliseconds delay) const {
        const auto left = std::max(delay, milliseconds{1}).count();
        itimerspec time{};
        time.it_value.tv_sec = left / 1000;
        time.it_value.tv_nsec = left % 1000 * 1'000'000;
        (void)timerfd_settime(mTimer.get(), 0, &time, nullptr);
    }
    Next onEvents(uint32_t, ThreadPool&) override {
        uint64_t expirations;
        if (read(mTimer.get(), &expirations, sizeof(expirations)) > 0) {
            Stalls::instance().endOverdue();
        }
        return Next::WAIT_FOR_INPUT;
    }
    int descriptor() const override { return mTimer.get(); }

  private:
    const unique_fd mTimer;
};

}  // namespace

Stalls::Stalls(const Bounds& bounds, std::function<void(milliseconds)> wake)
    : mBounds(bounds), mWake(std::move(wake)) {}

Stalls& Stalls::instance() {
    static auto* stalls = [] {
        const auto timer = std::make_shared<StallTimer>();
        if (timer->descriptor() >= 0) {
            (void)ThreadPool::instance().add(timer, true);
        }
        return new Stalls({kMostMessageBytes, kMostReplyBytes, kMostDescriptors, stallLimit()},
                          [timer](milliseconds delay) { timer->set(delay); });
    }();
    return *stalls;
}

void Stalls::countLocked(const Stall& stall, int sign) {
    const auto kind = static_cast<size_t>(stall.mKind);
    mBytes[kind] += static_cast<uint64_t>(sign) * stall.mBytes;
    mDescriptors += static_cast<size_t>(sign) * stall.mDescriptors;
}

bool Stalls::exceedsLocked(const Stall& wanting, bool* byDescriptors) const {
    const bool isMessage = wanting.mKind == Stall::Kind::MESSAGE;
    const uint64_t most = isMessage ? mBounds.messageBytes : mBounds.replyBytes;
    *byDescriptors = false;
    if (wanting.mBytes > 0 && mBytes[static_cast<size_t>(wanting.mKind)] > most) {
        return true;
    }
    *byDescriptors = true;
    return wanting.mDescriptors > 0 && mDescriptors > mostDescriptors(mBounds.descriptors);
}

Stall* Stalls::victimLocked(const Stall& wanting, bool byDescriptors) const {
    const auto amount = [&](const Stall& stall) -> uint64_t {
        if (byDescriptors) {
            return stall.mDescriptors;
        }
        return stall.mKind == wanting.mKind ? stall.mBytes : 0;
    };
    const Clock::time_point fresh = Clock::now() - kFresh;
    const uint64_t wanted = amount(wanting);
    Stall* victim = nullptr;
    for (Stall* const stall : mStalls) {
        const uint64_t kept = amount(*stall);
        if (stall == &wanting || stall->mClosed || kept == 0) {
            continue;
        }
        if (kept <= 2 * wanted && (kept < wanted || stall->mSince > fresh)) {
            continue;
        }
        const bool more = victim == nullptr || kept > amount(*victim) ||
                          (kept == amount(*victim) && stall->mSince < victim->mSince);
        if (more) {
            victim = stall;
        }
    }
    return victim;
}

bool Stalls::makeRoomLocked(const Stall& wanting) {
    bool byDescriptors = false;
    while (exceedsLocked(wanting, &byDescriptors)) {
        Stall* const victim = victimLocked(wanting, byDescriptors);
        if (victim == nullptr) {
            return false;
        }
        closeLocked(victim, "others need the space");
    }
    return true;
}

void Stalls::closeLocked(Stall* stall, const char* why) {
    // Stop counting what it keeps: the pool is about to free it.
    countLocked(*stall, -1);
    stall->mClosed = true;
    (void)shutdown(stall->mSocket, SHUT_RDWR);
    const Clock::time_point now = Clock::now();
    if (now - mLastLine < kBetweenLines) {
        ++mUntold;
        return;
    }
    mLastLine = now;
    ALOGW("closing the connection of a client that left %s, %" PRIu64
          " bytes and %zu descriptors: %s; %zu more since the last such line",
          stall->mKind == Stall::Kind::MESSAGE ? "its message unfinished" : "its reply unread",
          stall->mBytes, stall->mDescriptors, why, std::exchange(mUntold, 0));
}

void Stalls::wakeLocked(milliseconds delay) {
    const Clock::time_point at = Clock::now() + delay;
    if (!mWake || mWakeAt <= at) {
        return;
    }
    mWakeAt = at;
    mWake(delay);
}

void Stalls::endOverdue() {
    std::lock_guard<std::mutex> lock(mMutex);
    const Clock::time_point now = Clock::now();
    mWakeAt = Clock::time_point::max();
    Clock::time_point next = Clock::time_point::max();
    for (Stall* const stall : mStalls) {
        if (stall->mClosed) {
            continue;
        }
        const Clock::time_point end = stall->mSince + mBounds.time;
        if (end <= now) {
            closeLocked(stall, "its time is over");
        } else {
            next = std::min(next, end);
        }
    }
    if (next != Clock::time_point::max()) {
        wakeLocked(std::chrono::ceil<milliseconds>(next - now));
    }
}

bool Stall::keep(uint64_t bytes, size_t descriptors) {
    std::lock_guard<std::mutex> lock(mStalls.mMutex);
    if (!mKeeps) {
        mStalls.mStalls.insert(this);
        mKeeps = true;
        mClosed = false;
        mSince = Stalls::Clock::now();
    } else if (!mClosed) {
        mStalls.countLocked(*this, -1);
    }
    mBytes = bytes;
    mDescriptors = descriptors;
    if (!mClosed) {
        mStalls.countLocked(*this, 1);
    }
    if (mClosed || !mStalls.makeRoomLocked(*this)) {
        if (!mClosed) {
            mStalls.countLocked(*this, -1);
        }
        mStalls.mStalls.erase(this);
        mKeeps = false;
        return false;
    }
    mStalls.wakeLocked(mStalls.mBounds.time);
    return true;
}

void Stall::progress() {
    if (!mKeeps) {
        return;
    }
    std::lock_guard<std::mutex> lock(mStalls.mMutex);
    mSince = Stalls::Clock::now();
}

void Stall::end() {
    if (!mKeeps) {
        return;
    }
    std::lock_guard<std::mutex> lock(mStalls.mMutex);
    if (!mClosed) {
        mStalls.countLocked(*this, -1);
    }
    mStalls.mStalls.erase(this);
    mKeeps = false;
}

}  // namespace android::hardware::transport
