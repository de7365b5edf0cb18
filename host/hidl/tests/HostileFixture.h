// A server under attack, and the question whether it is as it was.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "RawClient.h"
#include "Server.h"
#include "host/testing/HostSet.h"

namespace mlk::test {

class HostileTest : public ::testing::Test {
  protected:
    static constexpr size_t kThreads = 3;

    HostileTest() {
        // All threads are there from now on; the connections that it took are gone again.
        EXPECT_TRUE(mHonest->ping().isOk());
        mDescriptors = descriptorsOf(mServer.pid());
        expectAllThreadsAnswer();
    }

    // A new connection that has been greeted.
    std::unique_ptr<RawClient> connect() const {
        auto client = std::make_unique<RawClient>(mSet.runtime());
        EXPECT_TRUE(client->hello());
        return client;
    }

    // Whether each of the pool's threads takes a call: none is stuck with somebody else.
    void expectAllThreadsAnswer() const {
        std::vector<sp<IEverything>> proxies;
        for (size_t i = 0; i < kThreads; ++i) proxies.push_back(mServer.service());
        HeldCalls held(proxies);
        EXPECT_TRUE(held.arrived(kThreads));
        EXPECT_EQ(kThreads, held.release());
    }

    // Once the attacker has gone: the honest client is answered, by all threads there should be and
    // no more, and no descriptor has been left behind.
    void expectUnharmed() const {
        const auto length = mHonest->length("four");
        ASSERT_TRUE(length.isOk()) << length.description();
        EXPECT_EQ(4U, static_cast<uint32_t>(length));
        expectAllThreadsAnswer();
        EXPECT_EQ(kThreads + 1, threadsOf(mServer.pid()));
        EXPECT_TRUE(eventually([&] { return descriptorsOf(mServer.pid()) == mDescriptors; }))
                << mDescriptors << " descriptors before, " << descriptorsOf(mServer.pid())
                << " now";
    }

    testing::HostSet mSet;
    Server mServer{{"default", std::to_string(kThreads), ""}};
    const sp<IEverything> mHonest = mServer.service();
    size_t mDescriptors = 0;
};

}  // namespace mlk::test
