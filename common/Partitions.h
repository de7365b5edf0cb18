#pragma once

#include <array>
#include <string>
#include <string_view>

#include "common/Texts.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** What values in files call the partitions, regardless of the mount points. */
namespace partition {
constexpr std::string_view kTvconfigs = "/tvconfigs";
constexpr std::string_view kTvdata = "/tvdata";
constexpr std::string_view kImpdata = "/impdata";
}  // namespace partition

/** Mount points of the three partitions of one set, without a slash at the end. */
struct Partitions {
    std::string tvconfigs; /**< configuration files, read-only on a device */
    std::string tvdata;    /**< writable: the country */
    std::string impdata;   /**< writable: the model and the board */
};

/** A partition: what values in files call it, and where it is. */
struct PartitionName {
    std::string_view name;
    std::string Partitions::*mountPoint;
};

/** All partitions, in the order in which a value is compared with their names. */
constexpr std::array<PartitionName, 3> kPartitionNames = {{
        {partition::kTvconfigs, &Partitions::tvconfigs},
        {partition::kTvdata, &Partitions::tvdata},
        {partition::kImpdata, &Partitions::impdata},
}};

/** Whether a path begins with the name of a partition and a slash. */
inline bool isInPartition(std::string_view path) {
    for (const PartitionName& each : kPartitionNames) {
        if (beginsWith(path, each.name) && beginsWith(path.substr(each.name.size()), "/")) {
            return true;
        }
    }
    return false;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
