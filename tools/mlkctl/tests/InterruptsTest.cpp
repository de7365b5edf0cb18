#include "tools/mlkctl/Interrupts.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>

namespace mlk::ctl {

namespace {

using std::chrono::seconds;

constexpr seconds kLong{100};  // a pause of which the end is no matter of time

int sHeard = 0;

void hear(int /* signal */) {
    ++sHeard;
}

bool isBlocked(int signal) {
    sigset_t mask;
    EXPECT_EQ(pthread_sigmask(SIG_BLOCK, nullptr, &mask), 0);
    return sigismember(&mask, signal) == 1;
}

// Handlers of its own for the signals, of which it counts the calls.
class InterruptsTest : public ::testing::TestWithParam<int> {
  protected:
    InterruptsTest() {
        struct sigaction action {};
        action.sa_handler = hear;
        EXPECT_EQ(sigaction(GetParam(), &action, &mFormer), 0);
        sHeard = 0;
    }
    ~InterruptsTest() override { (void)sigaction(GetParam(), &mFormer, nullptr); }

  private:
    struct sigaction mFormer {};
};

TEST_P(InterruptsTest, ASignalEndsAPause) {
    const Interrupts interrupts;
    EXPECT_EQ(interrupts.wait(seconds(0), -1), Interrupts::Pause::OVER);
    EXPECT_EQ(raise(GetParam()), 0);
    EXPECT_EQ(interrupts.wait(kLong, -1), Interrupts::Pause::INTERRUPTED);
    EXPECT_EQ(sHeard, 0);
}

TEST_P(InterruptsTest, AfterwardsTheSignalDoesWhatItDidBefore) {
    {
        const Interrupts interrupts;
        EXPECT_TRUE(isBlocked(GetParam()));
    }
    EXPECT_FALSE(isBlocked(GetParam()));
    EXPECT_EQ(raise(GetParam()), 0);
    EXPECT_EQ(sHeard, 1);
    const Interrupts interrupts;
    EXPECT_EQ(interrupts.wait(seconds(0), -1), Interrupts::Pause::OVER)
            << "the signal belongs to the time before";
}

INSTANTIATE_TEST_SUITE_P(Each, InterruptsTest, ::testing::Values(SIGINT, SIGTERM),
                         [](const auto& param) {
                             return param.param == SIGINT ? "Interrupt" : "Termination";
                         });

TEST(InterruptsPauseTest, AReaderThatHasLeftEndsIt) {
    const Interrupts interrupts;
    int pipes[2];
    ASSERT_EQ(pipe2(pipes, O_CLOEXEC), 0);
    EXPECT_EQ(interrupts.wait(seconds(0), pipes[1]), Interrupts::Pause::OVER);
    close(pipes[0]);
    EXPECT_EQ(interrupts.wait(kLong, pipes[1]), Interrupts::Pause::NO_READER);
    close(pipes[1]);
    int sockets[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets), 0);
    close(sockets[0]);
    EXPECT_EQ(interrupts.wait(kLong, sockets[1]), Interrupts::Pause::NO_READER);
    close(sockets[1]);
}

}  // namespace

}  // namespace mlk::ctl
