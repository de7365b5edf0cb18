#pragma once

#include <string>

/**
 * The mount points of the three partitions of a television. On a host they lie below $MLK_ROOT:
 * $MLK_ROOT/tvconfigs, $MLK_ROOT/tvdata and $MLK_ROOT/impdata ("/tvconfigs" and so on when the
 * variable is empty or unset). Objects are immutable and live, with their texts, as long as the
 * process. Thread-safe.
 */
class TvPartitionPath {
  public:
    /**
     * Returns the paths under the root that the environment names now. A process has one root, so
     * this is always the same object; a test with several roots gets one object for each root.
     */
    static TvPartitionPath* GetInstance();

    /** Mount points, without a slash at the end; never null. */
    const char* GetTvconfigsPath() const { return mTvconfigs.c_str(); }
    const char* GetTvdataPath() const { return mTvdata.c_str(); }
    const char* GetImpdataPath() const { return mImpdata.c_str(); }

    TvPartitionPath(const TvPartitionPath&) = delete;
    TvPartitionPath& operator=(const TvPartitionPath&) = delete;

  private:
    explicit TvPartitionPath(const std::string& root);

    const std::string mTvconfigs;
    const std::string mTvdata;
    const std::string mImpdata;
};
