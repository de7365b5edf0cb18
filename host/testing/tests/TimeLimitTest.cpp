#include "host/testing/TimeLimit.h"

#include <gtest/gtest-spi.h>
#include <signal.h>

#include <atomic>
#include <chrono>

#include "host/testing/Process.h"

namespace mlk::testing {
namespace {

TEST(TimeLimit, DoesNothingToATestThatIsDoneInTime) {
    std::atomic<bool> ended{false};
    {
        const TimeLimit limit([&] { ended = true; });
        EXPECT_FALSE(limit.isOver());
    }
    EXPECT_FALSE(ended);
}

TEST(TimeLimit, EndsTheWaitingAndFailsTheTest) {
    static int status = 0;
    EXPECT_NONFATAL_FAILURE(
            {
                Process process({"sleep", "1000"});
                const TimeLimit limit([&] { ::kill(process.pid(), SIGKILL); },
                                      std::chrono::milliseconds(50));
                status = process.wait();
            },
            "not done within 50 ms");
    EXPECT_EQ(status, 128 + SIGKILL);
}

}  // namespace
}  // namespace mlk::testing
