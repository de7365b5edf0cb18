#pragma once

#include <android-base/unique_fd.h>

#include <cstdint>

namespace mlk::host {

/** The name of this kind of memory: in a hidl_memory, and as an instance of the allocator. */
inline constexpr char kAshmem[] = "ashmem";

/**
 * Makes a block of memory that processes share: a memfd of exactly `size` bytes, all zero and all
 * allocated, so that a shortage shows here and not at a later access. It is sealed: a process with
 * the descriptor can neither shrink it, which would harm those that have it mapped, nor make it
 * grow. Invalid, with errno set, when the system lacks a descriptor or memory or limits the size of
 * files. Thread-safe.
 */
android::base::unique_fd createSharedBlock(uint64_t size);

}  // namespace mlk::host
