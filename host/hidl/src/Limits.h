// What bounds the time that others may take, and what a device would refuse. Each can be set in the
// environment of a process, which is read once.
#pragma once

#include <chrono>

namespace android::hardware::transport {

// How long a client may leave a message unfinished, or a reply untouched, before its connection is
// closed: MLK_STALL_LIMIT_MS, 30 seconds unless that is set.
std::chrono::milliseconds stallLimit();

// How long a call that this thread makes as a client may take altogether: on a thread of the RPC
// pool, whose own clients wait meanwhile, MLK_CALL_LIMIT_MS, five seconds unless that is set;
// kForever on any other.
std::chrono::milliseconds callLimit();

// Whether replies that no device would deliver are refused: MLK_REPLY_LIMIT is "device".
bool repliesAreLimitedAsOnADevice();

}  // namespace android::hardware::transport
