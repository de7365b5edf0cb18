#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mlkctl/Services.h"

namespace mlk::ctl {

/** A path inside a partition. */
struct Mounted {
    std::string name;        // of the partition, as paths in its files begin: "/tvconfigs"
    std::string mountPoint;  // where it is: "/tmp/set/tvconfigs"
    std::string path;        // below the mount point
};

/** Where the service has the partitions. */
class Mounts {
  public:
    struct Mount {
        std::string name;
        std::string mountPoint;
    };

    explicit Mounts(std::vector<Mount> mounts) : mMounts(std::move(mounts)) {}

    /**
     * Where a path is that begins with a partition's name, as "/tvconfigs/customer.ini" or without
     * its first slash; nothing for any other path.
     */
    std::optional<Mounted> find(std::string_view path) const;

    /**
     * A path below a mount point as the partitions' files write it: with the partition's name
     * instead. Any other text, a mount point itself included, is returned as it is.
     */
    std::string asWritten(const std::string& path) const;

    const std::vector<Mount>& all() const { return mMounts; }

  private:
    std::vector<Mount> mMounts;
};

/** Asks the service. Throws Failure as Services::ask does. */
Mounts mountsOf(Services& services);

/** Whether a text of two characters or more is the beginning of a partition's name: "/tv". */
bool beginsAPartition(std::string_view text);

/** Whether a path begins with a partition's name, with or without a slash in front. */
bool beginsWithPartition(std::string_view path);

}  // namespace mlk::ctl
