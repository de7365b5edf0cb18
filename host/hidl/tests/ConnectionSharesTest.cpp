#include "host/hidl/src/ConnectionShares.h"

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/testing/LogCapture.h"

namespace mlk::test {
namespace {

using ::android::hardware::transport::ConnectionShares;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr size_t kLimit = 64;
constexpr size_t kMost = 48;  // a quarter stays free

class ConnectionSharesTest : public ::testing::Test {
  protected:
    // Takes as many places as the client gets.
    size_t fill(pid_t client, size_t limit = kLimit) {
        size_t count = 0;
        while (auto place = mShares.take(client, 0, limit)) {
            mPlaces[client].push_back(std::move(*place));
            ++count;
        }
        return count;
    }
    std::vector<std::string> errors() const { return mLog.texts(ANDROID_LOG_ERROR, "hidl"); }

    const testing::LogCapture mLog;
    ConnectionShares mShares;
    std::map<pid_t, std::vector<ConnectionShares::Place>> mPlaces;
};

TEST_F(ConnectionSharesTest, OneClientGetsHalf) {
    EXPECT_EQ(fill(1), kMost / 2);
    EXPECT_EQ(fill(1), 0U);
}

// However greedy they are: a client without a connection gets one.
TEST_F(ConnectionSharesTest, EachFurtherClientGetsHalfOfTheRest) {
    size_t left = kMost;
    for (pid_t client = 1; left > 0; ++client) {
        const size_t got = fill(client);
        EXPECT_EQ(got, (left + 1) / 2) << client;
        left -= got;
    }
    EXPECT_EQ(fill(100), 0U);
}

TEST_F(ConnectionSharesTest, GreedyClientsAtTheSameTimeGetEqualShares) {
    constexpr pid_t kClients = 5;
    for (bool any = true; any;) {
        any = false;
        for (pid_t client = 1; client <= kClients; ++client) {
            if (auto place = mShares.take(client, 0, kLimit)) {
                mPlaces[client].push_back(std::move(*place));
                any = true;
            }
        }
    }
    for (pid_t client = 1; client <= kClients; ++client) {
        EXPECT_EQ(mPlaces[client].size(), kMost / (kClients + 1)) << client;
    }
}

TEST_F(ConnectionSharesTest, PlacesAreGivenBack) {
    EXPECT_EQ(fill(1), kMost / 2);
    EXPECT_EQ(fill(2), kMost / 4);
    mPlaces[1].clear();
    EXPECT_EQ(fill(2), kMost / 4) << "half of all in the end";
    mPlaces.clear();
    EXPECT_EQ(fill(3), kMost / 2);
}

TEST_F(ConnectionSharesTest, DescriptorsOfOtherKindsCount) {
    EXPECT_TRUE(mShares.take(1, kMost - 1, kLimit));
    EXPECT_FALSE(mShares.take(1, kMost, kLimit));
    EXPECT_FALSE(mShares.take(1, 1'000'000, kLimit)) << "the limit is lower by now";
}

TEST_F(ConnectionSharesTest, LargeLimitsLeaveAFixedNumberFree) {
    EXPECT_EQ(fill(1, 2512), 1000U);
    EXPECT_EQ(fill(2, 0), 0U);
}

TEST_F(ConnectionSharesTest, RefusalsAreLoggedOnceForEachClient) {
    fill(1);
    fill(1);
    fill(2);
    EXPECT_THAT(
            errors(),
            ElementsAre("process 1 has 24 connections, and 24 are left for all others: it gets no "
                        "more",
                        "process 2 has 12 connections, and 12 are left for all others: it gets no "
                        "more"));
    mPlaces[1].pop_back();
    EXPECT_EQ(fill(1), 0U) << "it still has more than are free";
    EXPECT_EQ(errors().size(), 3U);
}

TEST_F(ConnectionSharesTest, ClientsForWhichNothingIsLeftAreToldWhoHasMost) {
    EXPECT_EQ(mShares.largest(), "no client has a connection");
    for (pid_t client = 1; fill(client) > 0;) {
        ++client;
    }
    const size_t lines = errors().size();
    EXPECT_EQ(fill(99), 0U);
    EXPECT_EQ(errors().back(),
              "no connection is left for process 7; process 1 has the most: 24 of 48");
    EXPECT_EQ(errors().size(), lines);
    mPlaces[2].clear();
    fill(2);
    for (pid_t client = 10; fill(client) > 0;) {
        ++client;
    }
    EXPECT_GT(errors().size(), lines);
}

TEST_F(ConnectionSharesTest, ManyThreadsTakeAndGiveBack) {
    std::vector<std::thread> threads;
    for (pid_t client = 1; client <= 4; ++client) {
        threads.emplace_back([this, client] {
            for (int i = 0; i < 1000; ++i) {
                EXPECT_TRUE(mShares.take(client, 0, kLimit));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(mShares.largest(), "no client has a connection");
    EXPECT_THAT(errors(), IsEmpty());
}

}  // namespace
}  // namespace mlk::test
