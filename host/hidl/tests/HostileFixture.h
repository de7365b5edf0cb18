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
        // All threads have started; the connections that used them are closed again.
        EXPECT_TRUE(mHonest->ping().isOk());
        mDescriptors = descriptorsOf(mServer.pid());
        expectAllThreadsAnswer();
    }

    /** A new connection that has received the hello. */
    std::unique_ptr<RawClient> connect() const {
        auto client = std::make_unique<RawClient>(mSet.runtime());
        EXPECT_TRUE(client->hello());
        return client;
    }

    /** Checks that each thread of the pool takes a call, so none is stuck with another client. */
    void expectAllThreadsAnswer() const {
        std::vector<sp<IEverything>> proxies;
        for (size_t i = 0; i < kThreads; ++i) {
            proxies.push_back(mServer.service());
        }
        HeldCalls held(proxies);
        EXPECT_TRUE(held.arrived(kThreads));
        EXPECT_EQ(held.release(), kThreads);
    }

    /**
     * Call it when the attacker is gone. Checks that the honest client is answered, that the pool
     * has exactly the threads it should have, and that no descriptor leaked.
     */
    void expectUnharmed() const {
        const auto length = mHonest->length("four");
        ASSERT_TRUE(length.isOk()) << length.description();
        EXPECT_EQ(static_cast<uint32_t>(length), 4U);
        expectAllThreadsAnswer();
        EXPECT_EQ(threadsOf(mServer.pid()), kThreads + 1);
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
