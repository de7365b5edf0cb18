// The variables of the environment that set limits.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <cstdlib>

#include "host/hidl/src/Limits.h"

namespace mlk::test {
namespace {

using ::android::hardware::transport::repliesAreLimitedAsOnADevice;
using ::android::hardware::transport::stallLimit;
using std::chrono::milliseconds;
using std::chrono::seconds;

// A process reads each variable once: every value is tried in a process of its own.
class LimitVariablesTest : public ::testing::Test {
  protected:
    LimitVariablesTest() { ::testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    static void expectStallLimit(const char* text, milliseconds limit) {
        EXPECT_EXIT(
                {
                    (void)setenv("MLK_STALL_LIMIT_MS", text, 1);
                    _exit(stallLimit() == limit ? 0 : 1);
                },
                ::testing::ExitedWithCode(0), "")
                << text;
    }
    static void expectLimitedReplies(const char* text, bool limited) {
        EXPECT_EXIT(
                {
                    (void)setenv("MLK_REPLY_LIMIT", text, 1);
                    _exit(repliesAreLimitedAsOnADevice() == limited ? 0 : 1);
                },
                ::testing::ExitedWithCode(0), "")
                << text;
    }
};

TEST_F(LimitVariablesTest, NumberOfMilliseconds) {
    expectStallLimit("1", milliseconds(1));
    expectStallLimit("250", milliseconds(250));
    expectStallLimit("2147483647", milliseconds(INT_MAX));
}

TEST_F(LimitVariablesTest, WhatIsNoLimitLeavesTheDefault) {
    for (const char* text :
         {"", "0", "-1", "x", "250ms", "250 ", "2147483648", "99999999999999999999"}) {
        expectStallLimit(text, seconds(30));
    }
}

TEST_F(LimitVariablesTest, OnlyTheWordDeviceLimitsReplies) {
    expectLimitedReplies("device", true);
    for (const char* text : {"", "devic", "devices", "Device", "host", "1"}) {
        expectLimitedReplies(text, false);
    }
}

}  // namespace
}  // namespace mlk::test
