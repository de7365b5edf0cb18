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

/// Moves a child's standard streams: one thread that feeds its input and collects its output and
/// errors. Every method may be called from any thread. Private to Process.
class ProcessPump {
  public:
    enum Stream : unsigned { OUT = 0, ERR = 1 };

    /// Takes the test's ends of the three pipes. The input pipe is closed as soon as `input` is
    /// written, unless `keepOpen`.
    ProcessPump(android::base::unique_fd in, android::base::unique_fd out,
                android::base::unique_fd err, std::string input, bool keepOpen);
    ~ProcessPump();
    ProcessPump(const ProcessPump&) = delete;
    ProcessPump& operator=(const ProcessPump&) = delete;

    /// What came so far.
    std::string text(Stream stream) const;

    /// Waits until `wanted` has come, at most `limit`; false when it cannot come any more.
    bool waitFor(Stream stream, std::string_view wanted, std::chrono::seconds limit) const;

    /// Queues more input, or its end.
    void send(std::string_view input);
    void closeInput();

    /// To be called when the child has ended: takes what is left in the pipes and returns. A
    /// grandchild that holds them open is not waited for.
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
    std::array<std::string, 2> mTexts;  ///< Guarded by mLock, like all below.
    std::string mInput;
    bool mKeepOpen;
    bool mFinishing = false;
    bool mDone = false;

    std::thread mThread;
};

}  // namespace mlk::testing
