#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>

namespace mlk::testing {

// What a process takes of the machine, as /proc tells it; for any process of this user.

/// How many descriptors it has open.
size_t descriptorsOf(pid_t process);

/// How many threads of its own it has: the thread sanitizer's is left out.
size_t threadsOf(pid_t process);

/// Bytes of its memory that are resident, shared pages among them.
size_t residentOf(pid_t process);

/// The most that residentOf has been since the process started, or since forgetPeakOf.
size_t peakOf(pid_t process);
void forgetPeakOf(pid_t process);

/// Processor time that all its threads have had.
std::chrono::milliseconds timeOf(pid_t process);

}  // namespace mlk::testing
