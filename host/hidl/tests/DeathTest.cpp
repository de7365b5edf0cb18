// The death of a server, as its clients notice it.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "Native.h"
#include "Server.h"
#include "host/testing/HostSet.h"
#include "host/testing/TimeLimit.h"

namespace mlk::test {
namespace {

using ::android::wp;
using ::android::hardware::hidl_death_recipient;
using ::android::hidl::base::V1_0::IBase;

class Recipient : public hidl_death_recipient {
  public:
    void serviceDied(uint64_t cookie, const wp<IBase>& who) override {
        std::lock_guard<std::mutex> lock(mMutex);
        mCookies.push_back(cookie);
        mWho = who.promote();
        mHeard.notify_all();
    }
    // Waits until `count` deaths were reported.
    bool heard(size_t count) {
        std::unique_lock<std::mutex> lock(mMutex);
        return mHeard.wait_for(lock, std::chrono::seconds(30),
                               [&] { return mCookies.size() >= count; });
    }
    std::vector<uint64_t> cookies() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCookies;
    }
    sp<IBase> who() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mWho;
    }

  private:
    std::mutex mMutex;
    std::condition_variable mHeard;
    std::vector<uint64_t> mCookies;  // under mMutex
    sp<IBase> mWho;                  // under mMutex
};

class DeathTest : public ::testing::Test {
  protected:
    testing::HostSet mSet;
    std::optional<Server> mServer{std::in_place};
    sp<IEverything> mService = mServer->service();
    const sp<Recipient> mRecipient = new Recipient;
};

TEST_F(DeathTest, RecipientHearsWithItsCookie) {
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(mRecipient, 0xfeedULL << 32U)));
    mServer->kill();
    ASSERT_TRUE(mRecipient->heard(1));
    EXPECT_EQ(mRecipient->cookies(), std::vector<uint64_t>{0xfeedULL << 32U});
    EXPECT_EQ(mRecipient->who(), sp<IBase>(mService));
}

TEST_F(DeathTest, ProgramsInheritNothingOfALink) {
    ASSERT_TRUE(mService->ping().isOk());
    const std::vector<int> before = inheritable();
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(mRecipient, 1)));
    EXPECT_EQ(inheritable(), before);
}

TEST_F(DeathTest, EveryLinkIsHeardOfOnce) {
    const sp<Recipient> other = new Recipient;
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(mRecipient, 1)));
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(mRecipient, 2)));
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(other, 3)));
    mServer->kill();
    ASSERT_TRUE(mRecipient->heard(2));
    ASSERT_TRUE(other->heard(1));
    EXPECT_EQ(mRecipient->cookies(), (std::vector<uint64_t>{1, 2}));
    EXPECT_EQ(other->cookies(), std::vector<uint64_t>{3});
}

TEST_F(DeathTest, UnlinkedRecipientHearsNothing) {
    const sp<Recipient> other = new Recipient;
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(mRecipient, 1)));
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(other, 2)));
    EXPECT_TRUE(static_cast<bool>(mService->unlinkToDeath(mRecipient)));
    EXPECT_FALSE(static_cast<bool>(mService->unlinkToDeath(mRecipient)));
    mServer->kill();
    // Recipients are called in order: when the second has been called, the first would have been,
    // too.
    ASSERT_TRUE(other->heard(1));
    EXPECT_TRUE(mRecipient->cookies().empty());
}

TEST_F(DeathTest, UnlinkWithoutLinkIsRefused) {
    EXPECT_FALSE(static_cast<bool>(mService->unlinkToDeath(mRecipient)));
}

TEST_F(DeathTest, RecipientThatIsGoneIsNotMissed) {
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(new Recipient, 1)));
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(mRecipient, 2)));
    mServer->kill();
    EXPECT_TRUE(mRecipient->heard(1));
}

TEST_F(DeathTest, ProxyMayGoBeforeItsServer) {
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(mRecipient, 1)));
    mService = nullptr;
    const sp<IEverything> other = mServer->service();
    ASSERT_TRUE(static_cast<bool>(other->linkToDeath(mRecipient, 2)));
    mServer->kill();
    ASSERT_TRUE(mRecipient->heard(1));
    EXPECT_EQ(mRecipient->cookies(), std::vector<uint64_t>{2});
}

TEST_F(DeathTest, LinkToTheDeadIsRefused) {
    mServer->kill();
    EXPECT_FALSE(static_cast<bool>(mService->linkToDeath(mRecipient, 1)));
    EXPECT_TRUE(mService->ping().isDeadObject());
    EXPECT_FALSE(static_cast<bool>(mService->linkToDeath(mRecipient, 2)));
    EXPECT_TRUE(mRecipient->cookies().empty());
}

TEST_F(DeathTest, CallsToTheDeadSaySo) {
    mServer->kill();
    const auto called = mService->length("");
    EXPECT_FALSE(called.isOk());
    EXPECT_TRUE(called.isDeadObject());
    EXPECT_EQ(called.description(), "Status(EX_TRANSACTION_FAILED): 'DEAD_OBJECT: '");
    EXPECT_TRUE(mService->ping().isDeadObject());
    EXPECT_TRUE(mService->poke(1).isDeadObject());
}

TEST_F(DeathTest, CallsUnderWaySaySo) {
    HeldCalls held({mService, mService, mService});
    ASSERT_TRUE(held.arrived(3));
    mServer->kill();
    EXPECT_EQ(held.release(), 0U);
    EXPECT_TRUE(mService->ping().isDeadObject());
}

// A proxy has 32 connections; two of these callers wait for one.
TEST_F(DeathTest, CallersThatWaitForAConnectionAreToldToo) {
    const testing::TimeLimit limit([] { abort(); });  // nothing else wakes them
    HeldCalls held(std::vector<sp<IEverything>>(34, mService));
    ASSERT_TRUE(held.arrived(4));
    EXPECT_FALSE(held.moreArrive());
    mServer->kill();
    EXPECT_EQ(held.release(), 0U);
}

TEST_F(DeathTest, NameIsGoneAndComesBackWithANewServer) {
    mServer->kill();
    EXPECT_EQ(IEverything::tryGetService(), nullptr);
    EXPECT_EQ(IEverything::getService(), nullptr);
    mServer.emplace();
    const sp<IEverything> again = IEverything::getService();
    ASSERT_NE(again, nullptr);
    EXPECT_TRUE(again->ping().isOk());
    EXPECT_TRUE(mService->ping().isDeadObject());
}

TEST_F(DeathTest, OldProxyStaysDeadThoughItNeverCalledMeanwhile) {
    mServer->kill();
    mServer.emplace();
    EXPECT_TRUE(mService->ping().isDeadObject());
    EXPECT_TRUE(mService->ping().isDeadObject());
}

TEST_F(DeathTest, DeathOfAServerWhileManyLinkAndUnlink) {
    std::vector<std::thread> threads;
    threads.reserve(4);
    std::atomic<bool> stop{false};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            while (!stop) {
                const sp<IEverything> proxy = IEverything::tryGetService();
                if (proxy == nullptr) {
                    return;
                }
                const sp<Recipient> recipient = new Recipient;
                if (!proxy->linkToDeath(recipient, 1).withDefault(false)) {
                    return;
                }
                if (proxy->ping().isOk()) {
                    (void)proxy->unlinkToDeath(recipient).isOk();
                }
            }
        });
    }
    ASSERT_TRUE(static_cast<bool>(mService->linkToDeath(mRecipient, 7)));
    for (int i = 0; i < 50; ++i) {
        (void)mService->ping().isOk();
    }
    mServer->kill();
    EXPECT_TRUE(mRecipient->heard(1));
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace mlk::test
