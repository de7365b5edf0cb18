// The real process under many clients, and under clients that attack it. Afterwards it uses no more
// of the machine than before, and honest clients are answered at all times.
//
// MLK_SOAK in the environment is the number of seconds that each test runs for, instead of a
// moment.

#include <android-base/unique_fd.h>
#include <cutils/native_handle.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/hidl/tests/RawClient.h"
#include "host/testing/Eventually.h"
#include "host/testing/HostSet.h"
#include "host/testing/ProcessUsage.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/TestPipe.h"
#include "host/testing/Threads.h"
#include "service/tests/InterfaceMethods.h"
#include "service/tests/ServiceProcess.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::android::hardware::hidl_handle;
using ::mlk::test::RawClient;
using ::mlk::test::RawMessage;
using ::mlk::testing::descriptorsOf;
using ::mlk::testing::eventually;
using ::mlk::testing::HostSet;
using ::mlk::testing::Process;
using ::mlk::testing::residentOf;
using ::mlk::testing::TestPipe;
using ::mlk::testing::threadsOf;
using std::chrono::steady_clock;

constexpr size_t kPoolThreads = 10;
constexpr const char* kMoment = "2";

std::string seconds() {
    const char* const soak = getenv("MLK_SOAK");
    return soak != nullptr ? soak : kMoment;
}

bool isSoak() {
    return getenv("MLK_SOAK") != nullptr;
}

class LoadTest : public ::testing::Test {
  protected:
    void SetUp() override {
        mSet.copyFrom(::mlk::testing::sourceDir() + "/samples/partitions");
        mAllocator = startAllocator();
        mServer = std::make_unique<ServiceProcess>(std::map<std::string, std::string>{
                // The log lines of the refusals would fill the test's memory.
                {"ANDROID_LOG_TAGS", "*:F"},
                // The freed memory that the sanitizer keeps would hide growth.
                {"ASAN_OPTIONS", "quarantine_size_mb=16"}});
        ASSERT_TRUE(mServer->waitUntilRegistered()) << mServer->process().err();
        callers(4, "1", "30000");
        mDescriptors = settledDescriptors();
    }

    /**
     * The number of descriptors of the process after it has noticed that former clients are gone:
     * the number that does not change while it answers many calls.
     */
    size_t settledDescriptors() const {
        constexpr int kCalls = 200;
        const auto service = IMlkProjectConfigs::getService();
        size_t count = descriptorsOf(pid());
        EXPECT_TRUE(eventually([&] {
            const size_t before = count;
            for (int i = 0; i < kCalls && count == before; ++i) {
                EXPECT_TRUE(service->ping().isOk());
                count = descriptorsOf(pid());
            }
            return count == before;
        }));
        return count - 1;  // without this client's
    }

    /** Runs several processes that call at once; gives the number of their calls. */
    uint64_t callers(int count, const std::string& time, const std::string& calls) {
        std::vector<std::unique_ptr<Process>> processes;
        processes.reserve(static_cast<size_t>(count));
        for (int i = 0; i < count; ++i) {
            processes.push_back(std::make_unique<Process>(std::vector<std::string>{
                    SERVICE_CALLER, std::to_string(++mSeed), time, calls}));
        }
        uint64_t made = 0;
        for (const auto& process : processes) {
            EXPECT_EQ(process->wait(), 0) << process->err();
            made += strtoull(process->out().c_str(), nullptr, 10);
        }
        return made;
    }

    /** Calls as an honest client does until `stop`; every call must be answered. */
    void callHonestly(const std::atomic<bool>& stop) {
        const auto service = IMlkProjectConfigs::getService();
        do {
            int answers = 0;
            EXPECT_TRUE(service->getPanelName([&](const OptionalString&) { ++answers; }).isOk());
            EXPECT_EQ(answers, 1);
            ++mHonestCalls;
        } while (!stop);
    }

    /** Expects that the process lives, is no larger, and has as many descriptors as before. */
    void expectAsBefore(size_t resident) {
        EXPECT_TRUE(mServer->process().running());
        EXPECT_TRUE(eventually([&] { return threadsOf(pid()) <= kPoolThreads; }));
        EXPECT_TRUE(eventually([&] { return descriptorsOf(pid()) <= mDescriptors; }))
                << descriptorsOf(pid()) << " descriptors instead of " << mDescriptors;
        // The allocators keep memory for the next call; the sanitizers keep more.
        constexpr size_t kSlack = ::mlk::testing::kSanitized ? 96U << 20U : 4U << 20U;
        EXPECT_LE(residentOf(pid()), resident + kSlack);
    }

    std::unique_ptr<RawClient> attacker() const {
        auto client = std::make_unique<RawClient>(mSet.runtime(), IMlkProjectConfigs::descriptor);
        EXPECT_TRUE(client->hello());
        return client;
    }
    static RawMessage call(uint32_t code) {
        RawMessage message;
        message.header.code = code;
        message.text(IMlkProjectConfigs::descriptor);
        return message;
    }
    pid_t pid() const { return mServer->process().pid(); }

    HostSet mSet;
    std::unique_ptr<Process> mAllocator;
    std::unique_ptr<ServiceProcess> mServer;
    size_t mDescriptors = 0;
    int mSeed = 0;
    std::atomic<uint64_t> mHonestCalls{0};
};

TEST_F(LoadTest, SixtyFourProcessesAtOnce) {
    const size_t before = residentOf(pid());
    EXPECT_GT(callers(64, seconds(), "0"), 64U);
    expectAsBefore(before);
}

TEST_F(LoadTest, NothingGrowsWithTheNumberOfCalls) {
    // The memory settles within the first 100,000 calls.
    const uint64_t calls = isSoak() ? 10'000'000 : 40'000;
    callers(4, seconds(), "25000");
    const size_t settled = residentOf(pid());
    uint64_t made = 0;
    const auto end = steady_clock::now() + std::chrono::seconds(std::stol(seconds()));
    while (made < calls && steady_clock::now() < end) {
        made += callers(4, seconds(), std::to_string(calls / 16));
    }
    std::cout << made << " calls; resident " << settled / 1024 << " KiB before, "
              << residentOf(pid()) / 1024 << " KiB after" << std::endl;
    expectAsBefore(settled);
}

TEST_F(LoadTest, ThousandIdleConnections) {
    constexpr size_t kConnections = 1000;
    // The service may open as many descriptors as this process, and one client gets less than half.
    if (!::mlk::test::allowMoreDescriptors(3 * kConnections)) {
        GTEST_SKIP() << "too few descriptors";
    }
    const size_t before = residentOf(pid());
    std::vector<std::unique_ptr<RawClient>> idle;
    idle.reserve(kConnections);
    for (size_t i = 0; i < kConnections; ++i) {
        idle.push_back(attacker());
    }
    EXPECT_GT(callers(4, "1", "3000"), 0U);
    // On a busy machine the callers' connections may outlast many calls.
    EXPECT_TRUE(eventually([&] { return settledDescriptors() == mDescriptors + kConnections; }));
    EXPECT_LE(threadsOf(pid()), kPoolThreads);
    // A connection without a call is a few kilobytes.
    EXPECT_LE(residentOf(pid()),
              before + (4U << 20U) + (::mlk::testing::kSanitized ? 96U << 20U : 0U));
    idle.clear();
    expectAsBefore(before + (3U << 20U));
}

TEST_F(LoadTest, HostileClientsHurtOnlyThemselves) {
    constexpr uint32_t kGetEQPath = 14;
    constexpr uint32_t kSetAvrVendorId = 41;
    constexpr int kKinds = 6;
    const int unknownCodes = isSoak() ? 1'000'000 : 5'000;
    const size_t before = residentOf(pid());
    std::atomic<bool> stop{false};
    std::thread honest([&] { callHonestly(stop); });
    std::vector<std::thread> attackers;
    const auto end = steady_clock::now() + std::chrono::seconds(std::stol(seconds()));
    const auto attack = [&](const auto& once) {
        while (steady_clock::now() < end) {
            once();
        }
    };
    attackers.reserve(kKinds);
    // Half a message, then silence.
    attackers.emplace_back([&] {
        std::vector<std::unique_ptr<RawClient>> silent;
        attack([&] {
            const std::vector<uint8_t> whole = call(kGetEQPath).bytes();
            silent.push_back(attacker());
            silent.back()->send({whole.data(), whole.data() + whole.size() / 2});
            if (silent.size() > 200) {
                silent.clear();
            }
        });
    });
    // Lengths of four gigabytes.
    attackers.emplace_back([&] {
        attack([&] {
            RawMessage message = call(kGetEQPath);
            message.bodySize = uint64_t{1} << 32U;
            const auto client = attacker();
            client->send(message);
            EXPECT_TRUE(client->ends());
        });
    });
    // Descriptors that nobody asked for.
    attackers.emplace_back([&] {
        attack([&] {
            RawMessage message = call(kGetEQPath);
            message.number(0);
            message.descriptors.assign(100, STDIN_FILENO);
            const auto client = attacker();
            client->send(message);
            EXPECT_NE(client->replyStatus(), ::android::OK);
        });
    });
    // Methods that do not exist.
    attackers.emplace_back([&] {
        auto client = attacker();
        for (int i = 0; i < unknownCodes; ++i) {
            client->send(call(53U + static_cast<uint32_t>(i) * 4001U % 0x0effffffU));
            EXPECT_EQ(client->replyStatus(), ::android::UNKNOWN_TRANSACTION);
        }
    });
    // Calls that have no answer.
    attackers.emplace_back([&] {
        const auto client = attacker();
        attack([&] {
            RawMessage message = call(kGetEQPath);
            message.number(7);
            client->send(message);
            EXPECT_EQ(client->replyStatus(), ::android::BAD_VALUE);
        });
    });
    // Texts that would end the process, and absent texts.
    attackers.emplace_back([&] {
        const auto service = IMlkProjectConfigs::getService();
        const auto client = attacker();
        attack([&] {
            const auto refused = service->setAvrVendorId(std::string(129, 'v'), [](const auto&) {});
            EXPECT_FALSE(refused.isOk());
            EXPECT_FALSE(refused.isDeadObject());
            client->send(call(kSetAvrVendorId));
            EXPECT_NE(client->replyStatus(), ::android::OK);
        });
    });
    for (std::thread& thread : attackers) {
        thread.join();
    }
    stop = true;
    honest.join();
    EXPECT_GT(mHonestCalls, 100U);
    expectAsBefore(before);
}

/** A terminal that nobody reads: it takes what fits and nothing more. */
class StoppedTerminal {
  public:
    StoppedTerminal() : mMaster(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_EQ(grantpt(mMaster.get()), 0);
        EXPECT_EQ(unlockpt(mMaster.get()), 0);
        mTerminal.reset(open(ptsname(mMaster.get()), O_WRONLY | O_NOCTTY | O_CLOEXEC));
        EXPECT_EQ(tcflow(mTerminal.get(), TCOOFF), 0);
    }
    hidl_handle handle() const {
        native_handle_t* const native = native_handle_create(1, 0);
        native->data[0] = dup(mTerminal.get());
        hidl_handle handle;
        handle.setTo(native, true);
        return handle;
    }

  private:
    ::android::base::unique_fd mMaster;
    ::android::base::unique_fd mTerminal;
};

// A dump without a free thread is refused at once, so that the other calls do not wait.
TEST_F(LoadTest, DumpsToStoppedTerminalsDelayNobody) {
    constexpr int kTerminals = 6;
    constexpr int kAskers = 60;
    // A second, and what a busy machine adds.
    constexpr auto kLongest = std::chrono::seconds(8);
    const std::vector<StoppedTerminal> terminals(kTerminals);
    std::atomic<int> asking{kAskers};
    std::thread askers([&] {
        ::mlk::testing::inThreads(kAskers, [&](int i) {
            const auto service = IMlkProjectConfigs::getService();
            const hidl_handle handle = terminals[static_cast<size_t>(i) % kTerminals].handle();
            for (int round = 0; round < 5; ++round) {
                EXPECT_TRUE(service->debug(handle, {}).isOk());
            }
            --asking;
        });
    });
    const auto service = IMlkProjectConfigs::getService();
    auto longest = steady_clock::duration(0);
    do {
        const auto begin = steady_clock::now();
        EXPECT_TRUE(service->ping().isOk());
        longest = std::max(longest, steady_clock::now() - begin);
    } while (asking > 0);
    askers.join();
    EXPECT_LT(longest, kLongest);
    EXPECT_TRUE(eventually([&] { return threadsOf(pid()) <= kPoolThreads; }))
            << "nothing goes on for a terminal that takes nothing";
}

TEST_F(LoadTest, DumpsThatNobodyReadsHoldNobody) {
    constexpr int kClients = 12;
    constexpr auto kLastOnes = std::chrono::seconds(20);
    const size_t before = residentOf(pid());
    std::atomic<bool> stop{false};
    std::thread honest([&] { callHonestly(stop); });
    const auto end = steady_clock::now() + std::chrono::seconds(std::stol(seconds()));
    ::mlk::testing::inThreads(kClients, [&](int) {
        TestPipe pipe;
        native_handle_t* const native = native_handle_create(1, 0);
        native->data[0] = dup(pipe.fill().writeEnd());
        hidl_handle handle;
        handle.setTo(native, true);
        const auto service = IMlkProjectConfigs::getService();
        do {
            EXPECT_TRUE(service->debug(handle, {}).isOk());
        } while (steady_clock::now() < end);
    });
    EXPECT_LT(steady_clock::now(), end + kLastOnes);
    stop = true;
    honest.join();
    // A call that waited for its turn among them would be answered once a second.
    EXPECT_GT(mHonestCalls, 100U);
    expectAsBefore(before);
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
