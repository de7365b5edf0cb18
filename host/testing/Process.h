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

/** Options of a Process; an aggregate, so that tests write `{{{"NAME", "value"}}, "input"}`. */
struct ProcessOptions {
    /** Variables that extend or replace those of the test's environment. */
    std::map<std::string, std::string> env = {};
    /** The beginning of the standard input, before anything from Process::send. */
    std::string stdinText = {};
    /**
     * Keeps the standard input open after stdinText, for Process::send, until Process::closeInput.
     */
    bool keepInputOpen = false;
    /** The working directory; empty: the test's own. */
    std::string directory = {};
};

/**
 * A program that a test runs. A thread captures its output from the start, so the program never
 * waits for the test to read. The destructor kills (SIGKILL) and reaps it; it also dies with the
 * thread that started it. Only that thread may call the methods, except for out, err, waitForOut,
 * waitForErr, send and pid, which any thread may call.
 */
class Process {
  public:
    using Options = ProcessOptions;

    /**
     * Starts argv[0], which is looked up in PATH if it has no slash. Throws std::system_error when
     * the program cannot be started.
     */
    explicit Process(std::vector<std::string> argv, Options options = {});
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /**
     * Waits until the program has ended and its whole output is in out() and err(). Returns its
     * exit status, or 128 plus the number of the signal that ended it. Later calls return the same.
     */
    int wait();

    /** Whether the program is still running. */
    bool running() const;

    /** Its output so far on standard output and standard error. */
    std::string out() const;
    std::string err() const;

    /**
     * Waits at most `limit` until the program has written `text` to standard error (or output).
     * False when the time is over or the program ended without it.
     */
    bool waitForErr(std::string_view text,
                    std::chrono::seconds limit = std::chrono::seconds(30)) const;
    bool waitForOut(std::string_view text,
                    std::chrono::seconds limit = std::chrono::seconds(30)) const;

    /**
     * Adds standard input; returns at once. Only with keepInputOpen. Input that the program does
     * not read before it ends is dropped.
     */
    void send(std::string_view text);

    /** Closes its standard input after everything that was sent. */
    void closeInput();

    /** Sends a signal; has no effect after wait(). */
    void kill(int signal);

    pid_t pid() const { return mPid; }

  private:
    pid_t mPid = -1;
    bool mReaped = false;
    int mStatus = -1;
    std::unique_ptr<ProcessPump> mPump;
};

/**
 * The folder of the programs under test, $MLK_BIN_DIR; throws std::runtime_error when it is unset.
 */
std::string binDir();

/**
 * The source tree of the test, from MLK_SOURCE_DIR, which CTest sets; throws std::runtime_error
 * when it is unset.
 */
std::string sourceDir();

}  // namespace mlk::testing
