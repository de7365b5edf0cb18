#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The size of the largest file that is delivered, by getTvFile and getVendorPartitionFile alike.
 * The files of the configuration partitions are far smaller. A message of the host's transport has
 * at most 256 MiB; the last MiB is for the rest of the reply.
 */
constexpr size_t kMostDeliveredBytes = size_t{255} << 20;

/**
 * The size of the largest reply that binder carries on a device, measured; a call with a larger
 * reply fails. Larger files need getVendorPartitionFile, whose reply holds only a descriptor.
 */
constexpr size_t kMostReplyBytesOnDevice = 1'040'000;

/**
 * Reads a file for a client, whole or not at all. Reads nothing, and logs why, if the path names no
 * regular file, if the file has more than kMostDeliveredBytes, or if a read fails.
 *
 * The file may change during the call. If it becomes shorter, the result is its shorter content. If
 * it becomes longer, it is read again from its beginning into a larger buffer; if it grows at each
 * attempt, nothing is read. A file that reports the size 0, as those of /proc do, counts as empty.
 * A byte that another process overwrites may be the old one or the new one. Any thread may call.
 *
 * @param path      the file, possibly in double quotes
 * @param placeFor  called before each attempt with the size of the file, which is not 0; gives a
 *                  buffer of that size, or logs why it cannot and gives null
 * @return the number of bytes in the last buffer; 0 if there is nothing to deliver
 */
size_t readForClient(const std::string& path, const std::function<uint8_t*(size_t)>& placeFor);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
