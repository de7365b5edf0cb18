#pragma once

#include <android/hidl/memory/1.0/IMemory.h>
#include <hidl/HidlSupport.h>

namespace android::hardware {

/// Maps a block of shared memory into this process, to be read and written; it stays mapped while
/// the IMemory lives, whatever becomes of `memory` and its descriptor.
///
/// The block may come from anybody: null, and one error line that says why, when it is empty, is of
/// another kind than "ashmem", or is not what it claims to be, so that touching one of its
/// getSize() bytes could kill the process (AshmemMapper has the conditions). What the bytes hold,
/// and when others change them, is for the caller to distrust. Any thread may call it.
sp<::android::hidl::memory::V1_0::IMemory> mapMemory(const hidl_memory& memory);

}  // namespace android::hardware
