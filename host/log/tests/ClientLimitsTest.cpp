#include "host/log/ClientLimits.h"

#include <gtest/gtest.h>

namespace mlk::host {
namespace {

using std::chrono::seconds;

const ClientLimits::Time kStart = ClientLimits::Time() + seconds(1000);
constexpr size_t kAll = ClientLimits::kBurst;

TEST(ClientLimits, AClientMayHaveABurstWritten) {
    ClientLimits limits;
    EXPECT_TRUE(limits.take(1, kAll - 10, 1, kStart));
    EXPECT_TRUE(limits.take(1, 10, 1, kStart));
    EXPECT_FALSE(limits.leftOut(kStart).has_value());
    EXPECT_FALSE(limits.take(1, 1, 1, kStart));
}

TEST(ClientLimits, OneThatIsOverItsLimitCostsNobodyElse) {
    ClientLimits limits;
    EXPECT_FALSE(limits.take(1, kAll + 1, 1, kStart));
    EXPECT_TRUE(limits.take(2, kAll, 1, kStart));
}

TEST(ClientLimits, WhatWasLeftOutIsToldOnceItIsHeardAgain) {
    ClientLimits limits;
    EXPECT_TRUE(limits.take(1, kAll, 1, kStart));
    EXPECT_FALSE(limits.take(1, 100, 3, kStart));
    EXPECT_FALSE(limits.take(1, 100, 0, kStart));
    // The account would cover this line, but the client is not heard yet.
    const auto soon = kStart + std::chrono::milliseconds(900);
    EXPECT_FALSE(limits.take(1, 1, 1, soon));
    EXPECT_FALSE(limits.leftOut(soon).has_value());
    const auto told = limits.leftOut(kStart + seconds(1));
    ASSERT_TRUE(told.has_value());
    EXPECT_EQ(told->client, 1);
    EXPECT_EQ(told->lines, 5U);
    EXPECT_FALSE(limits.leftOut(kStart + seconds(1)).has_value());
    EXPECT_TRUE(limits.take(1, ClientLimits::kEachSecond, 1, kStart + seconds(1)));
    EXPECT_FALSE(limits.take(1, 1, 1, kStart + seconds(1)));
}

TEST(ClientLimits, AnAccountIsFilledOverTime) {
    ClientLimits limits;
    EXPECT_TRUE(limits.take(1, kAll, 1, kStart));
    // The account fills a millisecond at a time, up to its limit; parts of one are not lost.
    auto now = kStart;
    for (int i = 0; i < 10'000; ++i) {
        now += std::chrono::microseconds(700);
        (void)limits.take(1, 0, 1, now);
    }
    EXPECT_TRUE(limits.take(1, 7 * ClientLimits::kEachSecond, 1, now));
    EXPECT_FALSE(limits.take(1, 1, 1, now));
    now += seconds(1'000'000);
    EXPECT_TRUE(limits.leftOut(now).has_value());
    EXPECT_TRUE(limits.take(1, kAll, 1, now));
    EXPECT_FALSE(limits.take(1, 1, 1, now));
}

TEST(ClientLimits, AnAccountThatIsNotEmptyHoldsNoMoreThanABurst) {
    ClientLimits limits;
    EXPECT_TRUE(limits.take(1, kAll / 2, 1, kStart));
    const auto later = kStart + seconds(1'000'000);
    EXPECT_TRUE(limits.take(1, kAll, 1, later));
    EXPECT_FALSE(limits.take(1, 1, 1, later));
}

TEST(ClientLimits, ThereAreNoMoreAccountsThanTheMost) {
    ClientLimits limits;
    EXPECT_TRUE(limits.take(0, kAll / 2, 1, kStart));
    for (int client = 1; client < static_cast<int>(ClientLimits::kMost); ++client) {
        EXPECT_TRUE(limits.take(client, kAll, 1, kStart));
    }
    EXPECT_FALSE(limits.take(0, kAll, 1, kStart)) << "all have an account";
    EXPECT_TRUE(limits.take(ClientLimits::kMost, kAll, 1, kStart));
    EXPECT_TRUE(limits.take(0, kAll, 1, kStart)) << "its account went, and it has a new one";
}

TEST(ClientLimits, OneClientTooManyTakesTheRichestPlace) {
    ClientLimits limits;
    EXPECT_FALSE(limits.take(1, kAll + 1, 1, kStart));
    EXPECT_TRUE(limits.take(1000, kAll, 1, kStart));
    for (int client = 0; client < 1000; ++client) {
        EXPECT_EQ(limits.take(client, 100, 1, kStart), client != 1) << client;
    }
    EXPECT_FALSE(limits.take(1000, 1, 1, kStart)) << "its account is the poorest, and was kept";
    // When all accounts are empty, one is dropped together with its count of lines.
    for (int client = 0; client < 200; ++client) {
        EXPECT_FALSE(limits.take(client, kAll + 1, 1, kStart));
    }
    size_t told = 0;
    while (limits.leftOut(kStart + seconds(1000)).has_value()) {
        ++told;
    }
    EXPECT_LE(told, ClientLimits::kMost);
    EXPECT_GT(told, 0U);
}

}  // namespace
}  // namespace mlk::host
