#include <android/hidl/allocator/1.0/IAllocator.h>
#include <android/hidl/memory/1.0/IMemory.h>
#include <android/log.h>
#include <hidlmemory/mapping.h>

#include <cstring>
#include <sstream>

#include "projectconfigs/ClientDescriptor.h"
#include "projectconfigs/MlkProjectConfigs.h"

namespace vendor::morlak::mlkconfigs::V1_0::implementation {

using ::android::sp;
using ::android::hardware::hidl_memory;
using ::android::hardware::Return;
using ::android::hidl::allocator::V1_0::IAllocator;
using ::android::hidl::memory::V1_0::IMemory;

namespace {

constexpr const char* kTag = "MlkProjectConfigs";

// Empty when there is nothing to share, no allocator, or no memory.
hidl_memory allocate(size_t size) {
    hidl_memory memory;
    const sp<IAllocator> allocator = size == 0 ? nullptr : IAllocator::getService("ashmem");
    if (allocator != nullptr) {
        const Return<void> result = allocator->allocate(size, [&](bool success, const auto& given) {
            if (success) {
                memory = given;
            }
        });
        static_cast<void>(result.isOk());  // looked at: an allocator that died has given nothing
    }
    return memory;
}

// A block of shared memory with these bytes; empty when it cannot be had.
hidl_memory shared(const std::vector<uint8_t>& data) {
    hidl_memory memory = allocate(data.size());
    if (!memory.valid()) {
        return memory;
    }
    const sp<IMemory> mapped = ::android::hardware::mapMemory(memory);
    if (mapped == nullptr || uint64_t{mapped->getSize()} < data.size()) {
        // An allocator of this system gives what the mapper takes; another's block is of no use.
        __android_log_print(ANDROID_LOG_ERROR, kTag,
                            "getVendorPartitionFile, %zu bytes of shared memory cannot be mapped",
                            data.size());
        return {};
    }
    mapped->update();
    std::memcpy(mapped->getPointer(), data.data(), data.size());
    mapped->commit();
    return memory;
}

}  // namespace

Return<void> MlkProjectConfigs::getTvFile(const hidl_string& path, getTvFile_cb _hidl_cb) {
    if (path.c_str() == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "getTvFile, invalid paramter");
        return {};
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "getTvFile,path:%s", path.c_str());
    std::vector<uint8_t> data = ProjectParser::getTvFile(path.c_str());
    hidl_vec<uint8_t> answer;
    answer.setToExternal(data.data(), data.size());
    _hidl_cb(answer);
    return {};
}

Return<void> MlkProjectConfigs::getVendorPartitionFile(const hidl_string& path,
                                                       getVendorPartitionFile_cb _hidl_cb) {
    hidl_memory memory;
    if (path.c_str() == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "getVendorPartitionFile, invalid paramter");
    } else {
        __android_log_print(ANDROID_LOG_DEBUG, kTag, "getVendorPartitionFile,path:%s",
                            path.c_str());
        memory = shared(ProjectParser::getTvFile(path.c_str()));
    }
    _hidl_cb(memory);
    return {};
}

Return<void> MlkProjectConfigs::isFileExist(const hidl_string& path, isFileExist_cb _hidl_cb) {
    if (path.c_str() == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "isFileExist, invalid paramter");
        return {};
    }
    __android_log_print(ANDROID_LOG_DEBUG, kTag, "isFileExist, path:%s", path.c_str());
    _hidl_cb({true, ProjectParser::isFileExist(path.c_str()) ? 1 : 0});
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
    mProjectParser->dump(text);
    text << "Audio configuration file: " << std::endl;
    mAudioIniParser->dump(text);

    const std::string dump = text.str();
    const Written written = writeToClient(handle->data[0], dump);
    if (written.outcome == WriteOutcome::COMPLETE) {
        __android_log_print(ANDROID_LOG_INFO, kTag, "debug -- dumping succeeded");
    } else if (written.outcome == WriteOutcome::FAILED) {
        __android_log_print(ANDROID_LOG_WARN, kTag, "debug -- dumping failed -- write()");
    } else {
        __android_log_print(
                ANDROID_LOG_WARN, kTag,
                "debug -- dumping failed -- write() of %zu bytes given up after %zu, %s",
                dump.size(), written.size,
                written.outcome == WriteOutcome::UNREAD ? "nobody reads them"
                                                        : "too many dumps wait already");
    }
    return {};
}

}  // namespace vendor::morlak::mlkconfigs::V1_0::implementation
