#pragma once

#include <string>
#include <string_view>

#include "host/testing/TempDir.h"

namespace mlk::testing {

/// A file system of 64 KiB in memory, to be filled up, for one test. Only root may mount one, and
/// not in every container:
///
///     const SmallDisk disk;
///     if (!disk.isMounted()) {
///         GTEST_SKIP() << disk.problem();
///     }
///
/// The mount is seen by this process and those that it starts, and goes with the object.
class SmallDisk {
  public:
    SmallDisk();
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return mProblem.empty(); }

    /// Why nothing is mounted.
    const std::string& problem() const { return mProblem; }

    /// Where it is mounted.
    const TempDir& dir() const { return mDir; }

    /// Takes all free blocks.
    void fill() const;

    /// Gives them back.
    void drain() const;

    /// Makes everything read-only but one file, which has to exist. False, with problem() set, when
    /// the system refuses that.
    bool keepWritableOnly(std::string_view file);

  private:
    bool succeeded(int result, const char* what);

    TempDir mDir;
    std::string mProblem;
};

}  // namespace mlk::testing
