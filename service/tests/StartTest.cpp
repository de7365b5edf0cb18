// The start of the real process, and its end if it cannot start.

#include <gmock/gmock.h>
#include <hidl/ServiceManagement.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "host/testing/Eventually.h"
#include "host/testing/HostSet.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/TimeLimit.h"
#include "service/tests/InterfaceMethods.h"
#include "service/tests/ServiceProcess.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::mlk::testing::HostSet;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

std::vector<std::string> listNames() {
    std::vector<std::string> names;
    EXPECT_TRUE(::android::hardware::defaultServiceManager()
                        ->list([&](const hidl_vec<hidl_string>& all) {
                            names.assign(all.begin(), all.end());
                        })
                        .isOk());
    return names;
}

/** Waits for the end of the process; see Process::wait(). */
int endOf(ServiceProcess& service) {
    const ::mlk::testing::TimeLimit limit([&] { ::kill(service.process().pid(), SIGKILL); });
    return service.process().wait();
}

TEST(Start, RegistersAllThreeAndKeepsRunning) {
    const HostSet set;
    writeProject(set);
    ServiceProcess service;
    ASSERT_TRUE(service.waitUntilRegistered()) << service.process().err();
    EXPECT_THAT(listNames(),
                UnorderedElementsAre("vendor.morlak.mlkconfigs@1.0::IMlkProjectConfigs/default",
                                     "vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs/default",
                                     "vendor.morlak.mlkconfigs@1.0::IMlkFrameworkConfigs/default"));
    EXPECT_TRUE(IMlkProjectConfigs::getService()->ping().isOk());
    EXPECT_TRUE(IMlkTvConfigs::getService()->ping().isOk());
    EXPECT_TRUE(IMlkFrameworkConfigs::getService()->ping().isOk());
    EXPECT_TRUE(service.process().running());
}

// The start writes the digital system to the TV feature file, and to its property.
TEST(Start, LimitOnTheSizeOfFilesIsAFailedWrite) {
    if (::mlk::testing::kThreadSanitizer) {
        GTEST_SKIP() << "a program with the thread sanitizer does not start with this limit";
    }
    const HostSet set;
    writeProject(set);
    const std::string path = set.dir().write(
            "tvconfigs/one/tv.config", "# as delivered\npersist.vendor.mlk.tv.dtv_system=3\n");
    const std::string content = set.dir().read("tvconfigs/one/tv.config");
    ServiceProcess service({}, {"prlimit", "--fsize=0"});
    ASSERT_TRUE(service.waitUntilRegistered()) << service.process().err();
    EXPECT_TRUE(IMlkTvConfigs::getService()->ping().isOk());
    EXPECT_TRUE(service.process().waitForErr("ERROR: Write " + path + " fail! File too large"))
            << service.process().err();
    EXPECT_TRUE(service.process().waitForErr("ERROR: Set property"));
    EXPECT_EQ(set.dir().read("tvconfigs/one/tv.config"), content);
}

TEST(Start, GivesBackWhatReadingTook) {
    const HostSet set;
    writeProject(set);
    const std::string calls = set.dir().path("calls");
    ServiceProcess service(
            {{"LD_PRELOAD", ::mlk::testing::binDir() + "/../tests/mlk_faults.so"},
             {"MLK_FAULT_BELOW", set.tvconfigs()},
             {"MLK_FAULT_LOG", calls},
             // The runtime of a sanitizer is preloaded too, and must not complain about that.
             {"ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0"}});
    ASSERT_TRUE(service.waitUntilRegistered()) << service.process().err();
    EXPECT_TRUE(::mlk::testing::eventually([&] {
        const std::string log = set.dir().read("calls");
        // After the last file.
        return log.rfind("trim\n") != std::string::npos &&
               log.rfind("trim\n") > log.rfind("open\n");
    })) << set.dir().read("calls");
}

TEST(Start, NeedsNoFileAtAll) {
    const HostSet set;
    ServiceProcess service;
    ASSERT_TRUE(service.waitUntilRegistered()) << service.process().err();
    EXPECT_TRUE(IMlkTvConfigs::getService()->ping().isOk());
    EXPECT_TRUE(service.process().running());
}

TEST(Start, DoesWithoutATvConfigurationFile) {
    for (const char* line : {"", "TvConfig =\n", "TvConfig = /no/such/file\n"}) {
        const HostSet set;
        writeProject(set, line);
        ServiceProcess service;
        ASSERT_TRUE(service.waitUntilRegistered()) << service.process().err();
        EXPECT_TRUE(IMlkTvConfigs::getService()->ping().isOk());
    }
}

struct Failure {
    const char* blocked;              /**< the interface that cannot be registered */
    std::vector<const char*> reached; /**< the interfaces registered before it */
    std::vector<const char*> missed;  /**< the interfaces after it */
};

void PrintTo(const Failure& failure, std::ostream* out) {
    *out << failure.blocked;
}

class StartFailure : public ::testing::TestWithParam<Failure> {};

TEST_P(StartFailure, AbortsTheProcessWithTheInterfacesName) {
    const HostSet set;
    writeProject(set);
    blockName(set, GetParam().blocked);
    ServiceProcess service;
    EXPECT_EQ(endOf(service), 128 + SIGABRT);
    const std::string err = service.process().err();
    EXPECT_THAT(err, HasSubstr("F/vendor.morlak.mlconfigs@1.0-service("));
    EXPECT_THAT(err, HasSubstr("): Could not register " + std::string(GetParam().blocked) + "\n"));
    const auto socketOf = [&](const char* interface) {
        return set.runtime() + "/vendor.morlak.mlkconfigs@1.0::" + interface + ".default";
    };
    for (const char* interface : GetParam().reached) {
        EXPECT_TRUE(fs::is_socket(socketOf(interface))) << interface;
    }
    for (const char* interface : GetParam().missed) {
        EXPECT_FALSE(fs::exists(socketOf(interface))) << interface;
        EXPECT_THAT(err, Not(HasSubstr(interface)));
    }
}

INSTANTIATE_TEST_SUITE_P(
        EachInterface, StartFailure,
        ::testing::Values(
                Failure{"IMlkProjectConfigs", {}, {"IMlkTvConfigs", "IMlkFrameworkConfigs"}},
                Failure{"IMlkTvConfigs", {"IMlkProjectConfigs"}, {"IMlkFrameworkConfigs"}},
                Failure{"IMlkFrameworkConfigs", {"IMlkProjectConfigs", "IMlkTvConfigs"}, {}}));

TEST(Start, AbortsWhenTheRuntimeFolderCannotBeUsed) {
    const HostSet set;
    fs::remove(set.runtime());
    set.dir().write("run", "no folder");
    ServiceProcess service;
    EXPECT_EQ(endOf(service), 128 + SIGABRT);
    EXPECT_THAT(service.process().err(), HasSubstr("Could not register IMlkProjectConfigs\n"));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
