#pragma once

#include <android-base/unique_fd.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace mlk::testing {

/**
 * Feeds a child's standard input and collects its output and errors on one thread. Thread-safe.
 * Private to Process.
 */
class ProcessPump {
  public:
    enum Stream : unsigned { OUT = 0, ERR = 1 };

    /**
     * Takes the test's ends of the three pipes. Closes the input pipe after writing `input`, unless
     * `keepOpen`.
     */
    ProcessPump(android::base::unique_fd in, android::base::unique_fd out,
                android::base::unique_fd err, std::string input, bool keepOpen);
    ~ProcessPump();
    ProcessPump(const ProcessPump&) = delete;
    ProcessPump& operator=(const ProcessPump&) = delete;

    /** The output so far. */
    std::string text(Stream stream) const;

    /** Waits at most `limit` until `wanted` has arrived; false when it cannot arrive any more. */
    bool waitFor(Stream stream, std::string_view wanted, std::chrono::seconds limit) const;

    /** Queues more input, or its end. */
    void send(std::string_view input);
    void closeInput();

    /**
     * Call it when the child has ended: reads the rest of the pipes and returns. It does not wait
     * for a grandchild that holds them open.
     */
    void finish();

  private:
    void run();
    void feed();
    bool collect(Stream stream);
    void wake();

    android::base::unique_fd mIn;
    std::array<android::base::unique_fd, 2> mFrom;
    android::base::unique_fd mWake;

    mutable std::mutex mLock;
    mutable std::condition_variable mChanged;
    std::array<std::string, 2> mTexts;  // guarded by mLock, as all members below
    std::string mInput;
    bool mKeepOpen;
    bool mFinishing = false;
    bool mDone = false;

    std::thread mThread;
};

}  // namespace mlk::testing
