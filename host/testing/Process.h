#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace mlk::testing {

class ProcessPump;

/// How a Process is started; an aggregate, so that tests write `{{{"NAME", "value"}}, "input"}`.
struct ProcessOptions {
    /// Variables that are added to, or replace, those of the test's own environment.
    std::map<std::string, std::string> env = {};
    /// What the program reads from its standard input, before anything from Process::send.
    std::string stdinText = {};
    /// The standard input stays open after stdinText, for Process::send, until Process::closeInput.
    bool keepInputOpen = false;
    /// The folder it is started in; empty: the test's own.
    std::string directory = {};
};

/// A program that a test runs: what it writes is captured from the start by a thread, so it never
/// waits for the test to read. It does not outlive the test: it is killed (SIGKILL) and reaped by
/// the destructor, and dies with the thread that started it. Its methods are for that thread, but
/// out, err, waitForOut, waitForErr, send and pid may be called from any.
class Process {
  public:
    using Options = ProcessOptions;

    /// Starts argv[0], which is looked up in PATH when it has no slash. Throws std::system_error
    /// when the program cannot be started.
    explicit Process(std::vector<std::string> argv, Options options = {});
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Waits until the program has ended and all it wrote is in out() and err(). Gives its exit
    /// status, or 128 + the signal's number when a signal ended it. The same answer again when
    /// called again.
    int wait();

    /// Whether it has not ended yet.
    bool running() const;

    /// What it wrote so far to standard output and standard error.
    std::string out() const;
    std::string err() const;

    /// Waits until it has written `text` to standard error (or output), at most `limit`. False when
    /// the time is over, or the program has ended without writing it.
    bool waitForErr(std::string_view text,
                    std::chrono::seconds limit = std::chrono::seconds(30)) const;
    bool waitForOut(std::string_view text,
                    std::chrono::seconds limit = std::chrono::seconds(30)) const;

    /// Gives it more standard input; returns at once. Only with keepInputOpen; what it does not
    /// read before it ends is dropped.
    void send(std::string_view text);

    /// Ends its standard input after what has been sent.
    void closeInput();

    /// Sends it a signal; does nothing when it has been waited for.
    void kill(int signal);

    pid_t pid() const { return mPid; }

  private:
    pid_t mPid = -1;
    bool mReaped = false;
    int mStatus = -1;
    std::unique_ptr<ProcessPump> mPump;
};

/// The folder of the programs under test, $MLK_BIN_DIR; throws std::runtime_error when that is not
/// set.
std::string binDir();

/// The tree that the test was built from, as CTest gives it in MLK_SOURCE_DIR; throws without.
std::string sourceDir();

}  // namespace mlk::testing
