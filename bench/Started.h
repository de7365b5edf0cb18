#pragma once

#include <android-base/unique_fd.h>
#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace mlk::bench {

/** The names that the service registers, as in the runtime folder. */
const std::set<std::string>& serviceNames();

/** Full path of a program that was built beside this one: "vendor.morlak.mlconfigs@1.0-service". */
std::string programBeside(const std::string& name);

/**
 * A process without input, whose output is discarded. It runs on the cores of the starting thread
 * and inherits the descriptors that exec does not close. The destructor kills it.
 */
class Child {
  public:
    /** Starts the program; throws std::runtime_error on failure. */
    explicit Child(const std::vector<std::string>& argv);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return mPid; }

  private:
    pid_t mPid = -1;
};

/**
 * A process that reports readiness by entries in the runtime folder, $MLK_RUNTIME_DIR. Every
 * function throws std::runtime_error on failure and after half a minute.
 */
class Started {
  public:
    /** Empties the runtime folder, starts the program and waits for the entries. */
    Started(const std::vector<std::string>& argv, const std::set<std::string>& entries);

    /** The time from creating the process until the last entry appeared. */
    std::chrono::nanoseconds timeToReady() const { return mTimeToReady; }

    /** Waits until the process is idle and returns its resident memory in bytes. */
    size_t residentWhenIdle() const;

  private:
    void waitFor(std::set<std::string> entries);

    const android::base::unique_fd mWatch;
    std::optional<Child> mChild;
    std::chrono::nanoseconds mTimeToReady{0};
};

}  // namespace mlk::bench
