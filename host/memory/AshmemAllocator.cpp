#define LOG_TAG "ashmem"

#include "host/memory/AshmemAllocator.h"

#include <cutils/native_handle.h>
#include <log/log.h>

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstring>
#include <utility>

#include "host/memory/SharedBlock.h"

namespace mlk::host {

using ::android::base::unique_fd;
using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;

AshmemAllocator::AshmemAllocator(std::function<uint64_t()> available)
    : mAvailable(std::move(available)) {}

std::string AshmemAllocator::tryToMake(uint64_t size, uint64_t count, Blocks* blocks) const {
    if (size == 0) {
        return "a block needs at least one byte";
    }
    if (count > kMaxBlocks) {
        return "at most " + std::to_string(kMaxBlocks) + " blocks are given at once";
    }
    if (size > kMaxBytes / std::max(count, uint64_t{1})) {
        return "at most " + std::to_string(kMaxBytes) + " bytes are given at once";
    }
    const uint64_t available = mAvailable();
    if (size * count > available / 2) {
        return "the system has " + std::to_string(available) + " bytes left, and half of them stay";
    }
    blocks->reserve(count);
    for (uint64_t i = 0; i < count; ++i) {
        unique_fd block = createSharedBlock(size);
        native_handle_t* handle = block.ok() ? native_handle_create(1, 0) : nullptr;
        if (handle == nullptr) {
            return strerror(errno);
        }
        handle->data[0] = block.release();
        blocks->emplace_back().setTo(handle, true /* shouldOwn */);
    }
    return {};
}

bool AshmemAllocator::make(uint64_t size, uint64_t count, Blocks* blocks) const {
    const std::string failure = tryToMake(size, count, blocks);
    if (failure.empty()) {
        return true;
    }
    blocks->clear();
    ALOGE("refused %" PRIu64 " block(s) of %" PRIu64 " bytes: %s", count, size, failure.c_str());
    return false;
}

Return<void> AshmemAllocator::allocate(uint64_t size, allocate_cb answer) {
    Blocks blocks;
    if (make(size, 1, &blocks)) {
        answer(true, hidl_memory(kAshmem, blocks.front(), size));
    } else {
        answer(false, {});
    }
    return Void();
}

Return<void> AshmemAllocator::batchAllocate(uint64_t size, uint64_t count,
                                            batchAllocate_cb answer) {
    Blocks blocks;
    const bool success = make(size, count, &blocks);
    // The elements refer to the blocks: copies would duplicate each descriptor.
    hidl_vec<hidl_memory> batch(blocks.size());
    for (size_t i = 0; i < blocks.size(); ++i) {
        batch[i] = hidl_memory(kAshmem, blocks[i], size);
    }
    answer(success, batch);
    return Void();
}

}  // namespace mlk::host
