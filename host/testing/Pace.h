#pragma once

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

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

/**
 * What `attempt` returns as an optional, at the first attempt that returns something. Throws after
 * some attempts on a machine that is too busy for all of them.
 */
template <typename Attempt>
auto onTime(const Attempt& attempt) {
    constexpr int kAttempts = 10;
    for (int i = 0; i < kAttempts; ++i) {
        if (auto result = attempt()) {
            return *std::move(result);
        }
    }
    throw std::runtime_error("the machine is too busy for this test");
}

}  // namespace mlk::testing
