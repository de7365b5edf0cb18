#include "service/tests/ServiceProcess.h"

#include <android-base/unique_fd.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkFrameworkConfigs.h>

#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

namespace vendor::morlak::mlkconfigs::V1_0 {

using ::android::base::unique_fd;
using ::mlk::testing::HostSet;
using ::mlk::testing::Process;
using std::chrono::steady_clock;

void writeProject(const HostSet& set, const std::string& tvConfigLine) {
    set.dir().write("impdata/project_id.bin", "PROJECT_ID=1\n");
    set.dir().write("tvconfigs/customer.ini",
                    "CUSTOMER_ID = 17\nSYS_INI = /tvconfigs/system.ini\n");
    set.dir().write("tvconfigs/system.ini", "Model_1 = \"/tvconfigs/one/model.ini\"\n");
    set.dir().write("tvconfigs/one/model.ini",
                    "[PANEL]\nm_pPanelName = PANEL_ONE\n[LiveTV]\n" + tvConfigLine);
}

void blockName(const HostSet& set, const std::string& interface) {
    set.dir().write("run/vendor.morlak.mlkconfigs@1.0::" + interface + ".default/file", "");
}

std::unique_ptr<Process> startAllocator(std::vector<std::string> starter) {
    starter.push_back(::mlk::testing::binDir() + "/android.hidl.allocator@1.0-service");
    auto allocator = std::make_unique<Process>(std::move(starter),
                                               Process::Options{{{"ANDROID_LOG_TAGS", "*:D"}}});
    EXPECT_TRUE(allocator->waitForErr("registered IAllocator")) << allocator->err();
    return allocator;
}

ServiceProcess::ServiceProcess(std::map<std::string, std::string> environment,
                               std::vector<std::string> starter)
    : mStarter(std::move(starter)) {
    restart(std::move(environment));
}

ServiceProcess::~ServiceProcess() {
    end();
}

void ServiceProcess::end() {
    if (mProcess != nullptr) {
        mProcess->kill(SIGKILL);
        mProcess->wait();
        EXPECT_THAT(mProcess->err(), ::testing::Not(::testing::HasSubstr("Sanitizer: ")));
    }
}

void ServiceProcess::restart(std::map<std::string, std::string> environment) {
    end();
    std::vector<std::string> command = mStarter;
    command.push_back(::mlk::testing::binDir() + "/vendor.morlak.mlconfigs@1.0-service");
    mProcess = std::make_unique<Process>(command, Process::Options{std::move(environment)});
}

bool ServiceProcess::waitUntilRegistered() {
    const unique_fd changes(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (inotify_add_watch(changes.get(), getenv("MLK_RUNTIME_DIR"), IN_CREATE | IN_MOVED_TO) < 0) {
        throw std::runtime_error("cannot watch the runtime folder");
    }
    const auto end = steady_clock::now() + std::chrono::seconds(30);
    while (steady_clock::now() < end) {
        if (IMlkFrameworkConfigs::tryGetService() != nullptr) {
            return true;
        }
        if (!mProcess->running()) {
            return false;
        }
        // Until the next name appears; now and then to see whether the process still runs.
        pollfd descriptor{changes.get(), POLLIN, 0};
        poll(&descriptor, 1, 200);
        std::array<char, 4096> events;
        [[maybe_unused]] const ssize_t size = read(changes.get(), events.data(), events.size());
    }
    return false;
}

}  // namespace vendor::morlak::mlkconfigs::V1_0
