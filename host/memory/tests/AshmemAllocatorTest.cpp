#include "host/memory/AshmemAllocator.h"

#include <android/log.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string>
#include <vector>

#include "host/memory/SharedBlock.h"
#include "host/memory/tests/Allocations.h"
#include "host/testing/LogCapture.h"
#include "host/testing/ProcessUsage.h"

namespace mlk::host {
namespace {

using ::android::sp;
using ::android::hardware::hidl_memory;
using ::mlk::testing::LogCapture;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr uint64_t kMiB = uint64_t{1024} * 1024;
constexpr uint64_t kLargest = std::numeric_limits<uint64_t>::max();

std::vector<std::string> errors(const LogCapture& log) {
    return log.texts(ANDROID_LOG_ERROR, "ashmem");
}

struct stat statusOf(const hidl_memory& memory) {
    struct stat status {};
    EXPECT_EQ(fstat(memory.handle()->data[0], &status), 0);
    return status;
}

TEST(AshmemAllocator, GivesABlockOfExactlyThatSize) {
    const LogCapture log;
    const sp<AshmemAllocator> allocator = new AshmemAllocator;
    for (const uint64_t size : {uint64_t{1}, uint64_t{4096}, uint64_t{4097}, 64 * kMiB}) {
        const auto memory = allocate(*allocator, size);
        ASSERT_TRUE(memory.has_value()) << size;
        EXPECT_EQ(memory->name(), "ashmem");
        EXPECT_EQ(memory->size(), size);
        ASSERT_EQ(memory->handle()->numFds, 1);
        EXPECT_EQ(memory->handle()->numInts, 0);
        EXPECT_EQ(statusOf(*memory).st_size, static_cast<off_t>(size));
    }
    EXPECT_THAT(errors(log), IsEmpty());
}

TEST(AshmemAllocator, BacksEveryPageBeforeItIsTouched) {
    const sp<AshmemAllocator> allocator = new AshmemAllocator;
    const auto memory = allocate(*allocator, 3 * kMiB);
    ASSERT_TRUE(memory.has_value());
    constexpr uint64_t kStatBlock = 512;
    EXPECT_GE(static_cast<uint64_t>(statusOf(*memory).st_blocks) * kStatBlock, 3 * kMiB);
}

TEST(AshmemAllocator, LetsNobodyResizeOrUnsealABlock) {
    const sp<AshmemAllocator> allocator = new AshmemAllocator;
    const auto memory = allocate(*allocator, 8192);
    ASSERT_TRUE(memory.has_value());
    const int block = memory->handle()->data[0];
    EXPECT_EQ(fcntl(block, F_GET_SEALS), F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL);
    EXPECT_NE(ftruncate(block, 0), 0);
    EXPECT_NE(ftruncate(block, 16384), 0);
    EXPECT_NE(fcntl(block, F_ADD_SEALS, F_SEAL_WRITE), 0);
    EXPECT_EQ(statusOf(*memory).st_size, 8192);
}

struct Refusal {
    uint64_t size;
    uint64_t count;
    const char* why;
};

const Refusal kRefusals[] = {
        {0, 1, "a block needs at least one byte"},
        {0, 0, "a block needs at least one byte"},
        {AshmemAllocator::kMaxBytes + 1, 1, "at most 1073741824 bytes are given at once"},
        {uint64_t{1} << 63, 1, "at most 1073741824 bytes are given at once"},
        {kLargest, 1, "at most 1073741824 bytes are given at once"},
        {AshmemAllocator::kMaxBytes / 2 + 1, 2, "at most 1073741824 bytes are given at once"},
        {kLargest, 128, "at most 1073741824 bytes are given at once"},
        {uint64_t{1} << 57, 128, "at most 1073741824 bytes are given at once"},  // 2^64 in all
        {1, AshmemAllocator::kMaxBlocks + 1, "at most 128 blocks are given at once"},
        {1, kLargest, "at most 128 blocks are given at once"},
};

// Limits the size of this process's files: an allocator that has lost its limits then fails its
// test without using up the machine's memory.
void limitFiles(rlim_t bytes) {
    (void)signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = bytes;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

TEST(AshmemAllocator, RefusesWhatIsBeyondItsLimits) {
    limitFiles(AshmemAllocator::kMaxBytes);
    const auto before = ::mlk::testing::descriptorsOf(getpid());
    for (const Refusal& refusal : kRefusals) {
        const LogCapture log;
        const sp<AshmemAllocator> allocator = new AshmemAllocator;
        int answers = 0;
        allocator->batchAllocate(refusal.size, refusal.count, [&](bool success, const auto& given) {
            ++answers;
            EXPECT_FALSE(success);
            EXPECT_EQ(given.size(), 0U);
        });
        if (refusal.count == 1) {
            allocator->allocate(refusal.size, [&](bool success, const hidl_memory& given) {
                ++answers;
                EXPECT_FALSE(success);
                EXPECT_FALSE(given.valid());
                EXPECT_EQ(given.size(), 0U);
                EXPECT_EQ(given.name(), "");
            });
        }
        const std::string line = "refused " + std::to_string(refusal.count) + " block(s) of " +
                                 std::to_string(refusal.size) + " bytes: " + refusal.why;
        EXPECT_EQ(errors(log), std::vector<std::string>(static_cast<size_t>(answers), line));
        EXPECT_EQ(answers, refusal.count == 1 ? 2 : 1);
    }
    EXPECT_EQ(::mlk::testing::descriptorsOf(getpid()), before);
}

TEST(AshmemAllocator, RefusesWhatTheSystemDoesNotGive) {
    limitFiles(8191);
    const auto before = ::mlk::testing::descriptorsOf(getpid());
    const LogCapture log;
    const sp<AshmemAllocator> allocator = new AshmemAllocator;
    EXPECT_FALSE(allocate(*allocator, 8192));
    EXPECT_FALSE(batchAllocate(*allocator, 8192, 3));
    EXPECT_TRUE(allocate(*allocator, 8191));
    // The largest request gets as far as the system.
    const sp<AshmemAllocator> ofALargeSystem =
            new AshmemAllocator([] { return 4 * AshmemAllocator::kMaxBytes; });
    EXPECT_FALSE(allocate(*ofALargeSystem, AshmemAllocator::kMaxBytes));
    EXPECT_THAT(errors(log), ElementsAre("refused 1 block(s) of 8192 bytes: File too large",
                                         "refused 3 block(s) of 8192 bytes: File too large",
                                         "refused 1 block(s) of 1073741824 bytes: File too large"));
    EXPECT_EQ(::mlk::testing::descriptorsOf(getpid()), before);
}

TEST(AshmemAllocator, ABatchThatFailsHalfWayGivesNothing) {
    const LogCapture log;
    const sp<AshmemAllocator> allocator = new AshmemAllocator;
    // A sanitizer needs descriptors for what it meets for the first time.
    EXPECT_TRUE(batchAllocate(*allocator, 4096, 3));
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
    const int next = dup(STDIN_FILENO);
    ASSERT_GE(next, 0);
    close(next);
    const rlimit two{static_cast<rlim_t>(next) + 2, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &two), 0);
    bool answered = false;
    const auto call = allocator->batchAllocate(4096, 3, [&](bool success, const auto& batch) {
        answered = true;
        EXPECT_FALSE(success);
        EXPECT_EQ(batch.size(), 0U);
    });
    EXPECT_TRUE(call.isOk());
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &former), 0);
    EXPECT_TRUE(answered);
    EXPECT_THAT(errors(log), ElementsAre("refused 3 block(s) of 4096 bytes: Too many open files"));
    EXPECT_EQ(dup(STDIN_FILENO), next) << "no block is left open";
    close(next);
}

TEST(AshmemAllocator, LeavesHalfOfTheSystemsMemory) {
    const LogCapture log;
    const sp<AshmemAllocator> allocator = new AshmemAllocator([] { return 2 * kMiB; });
    EXPECT_TRUE(allocate(*allocator, kMiB));
    EXPECT_TRUE(batchAllocate(*allocator, kMiB / 4, 4));
    EXPECT_THAT(errors(log), IsEmpty());
    EXPECT_FALSE(allocate(*allocator, kMiB + 1));
    EXPECT_FALSE(batchAllocate(*allocator, kMiB / 4, 5));
    EXPECT_THAT(errors(log),
                ElementsAre("refused 1 block(s) of 1048577 bytes: the system has 2097152 bytes "
                            "left, and half of them stay",
                            HasSubstr("refused 5 block(s) of 262144 bytes: the system has")));
}

TEST(AshmemAllocator, GivesABatchOfBlocksThatAreNotTheSame) {
    const sp<AshmemAllocator> allocator = new AshmemAllocator;
    const auto batch = batchAllocate(*allocator, 4097, AshmemAllocator::kMaxBlocks);
    ASSERT_TRUE(batch.has_value());
    ASSERT_EQ(batch->size(), AshmemAllocator::kMaxBlocks);
    std::vector<ino_t> blocks;
    for (const hidl_memory& memory : *batch) {
        EXPECT_EQ(memory.name(), "ashmem");
        EXPECT_EQ(memory.size(), 4097U);
        EXPECT_EQ(statusOf(memory).st_size, 4097);
        blocks.push_back(statusOf(memory).st_ino);
    }
    std::sort(blocks.begin(), blocks.end());
    EXPECT_EQ(std::unique(blocks.begin(), blocks.end()), blocks.end());
}

TEST(AshmemAllocator, GivesAnEmptyBatchWhenNoneIsWanted) {
    const sp<AshmemAllocator> allocator = new AshmemAllocator;
    const auto batch = batchAllocate(*allocator, 4096, 0);
    ASSERT_TRUE(batch.has_value());
    EXPECT_TRUE(batch->empty());
}

TEST(AshmemAllocator, KeepsNoDescriptorOnceItHasAnswered) {
    const sp<AshmemAllocator> allocator = new AshmemAllocator;
    const auto before = ::mlk::testing::descriptorsOf(getpid());
    allocator->allocate(4096, [&](bool, const hidl_memory&) {
        EXPECT_EQ(::mlk::testing::descriptorsOf(getpid()), before + 1);
    });
    allocator->batchAllocate(4096, 100, [&](bool, const auto&) {
        EXPECT_EQ(::mlk::testing::descriptorsOf(getpid()), before + 100);
    });
    EXPECT_EQ(::mlk::testing::descriptorsOf(getpid()), before);
}

TEST(SharedBlock, RefusesASizeThatNoFileHas) {
    EXPECT_FALSE(createSharedBlock(kLargest).ok());
    EXPECT_EQ(errno, EFBIG);
}

TEST(SharedBlock, IsNotInheritedByAProgramThatIsStarted) {
    const auto block = createSharedBlock(1);
    ASSERT_TRUE(block.ok());
    EXPECT_EQ(fcntl(block.get(), F_GETFD), FD_CLOEXEC);
}

}  // namespace
}  // namespace mlk::host
