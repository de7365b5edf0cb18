// Limits on the time that other processes may take, and on the replies that a device would refuse.
// Each can be set in the environment of a process, which is read once.
#pragma once

#include <chrono>
#include <cstddef>

namespace android::hardware::transport {

/**
 * How long a client may leave a message unfinished or a reply unread before the server closes its
 * connection: MLK_STALL_LIMIT_MS, by default 30 seconds.
 */
std::chrono::milliseconds stallLimit();

/**
 * The total time limit of a call that this thread makes as a client. On a thread of the RPC pool,
 * whose own clients wait meanwhile: MLK_CALL_LIMIT_MS, by default five seconds. On any other
 * thread: kForever.
 */
std::chrono::milliseconds callLimit();

/** How many descriptors this process may have open at once. */
size_t descriptorLimit();

/** Whether replies that no device would deliver are refused: MLK_REPLY_LIMIT is "device". */
bool repliesAreLimitedAsOnADevice();

}  // namespace android::hardware::transport
