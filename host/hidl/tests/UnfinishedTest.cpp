// Clients that begin a message and stop: the server bounds what it keeps for them, in size and
// time.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "HostileFixture.h"
#include "RawClient.h"
#include "host/hidl/src/Socket.h"
#include "host/testing/EnvironmentVariable.h"
#include "host/testing/Sanitizers.h"

namespace mlk::test {
namespace {

using ::android::OK;
using ::android::hardware::transport::kMaxCallBody;
using ::android::hardware::transport::kMaxReplyBody;
using ::android::hardware::transport::kMostPacketBytes;

constexpr size_t kMegabyte = size_t{1} << 20;

class UnfinishedTest : public HostileTest {
  protected:
    // A call of the largest size without its last byte.
    static std::vector<uint8_t> almostAll() {
        std::vector<uint8_t> bytes = textCall(std::string(kMaxCallBody - 1000, 'x')).bytes();
        bytes.pop_back();
        return bytes;
    }
    // The number of connections that the server has not closed.
    static size_t alive(const std::vector<std::unique_ptr<RawClient>>& clients) {
        size_t count = 0;
        for (const auto& client : clients) {
            count += ::android::hardware::transport::isHungUp(client->socket()) ? 0 : 1;
        }
        return count;
    }
};

TEST_F(UnfinishedTest, MessagesHaveABoundTogether) {
    const size_t before = residentOf(mServer.pid());
    const std::vector<uint8_t> bytes = almostAll();
    std::vector<std::unique_ptr<RawClient>> attackers;
    for (int i = 0; i < 100; ++i) {
        attackers.push_back(connect());
        (void)attackers.back()->send(bytes);
        ASSERT_TRUE(mHonest->ping().isOk());
    }
    EXPECT_LT(residentOf(mServer.pid()), before + (testing::kSanitized ? 200 : 40) * kMegabyte);
    EXPECT_TRUE(eventually([&] { return alive(attackers) <= 16; })) << alive(attackers);
    // An honest client's slow call still fits.
    const auto slow = connect();
    const std::vector<uint8_t> call = textCall(std::string(500'000, 'x')).bytes();
    for (size_t sent = 0; sent < call.size(); sent += 50'000) {
        ASSERT_TRUE(slow->send(
                {call.begin() + static_cast<ptrdiff_t>(sent),
                 call.begin() + static_cast<ptrdiff_t>(std::min(sent + 50'000, call.size()))}));
        ASSERT_TRUE(mHonest->ping().isOk());
    }
    EXPECT_EQ(slow->replyStatus(), OK);
    slow->close();
    attackers.clear();
    expectUnharmed();
}

TEST_F(UnfinishedTest, DescriptorsHaveABoundTogether) {
    if (!allowMoreDescriptors(1000)) {
        GTEST_SKIP() << "too few descriptors";
    }
    const unique_fd file = fileWith("x");
    const std::vector<int> many(253, file.get());
    std::vector<uint8_t> half = fdCall(many).bytes();
    half.resize(half.size() / 2);
    std::vector<std::unique_ptr<RawClient>> attackers;
    for (int i = 0; i < 40; ++i) {
        attackers.push_back(connect());
        (void)attackers.back()->send(half, many);
        ASSERT_TRUE(mHonest->ping().isOk());
    }
    // 10,000 were sent.
    EXPECT_TRUE(eventually([&] { return descriptorsOf(mServer.pid()) < mDescriptors + 600; }))
            << descriptorsOf(mServer.pid());
    // An honest client that is slow with its single descriptor gets its answer.
    const auto slow = connect();
    const std::vector<uint8_t> call = fdCall({file.get()}).bytes();
    ASSERT_TRUE(slow->send({call.begin(), call.begin() + 40}, {file.get()}));
    ASSERT_TRUE(mHonest->ping().isOk());
    ASSERT_TRUE(slow->send({call.begin() + 40, call.end()}));
    EXPECT_EQ(slow->replyStatus(), OK);
    slow->close();
    attackers.clear();
    expectUnharmed();
}

TEST_F(UnfinishedTest, MoreDescriptorsThanTheMessageSays) {
    const unique_fd file = fileWith("x");
    std::vector<uint8_t> half = fdCall({file.get()}).bytes();
    half.resize(half.size() / 2);
    const auto attacker = connect();
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(attacker->send(half, {file.get(), file.get()}));
    EXPECT_TRUE(attacker->ends());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20))
            << "not for its time being over";
    attacker->close();
    expectUnharmed();
}

TEST_F(UnfinishedTest, OneThatNeverReadsALargeAnswerCostsOthersNothing) {
    constexpr size_t kHogs = 100 * kMegabyte;
    constexpr uint32_t kOthers = 40 * kMegabyte;
    std::vector<std::unique_ptr<RawClient>> hogs;
    for (int i = 0; i < 2; ++i) {
        hogs.push_back(connect());
        ASSERT_TRUE(hogs.back()->send(bytesCall(kHogs)));
    }
    // Both answers wait by now: the threads serve others.
    expectAllThreadsAnswer();
    std::vector<std::unique_ptr<RawClient>> honest;
    for (int i = 0; i < 4; ++i) {
        honest.push_back(connect());
        ASSERT_TRUE(honest.back()->send(bytesCall(kOthers)));
    }
    expectAllThreadsAnswer();
    for (const auto& client : honest) {
        EXPECT_EQ(client->replyStatus(), OK);
    }
    honest.clear();
    hogs.clear();
    expectUnharmed();
}

// A server with a short stall limit.
class ImpatientTest : public ::testing::Test {
  protected:
    std::unique_ptr<RawClient> connect() const {
        auto client = std::make_unique<RawClient>(mSet.runtime());
        EXPECT_TRUE(client->hello());
        return client;
    }

    testing::HostSet mSet;
    const testing::EnvironmentVariable mLimit{"MLK_STALL_LIMIT_MS", "300"};
};

TEST_F(ImpatientTest, UnfinishedMessageHasATimeLimit) {
    const Server server;
    const auto idle = connect();
    const auto stalled = connect();
    const std::vector<uint8_t> call = textCall("text").bytes();
    ASSERT_TRUE(stalled->send({call.begin(), call.end() - 1}));
    EXPECT_TRUE(stalled->ends());
    EXPECT_TRUE(server.says("left its message unfinished"));
    // A client that has sent nothing may stay silent for ever.
    ASSERT_TRUE(idle->send(call));
    EXPECT_EQ(idle->replyStatus(), OK);
}

TEST_F(ImpatientTest, TricklingDoesNotBuyTime) {
    const Server server;
    const auto client = connect();
    const std::vector<uint8_t> call = textCall(std::string(100'000, 'x')).bytes();
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    size_t sent = 0;
    while (sent < call.size() - 1 && client->send(std::vector<uint8_t>{call[sent]})) {
        ASSERT_LT(std::chrono::steady_clock::now(), limit);
        (void)poll(nullptr, 0, 1);
        ++sent;
    }
    EXPECT_LT(sent, call.size() - 1);
}

TEST_F(ImpatientTest, UnreadReplyHasATimeLimit) {
    const Server server;
    const auto client = connect();
    ASSERT_TRUE(client->send(bytesCall(4 * kMegabyte)));
    EXPECT_TRUE(server.says("left its reply unread"));
    // The bytes in the socket still arrive; the rest never does.
    EXPECT_FALSE(client->replyStatus().has_value());
}

// A server whose stall limit is not reached by what these tests do, even on a busy machine, but by
// all of it together.
class LessImpatientTest : public ImpatientTest {
  protected:
    static constexpr std::chrono::milliseconds kLimit{1500};

    LessImpatientTest() { mLimit.set(std::to_string(kLimit.count())); }
    // Reads a reply, which takes twice the limit. False when the connection ends.
    static bool readSlowly(const RawClient& client) {
        const auto start = std::chrono::steady_clock::now();
        std::vector<uint8_t> packet(kMostPacketBytes);
        Header header{};
        size_t filled = 0;
        do {
            const ssize_t size = recv(client.socket(), packet.data(), packet.size(), 0);
            if (size <= 0) {
                return false;
            }
            if (filled == 0) {
                memcpy(&header, packet.data(), sizeof header);
            }
            filled += static_cast<size_t>(size);
            const auto packets = static_cast<int>(header.bodySize / packet.size());
            (void)poll(nullptr, 0, 2 * static_cast<int>(kLimit.count()) / packets + 1);
        } while (filled < sizeof header + header.bodySize);
        EXPECT_GE(std::chrono::steady_clock::now() - start, 2 * kLimit);
        return true;
    }
};

TEST_F(LessImpatientTest, ReaderThatGoesOnHasAllTheTimeItTakes) {
    const Server server;
    const auto client = connect();
    ASSERT_TRUE(client->send(bytesCall(2 * kMegabyte)));
    EXPECT_TRUE(readSlowly(*client));
}

// The server reads on when its client has read: until then the client cannot finish its call.
TEST_F(LessImpatientTest, CallThatWaitsForItsClientToReadHasItsTimeAfterwards) {
    const Server server;
    const auto client = connect();
    const std::vector<uint8_t> next = textCall("text").bytes();
    ASSERT_TRUE(client->send(bytesCall(2 * kMegabyte)));
    ASSERT_TRUE(client->send({next.begin(), next.end() - 1}));
    EXPECT_TRUE(readSlowly(*client));
    ASSERT_TRUE(client->send(std::vector<uint8_t>{next.back()}));
    EXPECT_EQ(client->replyStatus(), OK);
}

TEST_F(LessImpatientTest, CallThatWasFinishedHasNoTimeLimit) {
    const Server server;
    const auto client = connect();
    const std::vector<uint8_t> call = textCall("text").bytes();
    ASSERT_TRUE(client->send({call.begin(), call.end() - 1}));
    // The server begins to wait for the rest.
    (void)poll(nullptr, 0, 100);
    ASSERT_TRUE(client->send(std::vector<uint8_t>{call.back()}));
    EXPECT_EQ(client->replyStatus(), OK);
    (void)poll(nullptr, 0, 2 * static_cast<int>(kLimit.count()));
    ASSERT_TRUE(client->send(call));
    EXPECT_EQ(client->replyStatus(), OK);
}

}  // namespace
}  // namespace mlk::test
