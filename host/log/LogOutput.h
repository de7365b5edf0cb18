#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace mlk::host {

/**
 * The destination of log messages: a descriptor whose file and flags other processes share. A
 * reader that reads gets every line. A pipe, socket or terminal without a reader costs lines, not
 * time: an account bounds how long all messages together wait. Thread-safe; messages of different
 * threads do not mix.
 */
class LogOutput {
  public:
    /** The initial and largest balance of the account. */
    static constexpr std::chrono::milliseconds kPatience{1000};
    /** Credited for each byte that is written: a second for 64 KiB. */
    static constexpr std::chrono::nanoseconds kPatienceForByte{1'000'000'000 / (64 * 1024)};

    /** The descriptor stays the caller's; it may be closed or become another file at any time. */
    explicit LogOutput(int descriptor) : mDescriptor(descriptor) {}
    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;

    /**
     * Writes a message of whole lines, or drops it when neither space nor patience is left. A
     * partly written message is finished before the next one. After dropped messages, a line with
     * their number precedes the next message. On a terminal, commands to it are escaped
     * (escapeControls). A descriptor that takes nothing any more loses the message.
     */
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
    File mFile{};                                   // the file that mRest belongs to
    std::string mRest;                              // the rest of a partly written message
    uint64_t mDropped = 0;                          // lines not yet reported
    std::chrono::nanoseconds mPatience{kPatience};  // the account
};

}  // namespace mlk::host
