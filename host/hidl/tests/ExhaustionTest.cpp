// A server that runs out of descriptors refuses, survives, and recovers.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "RawClient.h"
#include "Server.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

class ExhaustionTest : public ::testing::Test {
  protected:
    // Runs everything once before the exhaustion: the sanitizer of undefined behaviour reads type
    // information through a pipe, which needs descriptors.
    void SetUp() override {
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
    }
    static std::vector<unique_fd> files() {
        std::vector<unique_fd> two;
        two.push_back(fileWith("one"));
        two.push_back(fileWith("two"));
        return two;
    }

    // Connects until the server has no descriptor left; returns the number of connections.
    size_t exhaust() {
        while (mHogs.size() < 1000) {
            auto hog = std::make_unique<RawClient>(mSet.runtime());
            if (!hog->hello()) {
                return mHogs.size();
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
    const size_t most = exhaust();
    EXPECT_LT(most, 64U);
    // Every time: a refused client does not wait.
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(mServer.service(), nullptr);
    }
    EXPECT_TRUE(mHonest->ping().isOk());
    const auto before = timeOf(mServer.pid());
    (void)poll(nullptr, 0, 300);
    EXPECT_LT(timeOf(mServer.pid()) - before, std::chrono::milliseconds(100));
    EXPECT_TRUE(mServer.says(kLine));
    // One line covers all refusals.
    EXPECT_EQ(linesSaid(), 1U);
    mHogs.clear();
    ASSERT_TRUE(eventually([&] { return mServer.service() != nullptr; }));
    EXPECT_TRUE(mServer.service()->ping().isOk());
    const size_t lines = linesSaid();
    EXPECT_TRUE(eventually([&] { return exhaust() == most; }));
    // The next exhaustion is logged again.
    EXPECT_EQ(mServer.service(), nullptr);
    EXPECT_TRUE(eventually([&] { return linesSaid() > lines; }));
}

TEST_F(ExhaustionTest, CallsWithDescriptorsFailAndNothingElse) {
    (void)exhaust();
    const hidl_handle handle = handleOf(files());
    // At least the last service has no descriptor left: its calls fail, but the object lives.
    const auto refused = mHonest->fd(handle, [](const hidl_handle&) {});
    EXPECT_EQ(refused.description(), "Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '");
    const auto listened = mHonest->listen(new Listener, "");
    EXPECT_FALSE(listened.isOk());
    EXPECT_FALSE(listened.isDeadObject());
    EXPECT_TRUE(mHonest->ping().isOk());
    mHogs.clear();
    EXPECT_TRUE(eventually([&] { return mHonest->fd(handle, [](const auto&) {}).isOk(); }));
    EXPECT_TRUE(mHonest->listen(new Listener, "").isOk());
}

}  // namespace
}  // namespace mlk::test
