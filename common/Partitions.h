#pragma once

#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * Mount points of the three partitions of one set, without a slash at the end. Values in files call
 * the partitions "/tvconfigs", "/tvdata" and "/impdata", regardless of the mount points.
 */
struct Partitions {
    std::string tvconfigs; /**< configuration files, read-only on a device */
    std::string tvdata;    /**< writable: the country */
    std::string impdata;   /**< writable: the model and the board */
};

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
