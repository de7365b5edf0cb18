#pragma once

#include "common/Partitions.h"
#include "common/Properties.h"

/**
 * The set that this process runs on: what the platform's libraries say of it. Everything else takes
 * partitions and properties as arguments. From any thread.
 */
namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/** The mount points, as TvPartitionPath gives them at the time of the call. */
Partitions systemPartitions();

/** The system properties. The object lives as long as the process. */
Properties& systemProperties();

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
