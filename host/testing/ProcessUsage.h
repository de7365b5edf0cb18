#pragma once

#include <sys/resource.h>
#include <sys/types.h>

#include <chrono>
#include <cstddef>

namespace mlk::testing {

// The resources that a process uses, from /proc; for any process of this user.

/** The number of open descriptors. */
size_t descriptorsOf(pid_t process);

/** The number that the next descriptor gets. */
size_t lowestFreeDescriptorOf(pid_t process);

/**
 * Limits the numbers of the descriptors that a running process opens from now on, until the object
 * is destroyed. It keeps those that it has.
 */
class DescriptorLimit {
  public:
    /** @param limit  the first number that it may not use */
    DescriptorLimit(pid_t process, size_t limit);
    /** Lets it open none, unless it closes one that it has. */
    explicit DescriptorLimit(pid_t process)
        : DescriptorLimit(process, lowestFreeDescriptorOf(process)) {}
    ~DescriptorLimit();
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

  private:
    const pid_t mProcess;
    rlimit mFormer{};
};

/** The number of descriptors that its epoll instances wait for. */
size_t awaitedBy(pid_t process);

/** The number of the program's own threads, without the thread sanitizer's. */
size_t threadsOf(pid_t process);

/** Resident memory in bytes, including shared pages. */
size_t residentOf(pid_t process);

/** The peak of residentOf since the process started, or since forgetPeakOf. */
size_t peakOf(pid_t process);
void forgetPeakOf(pid_t process);

/** The processor time of all its threads. */
std::chrono::milliseconds timeOf(pid_t process);

}  // namespace mlk::testing
