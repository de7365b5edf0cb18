#pragma once

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace mlk {

/** How to start a program. */
struct ChildStart {
    /** Program and arguments. A program without a slash is looked for in PATH. */
    std::vector<std::string> words;
    /** "NAME=VALUE", all of them; nothing for this process's environment. */
    std::optional<std::vector<std::string>> environment = std::nullopt;
    std::string input = "/dev/null"; /**< a file */
    std::string errors = "";         /**< a file that is written anew; empty for standard error */
};

/**
 * A program that runs, and whose standard output is read from a pipe. The destructor ends it. One
 * thread.
 */
class ChildProcess {
  public:
    /** Starts the program; error() tells whether that succeeded. */
    explicit ChildProcess(ChildStart start);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /** Why the program was not started, an errno; 0 if it was. */
    int error() const { return mError; }

    /** The end of the pipe that gives what the program prints; -1 if it was not started. */
    int output() const { return mOutput; }

    /** Waits for its end. Gives its exit status; nothing if a signal has ended it. Called once. */
    std::optional<int> wait();

  private:
    pid_t mPid = -1;  // until it has been waited for
    int mOutput = -1;
    int mError = 0;
};

}  // namespace mlk
