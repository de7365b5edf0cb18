// How much one client can make the service write to its log.

#include <gmock/gmock.h>
#include <unistd.h>
#include <vendor/morlak/mlkconfigs/1.0/IMlkProjectConfigs.h>

#include <map>
#include <string>

#include "host/testing/Eventually.h"
#include "host/testing/HostSet.h"
#include "service/tests/ServiceProcess.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::mlk::testing::eventually;
using ::mlk::testing::HostSet;
using ::mlk::testing::Process;

TEST(LogLimitTest, ALoudClientIsLeftOutAndNobodyElse) {
    constexpr int kCalls = 8000;
    constexpr size_t kLine = 1000;  // the log cuts a longer one
    const HostSet set;
    writeProject(set);
    ServiceProcess server(std::map<std::string, std::string>{{"ANDROID_LOG_TAGS", "*:D"}});
    ASSERT_TRUE(server.waitUntilRegistered());
    const auto service = IMlkProjectConfigs::getService();
    ASSERT_NE(service, nullptr);
    const std::string path(2 * kLine, 'x');
    for (int i = 0; i < kCalls; ++i) {
        ASSERT_TRUE(service->getTvFile(path, [](const auto&) {}).isOk());
    }
    const auto said = [&] { return server.process().err(); };
    EXPECT_GT(said().size(), size_t{4} << 20U) << "a burst is written";
    EXPECT_LT(said().size(), kCalls * kLine);

    const size_t before = said().size();
    EXPECT_EQ(Process({SERVICE_CALLER, "1", "60", "3000"}).wait(), 0);
    EXPECT_TRUE(eventually([&] { return said().size() > before + kLine; }))
            << "another client has its own limit";
    const std::string told =
            " lines left out: process " + std::to_string(getpid()) + " had more written";
    EXPECT_TRUE(eventually([&] {
        (void)service->getTvFile("quiet", [](const auto&) {});
        return said().find(told) != std::string::npos;
    }));
    // The calls before may have used up what the client may write in this moment.
    EXPECT_TRUE(eventually([&] {
        (void)service->getTvFile("heard again", [](const auto&) {});
        return said().find("getTvFile,path:heard again") != std::string::npos;
    }));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
