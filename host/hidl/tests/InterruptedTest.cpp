// Calls on sockets that a signal interrupts.
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "host/hidl/src/Socket.h"
#include "host/testing/TimeLimit.h"

namespace mlk::test {
namespace {

using namespace ::android::hardware::transport;
using ::android::OK;

// Counts the signals that interrupted this process.
std::atomic<int> sInterruptions{0};

class InterruptedTest : public ::testing::Test {
  protected:
    InterruptedTest() {
        EXPECT_EQ(connectedPair(&mHere, &mThere), OK);
        struct sigaction action {};
        action.sa_handler = [](int) { ++sInterruptions; };  // without SA_RESTART
        EXPECT_EQ(sigaction(SIGUSR1, &action, &mFormer), 0);
    }
    ~InterruptedTest() override { (void)sigaction(SIGUSR1, &mFormer, nullptr); }

    // Does the work on a thread, which waits in it until `end`, and interrupts it again and again.
    // The work has to last.
    void interrupt(const std::function<void()>& work, const std::function<void()>& end) {
        constexpr int kSignals = 50;
        std::atomic<bool> done{false};
        std::thread worker([&] {
            work();
            done = true;
        });
        const testing::TimeLimit limit([&] { (void)shutdown(mHere.get(), SHUT_RDWR); });
        for (int i = 0; i < kSignals && !done; ++i) {
            // The thread sanitizer may hold a signal back until the worker's next call, so one
            // signal may not be enough.
            const int before = sInterruptions;
            while (sInterruptions == before && !done) {
                EXPECT_EQ(pthread_kill(worker.native_handle(), SIGUSR1), 0);
                // Lets the worker return to waiting, if it waits.
                (void)poll(nullptr, 0, 1);
            }
        }
        EXPECT_FALSE(done);
        end();
        worker.join();
    }

    void sendByte() { EXPECT_EQ(::send(mHere.get(), "x", 1, MSG_DONTWAIT), 1); }

    unique_fd mHere;
    unique_fd mThere;

  private:
    struct sigaction mFormer {};
};

TEST_F(InterruptedTest, ReceivingGoesOn) {
    ssize_t got = 0;
    char byte = 0;
    std::vector<unique_fd> descriptors;
    interrupt([&] { got = receiveBytes(mThere.get(), &byte, 1, &descriptors, 0); },
              [&] { sendByte(); });
    EXPECT_EQ(got, 1);
    EXPECT_EQ(byte, 'x');
}

TEST_F(InterruptedTest, SendingGoesOn) {
    const std::vector<char> bytes(4096);
    while (::send(mHere.get(), bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
    }
    char byte = 'x';
    Sending sending;
    sending.pieces = {{&byte, 1}};
    int error = -1;
    interrupt([&] { error = sendPieces(mHere.get(), &sending, 0); },
              [&] {
                  // The sender waits until most of the space is free.
                  std::vector<char> packet(bytes.size());
                  while (recv(mThere.get(), packet.data(), packet.size(), MSG_DONTWAIT) > 0) {
                  }
              });
    EXPECT_EQ(error, 0);
}

TEST_F(InterruptedTest, WaitingGoesOn) {
    bool ready = false;
    interrupt([&] { ready = waitFor(mThere.get(), POLLIN, kForever); }, [&] { sendByte(); });
    EXPECT_TRUE(ready);
}

}  // namespace
}  // namespace mlk::test
