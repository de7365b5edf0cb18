#include "tools/common/Output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <system_error>
#include <thread>

#include "host/testing/Eventually.h"
#include "host/testing/ThreadState.h"

namespace mlk {

namespace {

constexpr size_t kMuch = 4UL * 1024 * 1024;  // more than any pipe holds

class OutputTest : public ::testing::Test {
  protected:
    OutputTest() { EXPECT_EQ(pipe2(mEnds, O_CLOEXEC), 0); }
    ~OutputTest() override {
        closeWriter();
        close(mEnds[0]);
    }

    int writer() const { return mEnds[1]; }
    void closeWriter() {
        if (mEnds[1] >= 0) {
            close(mEnds[1]);
        }
        mEnds[1] = -1;
    }
    void closeReader() {
        close(mEnds[0]);
        mEnds[0] = open("/dev/null", O_RDONLY | O_CLOEXEC);
    }

    // What arrives until the writer closes.
    std::string arrived() const {
        std::string all;
        std::string piece(65536, '\0');
        ssize_t got = 0;
        while ((got = read(mEnds[0], piece.data(), piece.size())) > 0) {
            all.append(piece, 0, static_cast<size_t>(got));
        }
        return all;
    }

  private:
    int mEnds[2] = {-1, -1};
};

TEST_F(OutputTest, WritesWhatIsFlushedOnce) {
    Output output(writer());
    output.line("one");
    output.flush();
    output.write("two");
    output.flush();
    output.flush();
    closeWriter();
    EXPECT_EQ(arrived(), "one\ntwo");
}

TEST_F(OutputTest, WaitsAtAPipeThatDoesNot) {
    ASSERT_EQ(fcntl(writer(), F_SETFL, O_NONBLOCK), 0);
    std::string all;
    std::thread reader([&] { all = arrived(); });
    Output output(writer());
    output.write(std::string(kMuch, 'x'));
    output.flush();
    closeWriter();
    reader.join();
    EXPECT_EQ(all, std::string(kMuch, 'x'));
}

// A writer sleeps until there is space. One that tried over and over would run.
TEST_F(OutputTest, SleepsAtAFullPipe) {
    ASSERT_EQ(fcntl(writer(), F_SETFL, O_NONBLOCK), 0);
    std::atomic<pid_t> thread{0};
    std::thread writing([&] {
        thread = gettid();
        Output output(writer());
        output.write(std::string(kMuch, 'x'));
        output.flush();
        closeWriter();
    });
    EXPECT_TRUE(mlk::testing::eventually(
            [&] { return thread != 0 && mlk::testing::stateOf(thread) == 'S'; }));
    int asleep = 0;
    for (int i = 0; i < 100; ++i) {
        asleep += mlk::testing::stateOf(thread) == 'S' ? 1 : 0;
        (void)poll(nullptr, 0, 1);
    }
    EXPECT_GE(asleep, 90);
    EXPECT_EQ(arrived().size(), kMuch);
    writing.join();
}

std::atomic<int> sInterruptions{0};

TEST_F(OutputTest, GoesOnAfterASignal) {
    struct sigaction action {};
    struct sigaction former {};
    action.sa_handler = [](int) { ++sInterruptions; };  // without SA_RESTART
    ASSERT_EQ(sigaction(SIGUSR1, &action, &former), 0);
    std::atomic<bool> done{false};
    std::thread writing([&] {
        Output output(writer());
        output.write(std::string(kMuch, 'x'));
        EXPECT_NO_THROW(output.flush());
        done = true;
        closeWriter();
    });
    for (int i = 0; i < 50 && !done; ++i) {
        const int before = sInterruptions;
        while (sInterruptions == before && !done) {
            EXPECT_EQ(pthread_kill(writing.native_handle(), SIGUSR1), 0);
            (void)poll(nullptr, 0, 1);  // lets the writer return to waiting
        }
    }
    EXPECT_FALSE(done);
    EXPECT_EQ(arrived().size(), kMuch);
    writing.join();
    (void)sigaction(SIGUSR1, &former, nullptr);
}

TEST_F(OutputTest, ThrowsIfNobodyReads) {
    struct sigaction ignored {};
    struct sigaction former {};
    ignored.sa_handler = SIG_IGN;
    ASSERT_EQ(sigaction(SIGPIPE, &ignored, &former), 0);
    closeReader();
    Output output(writer());
    output.write("lost");
    try {
        output.flush();
        ADD_FAILURE() << "nothing is thrown";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), EPIPE);
    }
    (void)sigaction(SIGPIPE, &former, nullptr);
}

}  // namespace

}  // namespace mlk
