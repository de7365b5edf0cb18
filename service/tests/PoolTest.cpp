// How many calls the real process serves at once.

#include <android-base/unique_fd.h>
#include <cutils/native_handle.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "host/testing/HostSet.h"
#include "host/testing/ProcessUsage.h"
#include "service/tests/InterfaceMethods.h"
#include "service/tests/ServiceProcess.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::android::base::unique_fd;
using ::android::hardware::hidl_handle;
using ::mlk::testing::HostSet;
using ::mlk::testing::threadsOf;

using std::chrono::steady_clock;

constexpr size_t kThreads = 10;

/// A call that lasts until it is released: a dump into a pipe that is full.
class SlowCall {
  public:
    SlowCall() {
        EXPECT_TRUE(::android::base::Pipe(&mRead, &mWrite));
        const int flags = fcntl(mWrite.get(), F_GETFL);
        fcntl(mWrite.get(), F_SETFL, flags | O_NONBLOCK);
        const std::array<char, 4096> filler{};
        while (write(mWrite.get(), filler.data(), filler.size()) > 0) {
        }
        fcntl(mWrite.get(), F_SETFL, flags);
        native_handle_t* native = native_handle_create(1, 0);
        native->data[0] = mWrite.release();
        hidl_handle handle;
        handle.setTo(native, true);
        mDone = std::async(std::launch::async, [handle] {
            const auto service = IMlkProjectConfigs::getService();
            return service != nullptr && service->debug(handle, {}).isOk();
        });
    }

    /// Lets it end.
    void release() { mRead.reset(); }

    /// Waits for its end; gives whether it was answered.
    bool answered() { return mDone.get(); }

  private:
    unique_fd mRead;
    unique_fd mWrite;
    std::future<bool> mDone;
};

TEST(Pool, HasTenThreadsAndMoreCallsWaitForThem) {
    const HostSet set;
    writeProject(set);
    ServiceProcess service;
    ASSERT_TRUE(service.waitUntilRegistered()) << service.process().err();
    const pid_t pid = service.process().pid();
    std::vector<SlowCall> slow(14);
    const auto end = steady_clock::now() + std::chrono::seconds(30);
    while (threadsOf(pid) < kThreads && steady_clock::now() < end) {
        std::this_thread::yield();
    }
    for (SlowCall& call : slow) {
        call.release();
    }
    for (SlowCall& call : slow) {
        EXPECT_TRUE(call.answered());
    }
    // Threads never end: these are the most that there were.
    EXPECT_EQ(threadsOf(pid), kThreads);
    EXPECT_TRUE(IMlkTvConfigs::getService()->ping().isOk());
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
