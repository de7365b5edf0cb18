// How many calls the real process serves at once.

#include <android-base/unique_fd.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>

#include <future>
#include <map>
#include <string>
#include <vector>

#include "host/testing/Eventually.h"
#include "host/testing/HostSet.h"
#include "host/testing/ProcessUsage.h"
#include "service/tests/InterfaceMethods.h"
#include "service/tests/ServiceProcess.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::android::base::unique_fd;
using ::mlk::testing::eventually;
using ::mlk::testing::HostSet;
using ::mlk::testing::threadsOf;

constexpr size_t kThreads = 10;

/** Makes the process wait at each read of one file until the calls are released. */
class Gate {
  public:
    explicit Gate(const HostSet& set, const std::string& slowFile = "tvdata/slow")
        : mSlowFile(set.dir().write(slowFile, "slow")), mFifo(set.dir().path("gate")) {
        EXPECT_EQ(mkfifo(mFifo.c_str(), 0600), 0);
    }

    /** The environment of the process. */
    std::map<std::string, std::string> environment() const {
        return {{"LD_PRELOAD", ::mlk::testing::binDir() + "/../tests/mlk_faults.so"},
                {"MLK_FAULT_BELOW", mSlowFile},
                {"MLK_FAULT_AT", "open 1+ hold"},
                {"MLK_FAULT_GATE", mFifo},
                // The runtime of a sanitizer is preloaded too, and must not complain about that.
                {"ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0"}};
    }

    /** Makes a call that lasts until it is released; true if the answer is the file. */
    std::future<bool> slowCall() const {
        return std::async(std::launch::async, [this] {
            bool answered = false;
            const auto service = IMlkProjectConfigs::getService();
            return service != nullptr &&
                   service->getTvFile(mSlowFile,
                                      [&](const auto& file) { answered = file.size() == 4; })
                           .isOk() &&
                   answered;
        });
    }

    /** Lets all calls end, later ones too. */
    void open() { mOpen.reset(::open(mFifo.c_str(), O_RDWR | O_CLOEXEC)); }

  private:
    std::string mSlowFile;
    std::string mFifo;
    unique_fd mOpen;
};

TEST(Pool, HasTenThreadsAndMoreCallsWaitForThem) {
    const HostSet set;
    writeProject(set);
    Gate gate(set);
    ServiceProcess service(gate.environment());
    ASSERT_TRUE(service.waitUntilRegistered()) << service.process().err();
    const pid_t pid = service.process().pid();
    constexpr size_t kCalls = kThreads + 4;
    std::vector<std::future<bool>> slow;
    slow.reserve(kCalls);
    for (size_t i = 0; i < kCalls; ++i) {
        slow.push_back(gate.slowCall());
    }
    EXPECT_TRUE(eventually([&] { return threadsOf(pid) >= kThreads; })) << threadsOf(pid);
    gate.open();
    for (auto& call : slow) {
        EXPECT_TRUE(call.get());
    }
    // Threads never end, so this is the highest number.
    EXPECT_EQ(threadsOf(pid), kThreads);
    EXPECT_TRUE(IMlkTvConfigs::getService()->ping().isOk());
}

// The main thread is still reading a file when more calls come than there are threads.
TEST(Pool, KeepsThePlaceOfTheMainThreadUntilItJoins) {
    const HostSet set;
    writeProject(set);
    Gate gate(set, "tvconfigs/one/tv.config");
    ServiceProcess service(gate.environment());
    ASSERT_TRUE(eventually([] { return IMlkProjectConfigs::tryGetService() != nullptr; }));
    const pid_t pid = service.process().pid();
    constexpr size_t kCalls = kThreads + 4;
    std::vector<std::future<bool>> slow;
    slow.reserve(kCalls);
    for (size_t i = 0; i < kCalls; ++i) {
        slow.push_back(gate.slowCall());
    }
    EXPECT_TRUE(eventually([&] { return threadsOf(pid) >= kThreads; })) << threadsOf(pid);
    // Time for a thread too many to start; nothing tells that none will.
    (void)poll(nullptr, 0, 200);
    gate.open();
    for (auto& call : slow) {
        EXPECT_TRUE(call.get());
    }
    EXPECT_EQ(threadsOf(pid), kThreads);
    EXPECT_TRUE(service.waitUntilRegistered()) << service.process().err();
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
