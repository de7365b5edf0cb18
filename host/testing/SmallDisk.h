#pragma once

#include <string>
#include <string_view>

#include "host/testing/TempDir.h"

namespace mlk::testing {

/**
 * A file system of 64 KiB in memory, to be filled up, for one test. Only root may mount one, and
 * not in every container:
 *
 *     const SmallDisk disk;
 *     if (!disk.isMounted()) {
 *         GTEST_SKIP() << disk.problem();
 *     }
 *
 * The mount is seen by this process and those that it starts, and goes with the object.
 */
class SmallDisk {
  public:
    SmallDisk();
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return mProblem.empty(); }

    /** Why nothing is mounted. */
    const std::string& problem() const { return mProblem; }

    /** The mount point. */
    const TempDir& dir() const { return mDir; }

    /** Allocates all free blocks. */
    void fill() const;

    /** Frees them again. */
    void drain() const;

    /**
     * Makes everything read-only except one existing file. False, with problem() set, when the
     * system refuses.
     */
    bool keepWritableOnly(std::string_view file);

  private:
    bool succeeded(int result, const char* what);

    TempDir mDir;
    std::string mProblem;
};

}  // namespace mlk::testing
