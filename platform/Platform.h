#pragma once

#include "common/Partitions.h"
#include "common/Properties.h"

/*
 * Partitions and properties of the set that this process runs on, from the platform's libraries.
 * All other code takes them as arguments. Thread-safe.
 */
namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** Returns the current mount points of TvPartitionPath. */
Partitions systemPartitions();

/** Returns the system properties; never destroyed. */
Properties& systemProperties();

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
