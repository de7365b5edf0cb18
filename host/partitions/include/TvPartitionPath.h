#pragma once

#include <string>

/// Where the three partitions of a television are mounted. On a host that is below $MLK_ROOT:
/// $MLK_ROOT/tvconfigs, $MLK_ROOT/tvdata and $MLK_ROOT/impdata ("/tvconfigs" and so on when the
/// variable is empty or not set). Objects never change and live as long as the process, their texts
/// with them; any thread may use them.
class TvPartitionPath {
  public:
    /// The paths under the root that the environment names now. A process has one root, and then
    /// this is always the same object; a test that has several in turn gets one object a root.
    static TvPartitionPath* GetInstance();

    /// Mount points, without a slash at the end; never null.
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
