#define LOG_TAG "MlkProjectConfigs"

#include <android/hidl/allocator/1.0/IAllocator.h>
#include <android/hidl/memory/1.0/IMemory.h>
#include <hidlmemory/mapping.h>
#include <log/log.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "common/Answer.h"
#include "projectconfigs/FileDelivery.h"
#include "projectconfigs/MlkProjectConfigs.h"
#include "projectconfigs/Places.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::sp;
using ::android::hardware::hidl_memory;
using ::android::hardware::Return;
using ::android::hardware::Void;
using ::android::hidl::allocator::V1_0::IAllocator;
using ::android::hidl::memory::V1_0::IMemory;

namespace {

// An allocator that does not answer holds the threads that call it. The limit keeps the others of
// the pool free.
constexpr int kInAllocator = 3;
constexpr std::chrono::seconds kAllocatorPatience(1);

// Never freed: a thread may wait for a place until the process ends.
Places& callsOfTheAllocator() {
    static Places& places = *new Places(kInAllocator);
    return places;
}

// Logs why there is no block.
std::nullptr_t noBlock(size_t size, const std::string& reason) {
    ALOGE("getVendorPartitionFile, no shared memory of %zu bytes: %s", size, reason.c_str());
    return nullptr;
}

// A block of shared memory, mapped into this process. For one thread.
class MappedBlock {
  public:
    /** Replaces the block by a new one. Logs an error and gives null if there is no such block. */
    uint8_t* make(size_t size) {
        mMapped = nullptr;
        mMemory = hidl_memory();
        const Places::Taken place(callsOfTheAllocator(), kAllocatorPatience);
        if (!place) {
            return noBlock(size, "too many calls wait for the allocator already");
        }
        const sp<IAllocator> allocator = IAllocator::getService("ashmem");
        if (allocator == nullptr) {
            return noBlock(size, "there is no allocator");
        }
        const Return<void> result = allocator->allocate(size, [&](bool success, const auto& given) {
            if (success) {
                mMemory = given;
            }
        });
        if (!result.isOk() || !mMemory.valid()) {
            return noBlock(size, result.isOk() ? "the allocator has none" : result.description());
        }
        mMapped = ::android::hardware::mapMemory(mMemory);
        // An allocator may give less than it was asked for.
        if (mMapped == nullptr || uint64_t{mMapped->getSize()} < size) {
            return noBlock(size, "the block cannot be mapped, or is smaller");
        }
        mMapped->update();
        return static_cast<uint8_t*>(static_cast<void*>(mMapped->getPointer()));
    }

    /** The block, `size` bytes long; empty for 0. Must not outlive this object. */
    hidl_memory commit(size_t size) {
        if (size == 0) {
            return {};
        }
        mMapped->commit();
        return {mMemory.name(), mMemory.handle(), size};
    }

  private:
    hidl_memory mMemory;
    sp<IMemory> mMapped;
};

}  // namespace

Return<void> MlkProjectConfigs::getTvFile(const hidl_string& path, getTvFile_cb _hidl_cb) {
    if (path.c_str() == nullptr) {
        ALOGE("getTvFile, invalid paramter");
        return Void();
    }
    ALOGD("getTvFile,path:%s", path.c_str());
    std::vector<uint8_t> data = ProjectParser::getTvFile(path.c_str());
    if (data.size() > kMostReplyBytesOnDevice) {
        ALOGW("getTvFile, %s has %zu bytes, but a reply can be no larger than %zu "
              "bytes on a device: use getVendorPartitionFile for this file",
              path.c_str(), data.size(), kMostReplyBytesOnDevice);
    }
    hidl_vec<uint8_t> answer;
    answer.setToExternal(data.data(), data.size());
    _hidl_cb(answer);
    return Void();
}

Return<void> MlkProjectConfigs::getVendorPartitionFile(const hidl_string& path,
                                                       getVendorPartitionFile_cb _hidl_cb) {
    MappedBlock block;
    size_t size = 0;
    if (path.c_str() == nullptr) {
        ALOGE("getVendorPartitionFile, invalid paramter");
    } else {
        ALOGD("getVendorPartitionFile,path:%s", path.c_str());
        size = readForClient(path.c_str(), [&](size_t wanted) { return block.make(wanted); });
    }
    _hidl_cb(block.commit(size));
    return Void();
}

Return<void> MlkProjectConfigs::isFileExist(const hidl_string& path, isFileExist_cb _hidl_cb) {
    if (path.c_str() == nullptr) {
        ALOGE("isFileExist, invalid paramter");
        return Void();
    }
    ALOGD("isFileExist, path:%s", path.c_str());
    answerWith(_hidl_cb, true, ProjectParser::isFileExist(path.c_str()) ? 1 : 0);
    return Void();
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
