#pragma once

#include <algorithm>
#include <chrono>

namespace mlk::testing {

/**
 * Tells whether a thread that must come back within a time did so: on a busy machine it may not get
 * a processor for that long, and its test has to begin again. For one thread.
 */
class Pace {
  public:
    /** @param most  the longest time between the beginning and step(), and between two of these */
    explicit Pace(std::chrono::milliseconds most) : mMost(most) {}

    /** The thread has come back. */
    void step() {
        const Clock::time_point now = Clock::now();
        mLongest = std::max(mLongest, now - mLast);
        mLast = now;
    }
    /** Whether it once took longer. */
    bool wasLate() const { return mLongest > mMost; }

  private:
    using Clock = std::chrono::steady_clock;

    const Clock::duration mMost;
    Clock::time_point mLast = Clock::now();
    Clock::duration mLongest{0};
};

}  // namespace mlk::testing
