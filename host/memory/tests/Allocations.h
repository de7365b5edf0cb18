#pragma once

#include <android/hidl/allocator/1.0/IAllocator.h>
#include <hidlmemory/mapping.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mlk::host {

/**
 * Returns an allocator's answer; nothing when the call failed or was answered without success. The
 * memory is a copy that owns a duplicate of the descriptor.
 */
inline std::optional<::android::hardware::hidl_memory> allocate(
        ::android::hidl::allocator::V1_0::IAllocator& allocator, uint64_t size) {
    std::optional<::android::hardware::hidl_memory> memory;
    const auto call = allocator.allocate(size, [&](bool success, const auto& given) {
        if (success) {
            memory = given;
        }
    });
    return call.isOk() ? memory : std::nullopt;
}

inline std::optional<std::vector<::android::hardware::hidl_memory>> batchAllocate(
        ::android::hidl::allocator::V1_0::IAllocator& allocator, uint64_t size, uint64_t count) {
    std::optional<std::vector<::android::hardware::hidl_memory>> batch;
    const auto call = allocator.batchAllocate(size, count, [&](bool success, const auto& given) {
        if (success) {
            batch.emplace(given.begin(), given.end());
        }
    });
    return call.isOk() ? batch : std::nullopt;
}

/** The bytes of a mapped block. */
inline uint8_t* bytesOf(const ::android::sp<::android::hidl::memory::V1_0::IMemory>& mapped) {
    return static_cast<uint8_t*>(static_cast<void*>(mapped->getPointer()));
}

}  // namespace mlk::host
