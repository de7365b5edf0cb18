// The bounds on what connections keep while they wait for their clients.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <log/log.h>
#include <poll.h>
#include <sys/resource.h>

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "host/hidl/src/Socket.h"
#include "host/hidl/src/Stalls.h"
#include "host/testing/LogCapture.h"

namespace mlk::test {
namespace {

using namespace ::android::hardware::transport;
using ::android::OK;
using std::chrono::milliseconds;
using Kind = Stall::Kind;

class StallsTest : public ::testing::Test {
  protected:
    static constexpr uint64_t kMessages = 1000;
    static constexpr uint64_t kReplies = 10'000;
    static constexpr size_t kDescriptors = 10;
    // Long enough for what a test does within it on a busy machine.
    static constexpr milliseconds kTime{1000};

    struct Connection {
        Connection(Kind kind, Stalls& stalls) {
            EXPECT_EQ(connectedPair(&here, &there), OK);
            stall.emplace(kind, here.get(), stalls);
        }
        bool closed() const { return isHungUp(there.get()); }

        unique_fd here;
        unique_fd there;
        std::optional<Stall> stall;
    };
    Connection& connect(Kind kind = Kind::REPLY) {
        return mConnections.emplace_back(kind, mStalls);
    }
    // Makes a new connection that keeps these amounts.
    Connection& keeping(uint64_t bytes, size_t descriptors = 0, Kind kind = Kind::REPLY) {
        Connection& made = connect(kind);
        EXPECT_TRUE(made.stall->keep(bytes, descriptors));
        return made;
    }
    // Waits until everything kept now is older than the limit for fresh stalls, and overdue.
    static void pass() { (void)poll(nullptr, 0, 1100); }

    std::vector<milliseconds> mWakings;
    Stalls mStalls{{kMessages, kReplies, kDescriptors, kTime},
                   [this](milliseconds delay) { mWakings.push_back(delay); }};
    std::deque<Connection> mConnections;
};

TEST_F(StallsTest, BoundOfAllTogether) {
    for (int i = 0; i < 4; ++i) {
        (void)keeping(2500);
    }
    EXPECT_FALSE(connect().stall->keep(2500, 0));
    EXPECT_FALSE(mConnections[0].closed()) << "it makes progress";
    // When one connection ends, its share is free again.
    mConnections[1].stall->end();
    EXPECT_TRUE(connect().stall->keep(2500, 0));
    EXPECT_FALSE(connect().stall->keep(2500, 0));
}

TEST_F(StallsTest, KindsHaveBoundsOfTheirOwn) {
    (void)keeping(kReplies);
    (void)keeping(kMessages, 0, Kind::MESSAGE);
    EXPECT_FALSE(connect(Kind::MESSAGE).stall->keep(kMessages / 2, 0));
}

TEST_F(StallsTest, OneThatKeepsMuchMakesRoomForThoseThatKeepLittle) {
    Connection& hoarder = keeping(kReplies);
    for (int i = 0; i < 4; ++i) {
        (void)keeping(2000);
    }
    EXPECT_TRUE(hoarder.closed());
    for (size_t i = 1; i < mConnections.size(); ++i) {
        EXPECT_FALSE(mConnections[i].closed()) << i;
    }
    // Its share was subtracted once, and it cannot come back.
    EXPECT_FALSE(hoarder.stall->keep(1, 0));
}

TEST_F(StallsTest, TheLargestGoesFirst) {
    Connection& large = keeping(4000);
    Connection& larger = keeping(5000);
    EXPECT_TRUE(connect().stall->keep(1500, 0));
    EXPECT_TRUE(larger.closed());
    EXPECT_FALSE(large.closed());
}

TEST_F(StallsTest, OldOnesOfOneSizeMakeRoomTheOldestFirst) {
    Connection& first = keeping(5000);
    Connection& second = keeping(5000);
    pass();
    second.stall->progress();
    EXPECT_TRUE(connect().stall->keep(5000, 0));
    EXPECT_TRUE(first.closed());
    EXPECT_FALSE(second.closed()) << "it has gone on";
    EXPECT_FALSE(connect().stall->keep(5000, 0));
}

TEST_F(StallsTest, OfOldOnesOfOneSizeTheOldestGoes) {
    Connection& first = keeping(3000);
    Connection& second = keeping(3000);
    Connection& third = keeping(3000);
    pass();
    EXPECT_TRUE(connect().stall->keep(3000, 0));
    EXPECT_TRUE(first.closed());
    EXPECT_FALSE(second.closed());
    EXPECT_FALSE(third.closed());
}

TEST_F(StallsTest, SmallerOnesStay) {
    for (int i = 0; i < 10; ++i) {
        (void)keeping(1000);
    }
    pass();
    EXPECT_FALSE(connect().stall->keep(1001, 0));
    for (const Connection& connection : mConnections) {
        EXPECT_FALSE(connection.closed());
    }
}

TEST_F(StallsTest, DescriptorsOfBothKindsHaveABound) {
    Connection& hoarder = keeping(1, 6, Kind::MESSAGE);
    (void)keeping(1, 4, Kind::REPLY);
    EXPECT_FALSE(connect(Kind::MESSAGE).stall->keep(1, 5));
    EXPECT_TRUE(connect(Kind::MESSAGE).stall->keep(1, 0))
            << "one without descriptors is not refused";
    EXPECT_FALSE(hoarder.closed());
    EXPECT_TRUE(connect(Kind::MESSAGE).stall->keep(1, 1));
    EXPECT_TRUE(hoarder.closed());
}

TEST_F(StallsTest, DescriptorsAreAQuarterOfThoseOfTheProcess) {
    Stalls many{{kMessages, kReplies, 1'000'000, kTime}};
    Connection connection(Kind::MESSAGE, many);
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
    const rlimit low{400, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &low), 0);
    EXPECT_FALSE(connection.stall->keep(1, 101));
    EXPECT_TRUE(connection.stall->keep(1, 100));
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &former), 0);
}

TEST_F(StallsTest, WhatIsKeptInsteadCountsAlone) {
    Connection& one = keeping(6000);
    EXPECT_TRUE(one.stall->keep(8000, 0));
    EXPECT_TRUE(one.stall->keep(4000, 0));
    EXPECT_TRUE(connect().stall->keep(6000, 0));
    EXPECT_FALSE(one.closed());
}

TEST_F(StallsTest, TimeIsOver) {
    Connection& stalled = keeping(1);
    EXPECT_THAT(mWakings, ::testing::ElementsAre(kTime));
    Connection& later = keeping(1);
    pass();
    later.stall->progress();
    mStalls.endOverdue();
    EXPECT_TRUE(stalled.closed());
    EXPECT_FALSE(later.closed());
    ASSERT_EQ(mWakings.size(), 2U) << "for the one that is left";
    EXPECT_LE(mWakings[1], kTime);
    pass();
    mStalls.endOverdue();
    EXPECT_TRUE(later.closed());
    EXPECT_EQ(mWakings.size(), 2U);
}

TEST_F(StallsTest, WhatWasClosedIsClosedOnce) {
    Connection& stalled = keeping(6000);
    pass();
    mStalls.endOverdue();
    EXPECT_TRUE(stalled.closed());
    mStalls.endOverdue();
    (void)keeping(kReplies);  // all the space there is, and not less
    EXPECT_FALSE(connect().stall->keep(kReplies, 0));
}

TEST_F(StallsTest, KeepingMoreDoesNotBuyTime) {
    Connection& one = keeping(1);
    pass();
    EXPECT_TRUE(one.stall->keep(2, 0));
    mStalls.endOverdue();
    EXPECT_TRUE(one.closed());
}

TEST_F(StallsTest, FewLinesAreLogged) {
    const testing::LogCapture log;
    for (int i = 0; i < 10; ++i) {
        (void)keeping(1, 1, Kind::MESSAGE);
    }
    pass();
    mStalls.endOverdue();
    EXPECT_THAT(log.texts(ANDROID_LOG_WARN, "hidl"),
                ::testing::ElementsAre(
                        "closing the connection of a client that left its message unfinished, "
                        "1 bytes and 1 descriptors: its time is over; 0 more since the last such "
                        "line"));
}

TEST_F(StallsTest, TheNextLineTellsWhatHadNone) {
    const testing::LogCapture log;
    for (const int closed : {3, 1, 1}) {
        for (int i = 0; i < closed; ++i) {
            (void)keeping(1);
        }
        pass();
        mStalls.endOverdue();
    }
    const std::string line =
            "closing the connection of a client that left its reply unread, 1 bytes and 0 "
            "descriptors: its time is over; ";
    EXPECT_THAT(log.texts(ANDROID_LOG_WARN, "hidl"),
                ::testing::ElementsAre(line + "0 more since the last such line",
                                       line + "2 more since the last such line",
                                       line + "0 more since the last such line"));
}

}  // namespace
}  // namespace mlk::test
