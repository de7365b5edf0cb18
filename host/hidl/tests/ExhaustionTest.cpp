// A server that runs out of descriptors refuses, survives, and recovers.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <chrono>
#include <memory>
#include <vector>

#include "RawClient.h"
#include "Server.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

class ExhaustionTest : public ::testing::Test {
  protected:
    // Connects until the server has no descriptor left; how many connections that took.
    size_t exhaust() {
        while (mHogs.size() < 1000) {
            auto hog = std::make_unique<RawClient>(mSet.runtime());
            if (!hog->hello()) return mHogs.size();
            mHogs.push_back(std::move(hog));
        }
        return mHogs.size();
    }

    testing::HostSet mSet;
    Server mServer{{"default", "4", "64"}};
    const sp<IEverything> mHonest = mServer.service();
    std::vector<std::unique_ptr<RawClient>> mHogs;
};

TEST_F(ExhaustionTest, RefusesAndRecovers) {
    const size_t most = exhaust();
    EXPECT_LT(most, 64U);
    // Again and again: a client that is refused is not left waiting.
    for (int i = 0; i < 10; ++i) EXPECT_EQ(nullptr, mServer.service());
    EXPECT_TRUE(mHonest->ping().isOk());
    const auto before = timeOf(mServer.pid());
    (void)poll(nullptr, 0, 300);
    EXPECT_LT(timeOf(mServer.pid()) - before, std::chrono::milliseconds(100));
    EXPECT_THAT(mServer.err(), ::testing::HasSubstr("no descriptors are left: refusing clients"));
    mHogs.clear();
    ASSERT_TRUE(eventually([&] { return mServer.service() != nullptr; }));
    EXPECT_TRUE(mServer.service()->ping().isOk());
    EXPECT_TRUE(eventually([&] { return exhaust() == most; }));
}

TEST_F(ExhaustionTest, CallsWithDescriptorsFailAndNothingElse) {
    (void)exhaust();
    std::vector<unique_fd> files;
    files.push_back(fileWith("one"));
    files.push_back(fileWith("two"));
    const hidl_handle handle = handleOf(std::move(files));
    // Nothing is left for the last of them at least: the calls fail, the object lives.
    const auto refused = mHonest->fd(handle, [](const hidl_handle&) {});
    EXPECT_EQ("EX_TRANSACTION_FAILED: BAD_VALUE", refused.description());
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
