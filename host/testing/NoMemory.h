#pragma once

#include <new>

namespace mlk::testing {

/**
 * While it lives, memory runs out once for the thread that made it: an allocation by operator new
 * throws std::bad_alloc. For tests of code that is part of the test program, whose operators it
 * replaces (library host_no_memory).
 */
class NoMemory {
  public:
    /** False with the thread sanitizer, whose operators cannot be replaced; nothing fails then. */
    static bool isPossible();

    /** @param before  how many allocations succeed before the one that fails */
    explicit NoMemory(long before);
    ~NoMemory();
    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;
};

/**
 * Makes a change again and again. Memory runs out at its first allocation, then at its second, and
 * so on, until the change is made.
 *
 * @param change        returns false or throws std::bad_alloc if it fails
 * @param afterFailure  is called after each failure, with enough memory
 * @return the number of failures
 */
template <typename Change, typename AfterFailure>
long failAtEachAllocation(const Change& change, const AfterFailure& afterFailure) {
    for (long failures = 0;; ++failures) {
        bool isMade = false;
        try {
            const NoMemory none(failures);
            isMade = change();
        } catch (const std::bad_alloc&) {
        }
        if (isMade) {
            return failures;
        }
        afterFailure();
    }
}

}  // namespace mlk::testing
