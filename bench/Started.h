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

/// The names that the service registers, as they appear in the runtime folder.
const std::set<std::string>& serviceNames();

/// Full path of a program that was built beside this one: "vendor.morlak.mlconfigs@1.0-service".
std::string programBeside(const std::string& name);

/// A process without input, whose output is dropped. It runs on the cores that the starting thread
/// may run on, inherits what descriptors are not closed by exec, and is killed by the destructor.
class Child {
  public:
    /// Throws std::runtime_error when it cannot be started.
    explicit Child(const std::vector<std::string>& argv);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return mPid; }

  private:
    pid_t mPid = -1;
};

/// A process that says that it is ready by entries in the runtime folder, $MLK_RUNTIME_DIR.
/// Everything here throws std::runtime_error when it fails, or takes half a minute.
class Started {
  public:
    /// Empties the runtime folder, starts the program and waits for the entries.
    Started(const std::vector<std::string>& argv, const std::set<std::string>& entries);

    /// From just before the process was made to just after the last entry appeared.
    std::chrono::nanoseconds timeToReady() const { return mTimeToReady; }

    /// Bytes of its memory that are resident, once it has nothing more to do.
    size_t residentWhenIdle() const;

  private:
    void waitFor(std::set<std::string> entries);

    const android::base::unique_fd mWatch;
    std::optional<Child> mChild;
    std::chrono::nanoseconds mTimeToReady{0};
};

}  // namespace mlk::bench
