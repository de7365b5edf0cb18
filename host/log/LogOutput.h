#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace mlk::host {

/// Where log messages are written: a descriptor whose file, and whose flags, other processes share.
/// A reader that reads gets every line; a pipe, socket or terminal that nobody reads costs lines,
/// not time: how long all messages together have waited is held to an account. May be called from
/// any thread; messages of different threads do not mix.
class LogOutput {
  public:
    /// What the account holds at most, and at first.
    static constexpr std::chrono::milliseconds kPatience{1000};
    /// What is paid into it for each byte that is taken: a second for 64 KiB.
    static constexpr std::chrono::nanoseconds kPatienceForByte{1'000'000'000 / (64 * 1024)};

    /// The descriptor stays the caller's; it may be closed, or become another file, at any time.
    explicit LogOutput(int descriptor) : mDescriptor(descriptor) {}
    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;

    /// Writes a message of whole lines, or drops it when there is no room and no patience left.
    /// A message that is begun is finished before the next one. Before the first message after some
    /// were dropped a line says how many lines those had. On a terminal, what would be a command to
    /// it is escaped (escapeControls). A descriptor that takes nothing any more loses the message.
    void write(std::string_view message);

  private:
    class Target;
    struct File {
        dev_t device;
        ino_t number;
    };

    bool put(Target& target, std::string_view text);
    void writeToFile(std::string_view text) const;
    void forgetUnless(const File& file);

    const int mDescriptor;
    std::mutex mMutex;
    // All under the mutex.
    File mFile{};                                   // what the rest belongs to
    std::string mRest;                              // of a message that is begun
    uint64_t mDropped = 0;                          // lines that nobody has been told of
    std::chrono::nanoseconds mPatience{kPatience};  // the account
};

}  // namespace mlk::host
