#pragma once

#include <android-base/unique_fd.h>

#include <cstdint>

namespace mlk::host {

/// The name of this kind of memory: in a hidl_memory, and as an instance of the allocator.
inline constexpr char kAshmem[] = "ashmem";

/// Makes a block of memory that processes share: a memfd of exactly `size` bytes, all zero and all
/// backed by memory, so that a shortage shows here and not when somebody touches a byte. It is
/// sealed: whoever gets the descriptor can neither shrink it under the feet of those that have it
/// mapped, nor let it grow. No descriptor, and errno says why, when the system has none, has no
/// memory left, or lets no file become that large. Any thread may call it.
android::base::unique_fd createSharedBlock(uint64_t size);

}  // namespace mlk::host
