#include <android/hidl/allocator/1.0/IAllocator.h>
#include <android/hidl/memory/1.0/IMemory.h>
#include <android/log.h>
#include <hidlmemory/mapping.h>

#include <chrono>
#include <cstddef>
#include <sstream>
#include <string>

#include "common/Answer.h"
#include "projectconfigs/ClientDescriptor.h"
#include "projectconfigs/FileDelivery.h"
#include "projectconfigs/MlkProjectConfigs.h"
#include "projectconfigs/Places.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::sp;
using ::android::hardware::hidl_memory;
using ::android::hardware::Return;
using ::android::hidl::allocator::V1_0::IAllocator;
using ::android::hidl::memory::V1_0::IMemory;

namespace {

constexpr const char* kTag = "MlkProjectConfigs";

// An allocator that does not answer holds the threads that ask it. The others of the pool go on.
constexpr int kInAllocator = 3;
constexpr std::chrono::seconds kAllocatorPatience(1);
Places sAllocator(kInAllocator);

// Logs why a block is not to be had.
std::nullptr_t noBlock(size_t size, const std::string& reason) {
    __android_log_print(ANDROID_LOG_ERROR, kTag,
                        "getVendorPartitionFile, no shared memory of %zu bytes: %s", size,
                        reason.c_str());
    return nullptr;
}

// A block of shared memory, mapped into this process. One thread at a time.
class MappedBlock {
  public:
    /** Makes the block, in place of the one before. Null, with an error line, if it is not had. */
    uint8_t* make(size_t size) {
        mMapped = nullptr;
        mMemory = hidl_memory();
        const Places::Taken place(sAllocator, kAllocatorPatience);
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
        // A block that is smaller than asked must not be written to beyond its end.
        if (mMapped == nullptr || uint64_t{mMapped->getSize()} < size) {
            return noBlock(size, "the block cannot be mapped, or is smaller");
        }
        mMapped->update();
        return static_cast<uint8_t*>(static_cast<void*>(mMapped->getPointer()));
    }

    /** The block with as many bytes as were written; empty for none. As long as this lives. */
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

void logDump(const Written& written) {
    switch (written.outcome) {
        case WriteOutcome::COMPLETE:
            __android_log_print(ANDROID_LOG_INFO, kTag, "debug -- dumping succeeded");
            return;
        case WriteOutcome::FAILED:
            __android_log_print(ANDROID_LOG_WARN, kTag, "debug -- dumping failed -- write()");
            return;
        case WriteOutcome::UNREAD:
        case WriteOutcome::CROWDED:
            break;
    }
    __android_log_print(ANDROID_LOG_WARN, kTag,
                        "debug -- dumping failed -- write() given up after %zu bytes, %s",
                        written.size,
                        written.outcome == WriteOutcome::UNREAD ? "nobody reads them"
                                                                : "too many dumps wait already");
}

}  // namespace

Return<void> MlkProjectConfigs::getTvFile(const hidl_string& path, getTvFile_cb _hidl_cb) {
    if (path.c_str() == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "getTvFile, invalid paramter");
        return {};
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "getTvFile,path:%s", path.c_str());
    std::vector<uint8_t> data = ProjectParser::getTvFile(path.c_str());
    if (data.size() > kMostReplyBytesOnDevice) {
        __android_log_print(ANDROID_LOG_WARN, kTag,
                            "getTvFile, %s has %zu bytes, but a reply can be no larger than %zu "
                            "bytes on a device: use getVendorPartitionFile for this file",
                            path.c_str(), data.size(), kMostReplyBytesOnDevice);
    }
    hidl_vec<uint8_t> answer;
    answer.setToExternal(data.data(), data.size());
    _hidl_cb(answer);
    return {};
}

Return<void> MlkProjectConfigs::getVendorPartitionFile(const hidl_string& path,
                                                       getVendorPartitionFile_cb _hidl_cb) {
    MappedBlock block;
    size_t size = 0;
    if (path.c_str() == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "getVendorPartitionFile, invalid paramter");
    } else {
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "getVendorPartitionFile,path:%s",
                            path.c_str());
        size = readForClient(path.c_str(), [&](size_t wanted) { return block.make(wanted); });
    }
    _hidl_cb(block.commit(size));
    return {};
}

Return<void> MlkProjectConfigs::isFileExist(const hidl_string& path, isFileExist_cb _hidl_cb) {
    if (path.c_str() == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "isFileExist, invalid paramter");
        return {};
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "isFileExist, path:%s", path.c_str());
    answerWith(_hidl_cb, true, ProjectParser::isFileExist(path.c_str()) ? 1 : 0);
    return {};
}

Return<void> MlkProjectConfigs::debug(const hidl_handle& handle,
                                      const hidl_vec<hidl_string>& /* arguments */) {
    if (handle.getNativeHandle() == nullptr || handle->numFds != 1) {
        __android_log_print(ANDROID_LOG_ERROR, kTag,
                            "debug -- dumping failed -- invalid file descriptor to dump to");
        return {};
    }
    std::ostringstream text;
    text << "ProjectConfigs:" << std::endl;
    mSet.items().dump(text);
    text << "Audio configuration file: " << std::endl;
    mSet.sounds().dump(text);

    writeToClient(handle->data[0], text.str(), logDump);
    return {};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
