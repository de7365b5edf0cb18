// The allocator's program with hostile clients and scarce resources.

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "host/memory/AshmemAllocator.h"
#include "host/memory/tests/Allocations.h"
#include "host/memory/tests/AllocatorProcess.h"
#include "host/testing/Eventually.h"
#include "host/testing/ProcessUsage.h"
#include "host/testing/Threads.h"
#include "host/testing/TimeLimit.h"

namespace mlk::host {
namespace {

using ::android::sp;
using ::android::hardware::hidl_memory;
using ::android::hardware::mapMemory;
using ::android::hidl::allocator::V1_0::IAllocator;
using ::android::hidl::memory::V1_0::IMemory;
using ::mlk::testing::descriptorsOf;
using ::mlk::testing::eventually;
using ::mlk::testing::inThreads;
using ::mlk::testing::residentOf;
using ::mlk::testing::threadsOf;
using ::testing::HasSubstr;

// An allocator that has lost its limits must fail its test without using up the machine's memory.
const std::vector<std::string> kWithoutHugeFiles = {"prlimit", "--fsize=1073741824"};

// Whether the process has this number of descriptors, now or soon: it notices asynchronously that a
// client is gone. The calls in between give it processor time.
::testing::AssertionResult settlesAt(IAllocator& allocator, pid_t process, size_t descriptors) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (descriptorsOf(process) != descriptors) {
        if (std::chrono::steady_clock::now() > limit || !allocator.ping().isOk()) {
            return ::testing::AssertionFailure()
                   << descriptorsOf(process) << " descriptors instead of " << descriptors;
        }
    }
    return ::testing::AssertionSuccess();
}

// Waits until the process has written its log line: meanwhile it has standard error open twice.
bool logIsIdle(pid_t process) {
    const std::string folder = "/proc/" + std::to_string(process) + "/fd";
    return eventually([&] {
        std::error_code ignored;
        const auto log = std::filesystem::read_symlink(folder + "/2", ignored);
        int open = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            open += std::filesystem::read_symlink(entry.path(), ignored) == log ? 1 : 0;
        }
        return open == 1;
    });
}

void useOneBlock(const AllocatorProcess& process, uint64_t size) {
    const sp<IAllocator> allocator = process.service();
    ASSERT_NE(allocator, nullptr);
    const auto memory = allocate(*allocator, size);
    ASSERT_TRUE(memory.has_value());
    const sp<IMemory> mapped = mapMemory(*memory);
    ASSERT_NE(mapped, nullptr);
    std::fill_n(bytesOf(mapped), size, uint8_t{1});
}

TEST(AllocatorService, GrowsNeitherInItselfNorInItsClient) {
    constexpr uint64_t kSize = uint64_t{256} * 1024;
    const AllocatorProcess process;
    const sp<IAllocator> allocator = process.service();
    ASSERT_NE(allocator, nullptr);
    ASSERT_TRUE(logIsIdle(process.pid()));
    const auto theirs = descriptorsOf(process.pid());
    for (int i = 0; i < 50; ++i) {
        useOneBlock(process, kSize);
    }
    const auto ours = descriptorsOf(getpid());
    const size_t ourMemory = residentOf(getpid());
    const size_t theirMemory = residentOf(process.pid());
    for (int i = 0; i < 1000; ++i) {
        useOneBlock(process, kSize);
    }
    EXPECT_EQ(descriptorsOf(getpid()), ours);
    EXPECT_TRUE(settlesAt(*allocator, process.pid(), theirs));
    // Blocks that stayed mapped would be 250 MiB; the address sanitizer keeps some freed memory.
    constexpr size_t kOurSlack = 64 << 20;
    EXPECT_LT(residentOf(getpid()), ourMemory + kOurSlack);
    constexpr size_t kTheirSlack = 2 << 20;
    EXPECT_LT(residentOf(process.pid()), theirMemory + kTheirSlack);
}

TEST(AllocatorService, AnswersManyThreadsAtOnce) {
    const AllocatorProcess process;
    const sp<IAllocator> allocator = process.service();
    ASSERT_NE(allocator, nullptr);
    inThreads(8, [&](int thread) {
        const auto first = static_cast<uint64_t>(thread) * 1000 + 1;
        for (uint64_t size = first; size < first + 50; ++size) {
            const auto memory = allocate(*allocator, size);
            ASSERT_TRUE(memory.has_value());
            EXPECT_EQ(memory->size(), size);
        }
    });
    // The second one answers while the first sends a large reply.
    EXPECT_EQ(threadsOf(process.pid()), 2U);
}

TEST(AllocatorService, RefusesAbsurdSizesAndLivesOn) {
    AllocatorProcess process(kWithoutHugeFiles);
    const sp<IAllocator> allocator = process.service();
    ASSERT_NE(allocator, nullptr);
    for (const uint64_t size :
         {uint64_t{0}, AshmemAllocator::kMaxBytes + 1, uint64_t{1} << 63, ~uint64_t{0}}) {
        bool answered = false;
        const auto call = allocator->allocate(size, [&](bool success, const hidl_memory& memory) {
            answered = true;
            EXPECT_FALSE(success);
            EXPECT_FALSE(memory.valid());
        });
        EXPECT_TRUE(call.isOk()) << size;
        EXPECT_TRUE(answered) << size;
        EXPECT_TRUE(process.process().waitForErr("of " + std::to_string(size) + " bytes: "));
    }
    EXPECT_TRUE(allocate(*allocator, 4096).has_value());
}

TEST(AllocatorService, GivesTheLargestBatchAndRefusesALargerOne) {
    const AllocatorProcess process(kWithoutHugeFiles);
    const sp<IAllocator> allocator = process.service();
    ASSERT_NE(allocator, nullptr);
    const auto batch = batchAllocate(*allocator, 4097, AshmemAllocator::kMaxBlocks);
    ASSERT_TRUE(batch.has_value());
    ASSERT_EQ(batch->size(), AshmemAllocator::kMaxBlocks);
    for (const hidl_memory& memory : *batch) {
        EXPECT_NE(mapMemory(memory), nullptr);
    }
    EXPECT_FALSE(batchAllocate(*allocator, 4097, AshmemAllocator::kMaxBlocks + 1).has_value());
    EXPECT_FALSE(batchAllocate(*allocator, 1, ~uint64_t{0}).has_value());
    EXPECT_FALSE(batchAllocate(*allocator, uint64_t{1} << 30, 2).has_value());
    EXPECT_FALSE(batchAllocate(*allocator, 0, 2).has_value());
    const auto none = batchAllocate(*allocator, 1, 0);
    ASSERT_TRUE(none.has_value());
    EXPECT_TRUE(none->empty());
}

TEST(AllocatorService, SurvivesWhenTheSystemGivesNoMemory) {
    // The limit on files is the only shortage that a test can create for one process.
    AllocatorProcess process({"prlimit", "--fsize=1048576"});
    const sp<IAllocator> allocator = process.service();
    ASSERT_NE(allocator, nullptr);
    EXPECT_FALSE(allocate(*allocator, 1048577).has_value());
    EXPECT_TRUE(
            process.process().waitForErr("refused 1 block(s) of 1048577 bytes: File too large"));
    EXPECT_FALSE(batchAllocate(*allocator, 1048577, 2).has_value());
    EXPECT_TRUE(allocate(*allocator, 1048576).has_value());
    EXPECT_TRUE(process.process().running());
}

TEST(AllocatorService, SurvivesWhenDescriptorsRunOut) {
    AllocatorProcess process({"prlimit", "--nofile=40"});
    const sp<IAllocator> allocator = process.service();
    ASSERT_NE(allocator, nullptr);
    ASSERT_TRUE(logIsIdle(process.pid()));
    const auto before = descriptorsOf(process.pid());
    EXPECT_FALSE(batchAllocate(*allocator, 4096, 100).has_value());
    EXPECT_TRUE(process.process().waitForErr(
            "refused 100 block(s) of 4096 bytes: Too many open files"));
    EXPECT_TRUE(logIsIdle(process.pid()));
    EXPECT_EQ(descriptorsOf(process.pid()), before);
    EXPECT_TRUE(batchAllocate(*allocator, 4096, 20).has_value());
    EXPECT_TRUE(settlesAt(*allocator, process.pid(), before));
}

TEST(AllocatorService, IsNotFoundWhenItNeverRan) {
    const mlk::testing::HostSet set;
    EXPECT_EQ(IAllocator::getService("ashmem"), nullptr);
}

TEST(AllocatorService, IsNotFoundAtOnceWhenItHasStopped) {
    AllocatorProcess process;
    ASSERT_NE(process.service(), nullptr);
    process.process().kill(SIGTERM);
    process.process().wait();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(process.service(), nullptr);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST(AllocatorService, IsFoundUnderItsKindOnly) {
    const AllocatorProcess process;
    EXPECT_NE(process.service(), nullptr);
    EXPECT_EQ(IAllocator::getService(), nullptr);
    EXPECT_EQ(IAllocator::getService("default"), nullptr);
}

TEST(AllocatorService, FailsTheCallWhenItIsKilledDuringIt) {
    AllocatorProcess process;
    const sp<IAllocator> allocator = process.service();
    ASSERT_NE(allocator, nullptr);
    // When all its threads are stopped, nobody can answer the call.
    process.process().kill(SIGSTOP);
    siginfo_t stopped{};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(process.pid()), &stopped, WSTOPPED), 0);
    std::thread killer([&] { ::kill(process.pid(), SIGKILL); });
    bool answered = false;
    const auto call = allocator->allocate(4096, [&](bool, const hidl_memory&) { answered = true; });
    killer.join();
    EXPECT_FALSE(call.isOk());
    EXPECT_TRUE(call.isDeadObject());
    EXPECT_FALSE(answered);
    process.process().wait();
    EXPECT_EQ(process.service(), nullptr);
}

TEST(AllocatorService, PrintsItsHelpAndRefusesOtherArguments) {
    const std::string program = mlk::testing::binDir() + "/android.hidl.allocator@1.0-service";
    const mlk::testing::HostSet set;
    for (const char* option : {"--help", "-h"}) {
        mlk::testing::Process process({program, option});
        const mlk::testing::TimeLimit limit([&] { ::kill(process.pid(), SIGKILL); });
        EXPECT_EQ(process.wait(), 0);
        EXPECT_THAT(process.out(), HasSubstr("Usage: android.hidl.allocator@1.0-service"));
        EXPECT_EQ(process.err(), "");
    }
    for (const char* argument : {"--version", "", "-x"}) {
        mlk::testing::Process process({program, argument});
        const mlk::testing::TimeLimit limit([&] { ::kill(process.pid(), SIGKILL); });
        EXPECT_EQ(process.wait(), 2);
        EXPECT_EQ(process.out(), "");
        EXPECT_EQ(process.err(), "android.hidl.allocator@1.0-service: it takes no argument '" +
                                         std::string(argument) + "'; see --help\n");
    }
    mlk::testing::Process full({"sh", "-c", "exec \"$0\" --help > /dev/full", program});
    EXPECT_EQ(full.wait(), 1);
    EXPECT_TRUE(std::filesystem::is_empty(set.runtime()));
}

TEST(AllocatorService, GivesUpWithoutARuntimeFolder) {
    const mlk::testing::HostSet set;
    mlk::testing::Process process(
            {mlk::testing::binDir() + "/android.hidl.allocator@1.0-service"},
            {{{"MLK_RUNTIME_DIR", set.dir().write("file", "") + "/run"}}, ""});
    EXPECT_EQ(process.wait(), 1);
    EXPECT_THAT(process.err(), HasSubstr("could not register IAllocator"));
}

}  // namespace
}  // namespace mlk::host
