// Calls that a server makes itself: a listener that does not answer blocks a thread for a limited
// time only.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "BadService.h"
#include "RawClient.h"
#include "Server.h"
#include "host/hidl/src/Limits.h"
#include "host/hidl/src/Socket.h"
#include "host/hidl/src/ThreadPool.h"
#include "host/testing/HostSet.h"

namespace mlk::test {
namespace {

namespace transport = ::android::hardware::transport;
using ::android::OK;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

// A listener of a server; the test holds its other end.
class CallLimitTest : public ::testing::Test {
  protected:
    CallLimitTest() { EXPECT_EQ(transport::connectedPair(&mOurs, &mTheirs), OK); }
    ~CallLimitTest() override { (void)unsetenv("MLK_CALL_LIMIT_MS"); }

    std::unique_ptr<Server> server(const char* limit) {
        if (limit != nullptr) {
            (void)setenv("MLK_CALL_LIMIT_MS", limit, 1);
        }
        return std::make_unique<Server>();
    }
    // Sends the listener to the server, which calls it at once.
    std::unique_ptr<RawClient> listen() {
        auto client = std::make_unique<RawClient>(mSet.runtime());
        EXPECT_TRUE(client->hello());
        EXPECT_TRUE(client->send(listenCall(mTheirs.get())));
        mTheirs.reset();
        return client;
    }
    static std::vector<uint8_t> answerBytes() {
        RawMessage answer;
        answer.header.type = MessageType::REPLY;
        answer.number(0);
        answer.number(1);
        return answer.bytes();
    }

    testing::HostSet mSet;
    unique_fd mOurs;
    unique_fd mTheirs;
};

TEST_F(CallLimitTest, OfAThreadOfThePoolIsFiveSeconds) {
    const auto bad = server(nullptr);
    const auto start = steady_clock::now();
    const auto client = listen();
    // The server's method continues without an answer.
    EXPECT_EQ(client->replyStatus(), OK);
    const auto taken = steady_clock::now() - start;
    EXPECT_GE(taken, milliseconds(4900));
    EXPECT_LT(taken, seconds(20));
    EXPECT_TRUE(bad->says("an object that was handed over does not answer in time"));
}

TEST_F(CallLimitTest, CountsForTheWholeAnswer) {
    const auto bad = server("500");
    const auto client = listen();
    // A byte from time to time does not extend the limit.
    const std::vector<uint8_t> bytes = answerBytes();
    size_t sent = 0;
    pollfd reply{client->socket(), POLLIN, 0};
    while (sent + 1 < bytes.size() && poll(&reply, 1, 100) == 0) {
        if (::send(mOurs.get(), &bytes[sent], 1, MSG_NOSIGNAL) != 1) {
            break;
        }
        ++sent;
    }
    EXPECT_LT(sent, 30U);
    EXPECT_EQ(client->replyStatus(), OK);
    EXPECT_TRUE(transport::waitFor(mOurs.get(), POLLRDHUP, seconds(20)));
}

TEST_F(CallLimitTest, CountsForWaitingForAConnection) {
    const auto bad = server("500");
    const auto client = listen();
    const std::vector<uint8_t> bytes = answerBytes();
    ASSERT_EQ(write(mOurs.get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    ASSERT_EQ(client->replyStatus(), OK);
    // The server keeps the listener, which has one connection: one call is sent, the others wait.
    std::vector<std::future<int32_t>> calls;
    const auto start = steady_clock::now();
    for (int i = 0; i < 3; ++i) {
        calls.push_back(std::async(std::launch::async, [service = bad->service()] {
            return service->callKept("text").withDefault(-3);
        }));
    }
    for (auto& call : calls) {
        EXPECT_EQ(call.get(), -1);
    }
    EXPECT_LT(steady_clock::now() - start, seconds(20));
    // The listener counts as dead; another call returns at once.
    EXPECT_EQ(bad->service()->callKept("text").withDefault(-3), -1);
}

TEST_F(CallLimitTest, CountsForCallsWithoutAnAnswer) {
    const auto bad = server("100");
    const auto client = listen();
    const std::vector<uint8_t> bytes = answerBytes();
    ASSERT_EQ(write(mOurs.get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    ASSERT_EQ(client->replyStatus(), OK);
    const auto service = bad->service();
    // Nobody reads: there is space for some calls. One that is refused leaves the listener alive.
    int sent = 0;
    while (sent < 100000 && service->tellKept(sent).withDefault(false)) {
        ++sent;
    }
    ASSERT_LT(sent, 100000);
    // The quickest of some, because the machine may be busy.
    auto least = steady_clock::duration::max();
    for (int i = 0; i < 5; ++i) {
        const auto start = steady_clock::now();
        EXPECT_FALSE(service->tellKept(i).withDefault(true));
        least = std::min<steady_clock::duration>(least, steady_clock::now() - start);
    }
    EXPECT_GE(least, milliseconds(90));
    EXPECT_LT(least, milliseconds(900));
}

TEST_F(CallLimitTest, AnswerInTimeIsTaken) {
    const auto good = server("20000");
    const auto client = listen();
    const std::vector<uint8_t> bytes = answerBytes();
    for (const uint8_t byte : bytes) {
        ASSERT_EQ(write(mOurs.get(), &byte, 1), 1);
        (void)poll(nullptr, 0, 1);
    }
    EXPECT_EQ(client->replyStatus(), OK);
    EXPECT_EQ(good->err(), "");
}

TEST_F(CallLimitTest, DoesNotConcernClientsWithoutAPool) {
    EXPECT_EQ(transport::callLimit(), transport::kForever);
    // The server's own limit does not apply to its clients.
    const auto slow = server("100");
    HeldCalls held({slow->service()});
    ASSERT_TRUE(held.arrived(1));
    (void)poll(nullptr, 0, 300);
    EXPECT_EQ(held.release(), 1U);
}

// Records the limit of a thread of the pool.
class LimitProbe : public transport::EventSource {
  public:
    Next onEvents(uint32_t, transport::ThreadPool&) override {
        mLimit.set_value(transport::callLimit());
        return Next::DROP;
    }
    int descriptor() const override { return mPipe.out.get(); }
    std::future<milliseconds> limit() { return mLimit.get_future(); }
    void trigger() { mPipe.in.reset(); }

  private:
    Pipe mPipe;
    std::promise<milliseconds> mLimit;
};

TEST_F(CallLimitTest, ThreadsOfThePoolHaveOne) {
    auto probe = std::make_shared<LimitProbe>();
    auto limit = probe->limit();
    transport::ThreadPool& pool = transport::ThreadPool::instance();
    ASSERT_NE(pool.add(probe, true), 0U);
    pool.start();
    probe->trigger();
    ASSERT_EQ(limit.wait_for(seconds(20)), std::future_status::ready);
    EXPECT_LE(limit.get(), seconds(5));
}

TEST_F(CallLimitTest, ServerThatListensAndTakesNobody) {
    const transport::RuntimeFolder folder = transport::findRuntimeFolder();
    unique_fd listener;
    ASSERT_EQ(transport::listenOn(folder, std::string(IEverything::descriptor) + ".default",
                                  &listener),
              OK);
    // Fills the queue of connections; the next connect would wait for ever.
    std::vector<std::unique_ptr<RawClient>> waiting;
    for (int i = 0; i < 129; ++i) {
        waiting.push_back(std::make_unique<RawClient>(mSet.runtime()));
    }
    const auto start = steady_clock::now();
    EXPECT_EQ(IEverything::getService(), nullptr);
    EXPECT_LT(steady_clock::now() - start, seconds(15));
}

}  // namespace
}  // namespace mlk::test
