// A server that runs out of descriptors refuses, survives, and recovers.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <hidl/ServiceManagement.h>
#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "RawClient.h"
#include "Server.h"
#include "host/testing/HostSet.h"
#include "host/testing/ProcessUsage.h"

namespace mlk::test {
namespace {

using testing::DescriptorLimit;
using ::testing::ElementsAre;

class ExhaustionTest : public ::testing::Test {
  protected:
    // Runs everything once before the exhaustion: the sanitizer of undefined behaviour reads type
    // information through a pipe, which needs descriptors.
    void SetUp() override {
        ASSERT_TRUE(mHonest->ping().isOk());
        const size_t before = descriptorsOf(mServer.pid());
        ASSERT_TRUE(mHonest->fd(handleOf(files()), [](const hidl_handle&) {}).isOk());
        ASSERT_TRUE(mHonest->listen(new Listener, "").isOk());
        ASSERT_TRUE(mHonest->dropKept().isOk());
        RawClient client(mSet.runtime());
        ASSERT_TRUE(client.hello());
        RawMessage broken = fdCall({STDIN_FILENO});
        broken.descriptors.clear();
        broken.fdCount = 1;
        ASSERT_TRUE(client.send(broken));
        ASSERT_EQ(client.replyStatus(), ::android::BAD_VALUE);
        client.close();
        ASSERT_TRUE(eventually([&] { return descriptorsOf(mServer.pid()) == before; }));
    }
    static std::vector<unique_fd> files() {
        std::vector<unique_fd> two;
        two.push_back(fileWith("one"));
        two.push_back(fileWith("two"));
        return two;
    }

    // Connects until the server refuses this process; returns the number of connections.
    size_t hog() {
        while (mHogs.size() < 1000) {
            auto hog = std::make_unique<RawClient>(mSet.runtime());
            if (!hog->hello()) {
                break;
            }
            mHogs.push_back(std::move(hog));
        }
        return mHogs.size();
    }

    static constexpr const char* kLine = "no descriptors are left: refusing clients";
    size_t linesSaid() const {
        const std::string said = mServer.err();
        size_t count = 0;
        for (size_t at = said.find(kLine); at != std::string::npos; at = said.find(kLine, at + 1)) {
            ++count;
        }
        return count;
    }

    testing::HostSet mSet;
    Server mServer{{"default", "4", "64"}};
    const sp<IEverything> mHonest = mServer.service();
    std::vector<std::unique_ptr<RawClient>> mHogs;
};

TEST_F(ExhaustionTest, RefusesAndRecovers) {
    std::optional<DescriptorLimit> none(std::in_place, mServer.pid());
    // Every time: a refused client does not wait.
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(mServer.service(), nullptr);
    }
    EXPECT_TRUE(mHonest->ping().isOk());
    const auto before = timeOf(mServer.pid());
    (void)poll(nullptr, 0, 300);
    EXPECT_LT(timeOf(mServer.pid()) - before, std::chrono::milliseconds(100));
    EXPECT_TRUE(mServer.says(std::string(kLine) + "; process " + std::to_string(getpid()) +
                             " has the most: "));
    // One line covers all refusals.
    EXPECT_EQ(linesSaid(), 1U);
    none.reset();
    const size_t used = descriptorsOf(mServer.pid());
    ASSERT_NE(mServer.service(), nullptr);
    EXPECT_TRUE(mServer.service()->ping().isOk());
    // A connection that is about to end would leave a descriptor below the limit.
    ASSERT_TRUE(eventually([&] { return descriptorsOf(mServer.pid()) == used; }));
    none.emplace(mServer.pid());
    // The next exhaustion is logged again.
    EXPECT_EQ(mServer.service(), nullptr);
    EXPECT_TRUE(eventually([&] { return linesSaid() > 1; }));
}

TEST_F(ExhaustionTest, AServerWithoutDescriptorsIsStillRegistered) {
    const DescriptorLimit none(mServer.pid());
    EXPECT_EQ(mServer.service(), nullptr);
    EXPECT_THAT(::android::hardware::getAllHalInstanceNames(IEverything::descriptor),
                ElementsAre("default"));
}

TEST_F(ExhaustionTest, CallsWithDescriptorsFailAndNothingElse) {
    const hidl_handle handle = handleOf(files());
    {
        const DescriptorLimit none(mServer.pid());
        const auto refused = mHonest->fd(handle, [](const hidl_handle&) {});
        EXPECT_EQ(refused.description(), "Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '");
        const auto listened = mHonest->listen(new Listener, "");
        EXPECT_FALSE(listened.isOk());
        EXPECT_FALSE(listened.isDeadObject());
        EXPECT_TRUE(mHonest->ping().isOk());
    }
    EXPECT_TRUE(mHonest->fd(handle, [](const auto&) {}).isOk());
    EXPECT_TRUE(mHonest->listen(new Listener, "").isOk());
}

// A process that opens connections without end gets half of what the server can have.
TEST_F(ExhaustionTest, OneClientLeavesConnectionsForOthers) {
    const size_t most = hog();
    EXPECT_GT(most, 64U / 8);
    EXPECT_LE(most, 64U * 3 / 8);
    EXPECT_EQ(mServer.service(), nullptr) << "of the same process";
    EXPECT_TRUE(mServer.says("process " + std::to_string(getpid()) + " has "));
    EXPECT_EQ(linesSaid(), 0U);
    EXPECT_LE(descriptorsOf(mServer.pid()), 64U - most);
    // What it has goes on answering, and takes descriptors.
    EXPECT_TRUE(mHonest->fd(handleOf(files()), [](const hidl_handle&) {}).isOk());
    mHogs.clear();
    ASSERT_TRUE(eventually([&] { return mServer.service() != nullptr; }));
    EXPECT_TRUE(eventually([&] { return hog() == most; }));
}

}  // namespace
}  // namespace mlk::test
