// Every method of the three interfaces from ten threads at once, while what they read is changed.
// The thread sanitizer watches the process. Without it, the test sees that the process answers.

#include <cutils/native_handle.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <random>
#include <string>

#include "host/testing/HostSet.h"
#include "host/testing/Threads.h"
#include "service/tests/InterfaceMethods.h"
#include "service/tests/ServiceProcess.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::android::sp;
using ::android::hardware::hidl_handle;
using ::mlk::testing::HostSet;

constexpr int kThreads = 10;
constexpr int kRounds = 20;

// Calls each method of the interface once, in a random order.
template <typename Interface>
void callAll(Interface& service, std::mt19937& random) {
    auto rows = methodRows<Interface>();
    std::shuffle(rows.begin(), rows.end(), random);
    for (const auto& row : rows) {
        int answers = 0;
        EXPECT_TRUE(row.call(service, &answers)) << row.name;
        EXPECT_EQ(answers, 1) << row.name;
    }
}

void dump(IMlkProjectConfigs& service) {
    native_handle_t* const handle = native_handle_create(1, 0);
    handle->data[0] = open("/dev/null", O_WRONLY | O_CLOEXEC);
    EXPECT_TRUE(service.debug(hidl_handle(handle), {}).isOk());
    native_handle_close(handle);
    native_handle_delete(handle);
}

template <typename Answer>
std::function<void(const Answer&)> success() {
    return [](const Answer& answer) { EXPECT_TRUE(answer.success); };
}

// Changes all that calls can change; gives true if each change was answered.
void change(IMlkProjectConfigs& project, IMlkTvConfigs& tv, const std::string& tvConfig,
            int round) {
    const int32_t model = round % 2 + 1;
    EXPECT_TRUE(project.setProjectId(model, success<OptionalBool>()).isOk());
    EXPECT_TRUE(project.setProjectIdWithPid(3 - model, "hammer", round, success<OptionalBool>())
                        .isOk());
    EXPECT_TRUE(
            project.setAvrVendorId(round % 3 == 0 ? "0EC0DE" : "0AFADE", success<OptionalBool>())
                    .isOk());
    EXPECT_TRUE(
            project.setAvrOSDName(round % 2 == 0 ? "Orlan900" : "Sundra7", success<OptionalBool>())
                    .isOk());
    constexpr int32_t kGermany = 14;
    constexpr int32_t kUnitedKingdom = 43;
    EXPECT_TRUE(project.setCountryId(round % 2 == 0 ? kGermany : kUnitedKingdom,
                                     success<OptionalBool>())
                        .isOk());
    EXPECT_TRUE(tv.reloadTvConfig(tvConfig, success<OptionalBool>()).isOk());
    EXPECT_TRUE(tv.setFlag(static_cast<ConfigType>(round % 26), round % 2 == 0,
                           [](const OptionalBool&) {})
                        .isOk());
}

TEST(Hammer, EveryMethodFromTenThreadsWhileWhatTheyReadIsChanged) {
    HostSet set;
    set.copyFrom(::mlk::testing::sourceDir() + "/samples/partitions");
    ServiceProcess server;
    ASSERT_TRUE(server.waitUntilRegistered()) << server.process().err();
    const sp<IMlkProjectConfigs> project = IMlkProjectConfigs::getService();
    const sp<IMlkTvConfigs> tv = IMlkTvConfigs::getService();
    const sp<IMlkFrameworkConfigs> framework = IMlkFrameworkConfigs::getService();
    const std::string tvConfig = set.tvconfigs() + "/tv/tv_eu.config";
    std::atomic<int> calling{kThreads};
    ::mlk::testing::inThreads(kThreads + 1, [&](int thread) {
        if (thread == kThreads) {
            for (int round = 0; calling > 0; ++round) {
                change(*project, *tv, tvConfig, round);
            }
            return;
        }
        std::mt19937 random(static_cast<unsigned>(thread));
        for (int round = 0; round < kRounds; ++round) {
            callAll(*project, random);
            callAll(*tv, random);
            callAll(*framework, random);
            dump(*project);
        }
        --calling;
    });
    EXPECT_TRUE(server.process().running());
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
