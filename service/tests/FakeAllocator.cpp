// An allocator of shared memory for tests.
//
//   service_fake_allocator DIFFERENCE   gives blocks that have that many bytes more than asked for;
//                                       fewer if negative
//   service_fake_allocator refusing     gives the blocks that were asked for, and says that it has
//                                       none

#include <android/hidl/allocator/1.0/IAllocator.h>
#include <cutils/native_handle.h>
#include <hidl/HidlTransportSupport.h>

#include <cstdlib>
#include <iostream>
#include <string_view>

#include "host/memory/SharedBlock.h"

namespace {

using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

class FakeAllocator : public ::android::hidl::allocator::V1_0::IAllocator {
  public:
    FakeAllocator(int difference, bool success)
        : mDifference(static_cast<uint64_t>(difference)), mSuccess(success) {}

    Return<void> allocate(uint64_t size, allocate_cb answer) override {
        const uint64_t given = size + mDifference;
        ::android::base::unique_fd block = mlk::host::createSharedBlock(given);
        native_handle_t* const handle = native_handle_create(1, 0);
        handle->data[0] = block.get();
        answer(mSuccess, hidl_memory(mlk::host::kAshmem, handle, given));
        native_handle_delete(handle);
        return {};
    }
    Return<void> batchAllocate(uint64_t /* size */, uint64_t /* count */,
                               batchAllocate_cb answer) override {
        answer(false, hidl_vec<hidl_memory>());
        return {};
    }

  private:
    const uint64_t mDifference;
    const bool mSuccess;
};

}  // namespace

int main(int argc, char** argv) {
    android::hardware::configureRpcThreadpool(1, true /* callerWillJoin */);
    const char* const argument = argc > 1 ? argv[1] : "0";
    const ::android::sp<FakeAllocator> allocator =
            new FakeAllocator(std::atoi(argument), std::string_view(argument) != "refusing");
    if (allocator->registerAsService(mlk::host::kAshmem) != android::OK) {
        return EXIT_FAILURE;
    }
    std::cerr << "registered" << std::endl;
    android::hardware::joinRpcThreadpool();
    return EXIT_SUCCESS;
}
