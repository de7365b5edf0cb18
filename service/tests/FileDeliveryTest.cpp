// Files that the real process hands out: as bytes, and in shared memory through the real allocator.

#include <gmock/gmock.h>
#include <hidlmemory/mapping.h>
#include <signal.h>

#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "host/testing/Eventually.h"
#include "host/testing/HostSet.h"
#include "host/testing/ProcessUsage.h"
#include "host/testing/Sanitizers.h"
#include "service/tests/InterfaceMethods.h"
#include "service/tests/ServiceProcess.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::android::sp;
using ::android::hardware::hidl_memory;
using ::android::hardware::hidl_vec;
using ::mlk::testing::HostSet;
using ::mlk::testing::kAddressSanitizer;
using ::mlk::testing::kThreadSanitizer;
using ::mlk::testing::peakOf;
using ::mlk::testing::Process;
using ::mlk::testing::residentOf;

constexpr size_t kMegabyte = size_t{1} << 20;

class FileDeliveryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        writeProject(mSet);
        mAllocator = startAllocator();
        // Its memory is measured: the address sanitizer is not to keep what is freed.
        mServer = std::make_unique<ServiceProcess>(std::map<std::string, std::string>{
                {"ASAN_OPTIONS", "quarantine_size_mb=0:thread_local_quarantine_size_kb=0"}});
        ASSERT_TRUE(mServer->waitUntilRegistered()) << mServer->process().err();
        mService = IMlkProjectConfigs::getService();
    }
    void stopAllocator() {
        mAllocator->kill(SIGKILL);
        mAllocator->wait();
    }
    // A file of that size and its path.
    std::string file(size_t size) {
        mContent.resize(size);
        for (size_t i = 0; i < size; ++i) {
            mContent[i] = static_cast<char>(i * i >> 7);
        }
        return mSet.dir().write("tvdata/file", mContent);
    }
    bool isContent(const void* bytes, size_t size) const {
        return size == mContent.size() && memcmp(bytes, mContent.data(), size) == 0;
    }

    ::testing::AssertionResult isSharedWhole(const std::string& path) {
        auto result = ::testing::AssertionFailure() << "no answer";
        const auto status = mService->getVendorPartitionFile(path, [&](const hidl_memory& memory) {
            const auto mapped = ::android::hardware::mapMemory(memory);
            result = mapped == nullptr ? ::testing::AssertionFailure() << "not to be mapped"
                     : isContent(mapped->getPointer(), mapped->getSize())
                             ? ::testing::AssertionSuccess()
                             : ::testing::AssertionFailure() << "other bytes";
        });
        return status.isOk() ? result : ::testing::AssertionFailure() << status.description();
    }
    ::testing::AssertionResult isSentWhole(const std::string& path) {
        auto result = ::testing::AssertionFailure() << "no answer";
        const auto status = mService->getTvFile(path, [&](const hidl_vec<uint8_t>& bytes) {
            result = isContent(bytes.data(), bytes.size())
                             ? ::testing::AssertionSuccess()
                             : ::testing::AssertionFailure() << "other bytes";
        });
        return status.isOk() ? result : ::testing::AssertionFailure() << status.description();
    }
    // What of the memory that the service shares is there, empty when nothing is.
    std::string shared(const std::string& path) {
        std::string answer = "no answer";
        const auto status = mService->getVendorPartitionFile(path, [&](const hidl_memory& memory) {
            answer = !memory.valid() && memory.size() == 0 && memory.name().empty()
                             ? "empty memory"
                             : std::to_string(memory.size()) + " bytes of " +
                                       std::string(memory.name());
        });
        return status.isOk() ? answer : status.description();
    }
    pid_t pid() const { return mServer->process().pid(); }

    HostSet mSet;
    std::unique_ptr<Process> mAllocator;
    std::unique_ptr<ServiceProcess> mServer;
    sp<IMlkProjectConfigs> mService;
    std::string mContent;
};

TEST_F(FileDeliveryTest, SharedMemoryHoldsTheFile) {
    EXPECT_TRUE(isSharedWhole(file(5)));
    EXPECT_TRUE(isSharedWhole('"' + file(4096) + '"'));
    EXPECT_TRUE(isSharedWhole(file(3 * kMegabyte + 1)));
    EXPECT_EQ(shared(file(5)), "5 bytes of ashmem");
}

TEST_F(FileDeliveryTest, NothingIsSharedOfAFileWithoutBytes) {
    EXPECT_EQ(shared(file(0)), "empty memory");
    EXPECT_EQ(shared(mSet.tvdata() + "/none"), "empty memory");
    EXPECT_EQ(shared(mSet.tvdata()), "empty memory");
    EXPECT_EQ(shared(""), "empty memory");
    EXPECT_EQ(shared("\"" + file(5)), "empty memory");
}

TEST_F(FileDeliveryTest, NothingIsSharedWithoutAnAllocator) {
    const std::string path = file(5);
    EXPECT_TRUE(isSharedWhole(path));
    stopAllocator();
    EXPECT_EQ(shared(path), "empty memory");
    EXPECT_TRUE(isSentWhole(path));
    mAllocator = startAllocator();
    EXPECT_TRUE(isSharedWhole(path)) << "it is looked for at every call";
}

TEST_F(FileDeliveryTest, NothingIsSharedWhereTheAllocatorHasNoMemory) {
    stopAllocator();
    mAllocator = startAllocator({"prlimit", "--fsize=4096"});
    EXPECT_EQ(shared(file(4097)), "empty memory");
    EXPECT_TRUE(isSharedWhole(file(4096)));
}

TEST_F(FileDeliveryTest, LargeFileTakesTwiceItsSizeOfMemoryAtMost) {
    constexpr size_t kSize = 64 * kMegabyte;
    // Buffers of the runtime and of the log.
    constexpr size_t kBesides = kMegabyte;
    const std::string path = file(kSize);
    EXPECT_TRUE(isSentWhole(file(1))) << "all that a first call makes";
    EXPECT_TRUE(isSharedWhole(file(1)));
    file(kSize);
    const size_t before = residentOf(pid());
    ::mlk::testing::forgetPeakOf(pid());
    EXPECT_TRUE(isSentWhole(path));
    EXPECT_TRUE(isSharedWhole(path));
    if (!kAddressSanitizer && !kThreadSanitizer) {
        EXPECT_LE(peakOf(pid()), before + 2 * kSize + kBesides);
        EXPECT_LE(residentOf(pid()), before + kBesides) << "what is left of it";
    }
}

TEST_F(FileDeliveryTest, NothingGrowsOverAThousandDeliveries) {
    const std::string path = file(100'000);
    const auto deliver = [&](int times) {
        for (int i = 0; i < times; ++i) {
            ASSERT_TRUE(isSentWhole(path));
            ASSERT_TRUE(isSharedWhole(path));
        }
    };
    deliver(100);
    const size_t memory = residentOf(pid());
    const size_t descriptors = ::mlk::testing::descriptorsOf(pid());
    const size_t allocatorMemory = residentOf(mAllocator->pid());
    deliver(1000);
    EXPECT_TRUE(::mlk::testing::eventually(
            [&] { return ::mlk::testing::descriptorsOf(pid()) <= descriptors; }));
    // A thousand blocks or buffers would be a hundred megabytes.
    const size_t slack = kAddressSanitizer || kThreadSanitizer ? 64 * kMegabyte : kMegabyte;
    EXPECT_LE(residentOf(pid()), memory + slack);
    EXPECT_LE(residentOf(mAllocator->pid()), allocatorMemory + slack);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
