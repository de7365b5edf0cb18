#pragma once

#include <android/hidl/memory/1.0/IMemory.h>
#include <hidl/HidlSupport.h>

namespace android::hardware {

/**
 * Maps a block of shared memory into this process for reading and writing. It stays mapped while
 * the IMemory lives, independently of `memory` and its descriptor.
 *
 * The block may come from anybody. Null, with one error line, when it is empty, of another kind
 * than "ashmem", or differs from what it claims, so that touching one of its getSize() bytes could
 * kill the process (AshmemMapper lists the conditions). The caller must not trust the bytes, which
 * others may change at any time. Thread-safe.
 */
sp<::android::hidl::memory::V1_0::IMemory> mapMemory(const hidl_memory& memory);

}  // namespace android::hardware
