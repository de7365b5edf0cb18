#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

/**
 * The largest file that is delivered. No file of a configuration partition comes near it. Messages
 * of the host's transport are limited to 256 MiB; the last of these is left to what a reply holds
 * beside the bytes. Both ways of delivery share the limit, so that no file is had by one way alone.
 */
constexpr size_t kMostDeliveredBytes = size_t{255} << 20;

/**
 * The largest reply that binder carries on a device, measured; the call of a larger one fails.
 * Larger files need getVendorPartitionFile, whose reply holds a descriptor only.
 */
constexpr size_t kMostReplyBytesOnDevice = 1'040'000;

/**
 * Reads a file for a client, whole or not at all: nothing when the path names no regular file, when
 * that has more than kMostDeliveredBytes, or when a read fails; the log says why.
 *
 * The file may change meanwhile. Where it becomes shorter, what it then has is the result. Where it
 * becomes longer it is read again from its beginning, with room for more; if it grows each time,
 * nothing is read. A file without a size, as the kernel's own, is empty. Bytes that are overwritten
 * meanwhile may be the old ones or the new ones. From any thread.
 *
 * @param path      the file, possibly in double quotes
 * @param placeFor  called before each reading with the size of the file, which is not 0; gives a
 *                  place for that number of bytes, or logs why it cannot and gives null
 * @return the number of bytes in the last place; 0 when nothing is to be delivered
 */
size_t readForClient(const std::string& path, const std::function<uint8_t*(size_t)>& placeFor);

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
