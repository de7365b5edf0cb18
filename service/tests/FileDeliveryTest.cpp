// Files that the real process delivers: as bytes, and in shared memory through the real allocator.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <thread>

#include "host/testing/Eventually.h"
#include "host/testing/ProcessUsage.h"
#include "host/testing/Sanitizers.h"
#include "projectconfigs/FileDelivery.h"
#include "service/tests/Delivery.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using implementation::kMostDeliveredBytes;
using implementation::kMostReplyBytesOnDevice;
using ::mlk::testing::kSanitized;
using ::mlk::testing::peakOf;
using ::mlk::testing::residentOf;

constexpr size_t kMegabyte = size_t{1} << 20;

class FileDeliveryTest : public Delivery {};

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

// The highest amount of memory that the process needs for one call, in addition to what it has.
template <typename Call>
size_t peakIn(pid_t pid, const Call& call) {
    const size_t before = residentOf(pid);
    ::mlk::testing::forgetPeakOf(pid);
    call();
    return peakOf(pid) - std::min(before, peakOf(pid));
}

TEST_F(FileDeliveryTest, LargeFileTakesItsSizeOfSharedMemoryAndTwiceItAsBytes) {
    constexpr size_t kSize = 64 * kMegabyte;
    // Buffers of the runtime and of the log.
    constexpr size_t kBesides = kMegabyte;
    EXPECT_TRUE(isSentWhole(file(1))) << "all that a first call makes";
    EXPECT_TRUE(isSharedWhole(file(1)));
    const std::string path = file(kSize);
    const size_t before = residentOf(pid());
    // The client has its answer before the service gives the memory back.
    const auto isBack = [&] {
        return kSanitized ||
               ::mlk::testing::eventually([&] { return residentOf(pid()) <= before + kBesides; });
    };
    const size_t shared = peakIn(pid(), [&] { EXPECT_TRUE(isSharedWhole(path)); });
    EXPECT_TRUE(isBack());
    const size_t sent = peakIn(pid(), [&] { EXPECT_TRUE(isSentWhole(path)); });
    if (!kSanitized) {
        EXPECT_LE(shared, kSize + kBesides);
        EXPECT_LE(sent, 2 * kSize + kBesides);
    }
    EXPECT_TRUE(isBack());
}

// A sparse file of that size.
std::string sparse(const ::mlk::testing::HostSet& set, size_t size) {
    const std::string path = set.dir().write("tvdata/sparse", "x");
    EXPECT_EQ(truncate(path.c_str(), static_cast<off_t>(size)), 0);
    return path;
}

TEST_F(FileDeliveryTest, LargestFileIsDeliveredAndOneByteMoreIsNot) {
    const std::string path = sparse(mSet, kMostDeliveredBytes);
    size_t sent = 0;
    const auto bytesOf = [&](const auto& bytes) { sent = bytes.size(); };
    EXPECT_TRUE(mService->getTvFile(path, bytesOf).isOk());
    EXPECT_EQ(sent, kMostDeliveredBytes);
    EXPECT_EQ(shared(path), std::to_string(kMostDeliveredBytes) + " bytes of ashmem");
    const std::string error = path + ": cannot be read: larger than 267386880 bytes";
    EXPECT_EQ(logged(error), 0U);

    sparse(mSet, kMostDeliveredBytes + 1);
    EXPECT_TRUE(mService->getTvFile(path, bytesOf).isOk());
    EXPECT_EQ(sent, 0U);
    EXPECT_TRUE(isLogged(error, 1));
    EXPECT_EQ(shared(path), "empty memory");
    EXPECT_TRUE(isLogged(error, 2));
}

TEST_F(FileDeliveryTest, FileThatADeviceCannotReplyWithIsWarnedOf) {
    const std::string path = sparse(mSet, kMostReplyBytesOnDevice);
    const auto ignore = [](const auto&) {};
    // After the process id, whose width depends on the number.
    const std::string warning =
            "): getTvFile, " + path +
            " has 1040001 bytes, but a reply can be no larger than 1040000 bytes on a device: use "
            "getVendorPartitionFile for this file\n";
    EXPECT_TRUE(mService->getTvFile(path, ignore).isOk());
    EXPECT_EQ(logged("use getVendorPartitionFile"), 0U);
    sparse(mSet, kMostReplyBytesOnDevice + 1);
    EXPECT_EQ(shared(path), "1040001 bytes of ashmem");
    EXPECT_EQ(logged("use getVendorPartitionFile"), 0U) << "this way is the one for it";
    mService->getTvFile(path, ignore).isOk();
    EXPECT_TRUE(isLogged(warning, 1)) << mServer->process().err();
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
    const size_t slack = kSanitized ? 64 * kMegabyte : kMegabyte;
    EXPECT_LE(residentOf(pid()), memory + slack);
    EXPECT_LE(residentOf(mAllocator->pid()), allocatorMemory + slack);
}

/** The process with a fault in its reading of files on tvdata. */
class FaultyDeliveryTest : public Delivery {
  protected:
    void restart(const std::string& fault) {
        ASSERT_EQ(mkfifo(gate().c_str(), 0600), 0);
        mServer->restart({{"LD_PRELOAD", ::mlk::testing::binDir() + "/../tests/mlk_faults.so"},
                          {"MLK_FAULT_BELOW", mSet.tvdata()},
                          {"MLK_FAULT_AT", fault},
                          {"MLK_FAULT_LOG", mSet.dir().path("calls")},
                          {"MLK_FAULT_GATE", gate()},
                          {"ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0"}});
        ASSERT_TRUE(mServer->waitUntilRegistered()) << mServer->process().err();
        mService = IMlkProjectConfigs::getService();
    }
    std::string gate() const { return mSet.dir().path("gate"); }

    /**
     * Changes the file after the process has opened it and before it reads it; the process waits.
     */
    template <typename Answer, typename Change>
    std::string changedMeanwhile(const Answer& answer, const Change& change) {
        std::string got;
        std::thread asker([&] { got = answer(); });
        EXPECT_TRUE(::mlk::testing::eventually(
                [&] { return mSet.dir().read("calls").find("read\n") != std::string::npos; }));
        {
            const std::lock_guard<std::mutex> lock(mContentLock);
            change();
        }
        const int opened = open(gate().c_str(), O_RDWR | O_CLOEXEC);
        asker.join();
        close(opened);
        return got;
    }
};

TEST_F(FaultyDeliveryTest, ReadErrorIsAnEmptyAnswer) {
    restart("read 1 5");
    const std::string path = file(100);
    const std::string error = path + ": cannot be read: Input/output error";
    EXPECT_EQ(shared(path), "empty memory");
    EXPECT_TRUE(isLogged(error));
    EXPECT_TRUE(isSharedWhole(path)) << "the next call reads it";
}

TEST_F(FaultyDeliveryTest, FileThatBecomesShorterIsSharedAsFarAsItGoes) {
    restart("read 1 hold");
    const std::string path = file(100'000);
    const std::string got =
            changedMeanwhile([&] { return isSharedWhole(path) ? "whole" : "not whole"; },
                             [&] {
                                 EXPECT_EQ(truncate(path.c_str(), 70'000), 0);
                                 mContent.resize(70'000);
                             });
    EXPECT_EQ(got, "whole");
}

TEST_F(FaultyDeliveryTest, FileThatIsEmptiedIsNotShared) {
    restart("read 1 hold");
    const std::string path = file(100);
    EXPECT_EQ(changedMeanwhile([&] { return shared(path); },
                               [&] { EXPECT_EQ(truncate(path.c_str(), 0), 0); }),
              "empty memory");
}

TEST_F(FaultyDeliveryTest, FileThatBecomesLongerIsSharedWhole) {
    restart("read 1 hold");
    const std::string path = file(5000);
    const std::string got = changedMeanwhile(
            [&] { return isSharedWhole(path) ? "whole" : "not whole"; }, [&] { file(70'000); });
    EXPECT_EQ(got, "whole");
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
