// Clients that stall, die, never read, or exhaust resources.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "HostileFixture.h"
#include "host/hidl/src/Socket.h"

namespace mlk::test {
namespace {

using ::android::BAD_VALUE;
using ::android::OK;

class HostileClientsTest : public HostileTest {
  protected:
    // Expects that the server uses no processor time while it has no calls.
    void expectIdle() const {
        const auto before = timeOf(mServer.pid());
        (void)poll(nullptr, 0, 300);
        EXPECT_LT(timeOf(mServer.pid()) - before, std::chrono::milliseconds(100));
    }
};

TEST_F(HostileClientsTest, RandomBytes) {
    std::mt19937 random(4711);  // NOLINT(cert-msc51-cpp): the same on every run
    for (int round = 0; round < 200; ++round) {
        const auto attacker = connect();
        std::vector<uint8_t> bytes(1 + random() % 500);
        for (uint8_t& byte : bytes) {
            byte = static_cast<uint8_t>(random());
        }
        // Half of the inputs begin like a message.
        if (round % 2 == 0 && bytes.size() > 4) {
            const uint32_t magic = Header::kMagic;
            memcpy(bytes.data(), &magic, sizeof(magic));
        }
        (void)attacker->send(bytes);
    }
    expectUnharmed();
}

TEST_F(HostileClientsTest, SoundMessagesWithRandomChanges) {
    std::mt19937 random(815);  // NOLINT(cert-msc51-cpp): the same on every run
    const unique_fd file = fileWith("x");
    for (int round = 0; round < 1000; ++round) {
        const auto attacker = connect();
        const RawMessage sound = round % 2 == 0 ? textCall("some text") : fdCall({file.get()});
        std::vector<uint8_t> bytes = sound.bytes();
        for (int change = 0; change < 3; ++change) {
            bytes[random() % bytes.size()] ^= static_cast<uint8_t>(1U << random() % 8);
        }
        (void)attacker->send(bytes, sound.descriptors);
    }
    expectUnharmed();
}

TEST_F(HostileClientsTest, PartsOfMessagesThenSilenceThenTheEnd) {
    const std::vector<uint8_t> whole = textCall("text").bytes();
    std::vector<std::unique_ptr<RawClient>> attackers;
    for (size_t part = 0; part < whole.size(); ++part) {
        attackers.push_back(connect());
        ASSERT_TRUE(attackers.back()->send(
                {whole.begin(), whole.begin() + static_cast<ptrdiff_t>(part)}));
    }
    EXPECT_TRUE(mHonest->ping().isOk());
    expectAllThreadsAnswer();
    expectIdle();
    attackers.clear();
    expectUnharmed();
}

TEST_F(HostileClientsTest, OneByteAtATime) {
    const auto attacker = connect();
    for (const uint8_t byte : textCall("trickling").bytes()) {
        ASSERT_TRUE(attacker->send(std::vector<uint8_t>{byte}));
        ASSERT_TRUE(mHonest->ping().isOk());
    }
    EXPECT_EQ(attacker->replyStatus(), OK);
    attacker->close();
    expectUnharmed();
}

TEST_F(HostileClientsTest, DescriptorsInTheMiddleOfAMessage) {
    const unique_fd file = fileWith("x");
    const RawMessage message = fdCall({file.get()});
    const std::vector<uint8_t> bytes = message.bytes();
    const auto middle = bytes.begin() + 40;
    const auto attacker = connect();
    ASSERT_TRUE(attacker->send({bytes.begin(), middle}));
    ASSERT_TRUE(attacker->sendRest({middle, bytes.end()}, {file.get()}));
    EXPECT_EQ(attacker->replyStatus(), OK);
    attacker->close();
    expectUnharmed();
}

TEST_F(HostileClientsTest, DescriptorsThatNobodyAnnounced) {
    const unique_fd file = fileWith("x");
    const auto attacker = connect();
    const RawMessage message = fdCall({file.get()});
    ASSERT_TRUE(attacker->sendRest(message.bytes(), message.descriptors));
    EXPECT_EQ(attacker->replyStatus(), BAD_VALUE) << "they have not arrived";
    ASSERT_TRUE(attacker->send(message));
    EXPECT_EQ(attacker->replyStatus(), OK);
    attacker->close();
    expectUnharmed();
}

TEST_F(HostileClientsTest, AnnouncesDescriptorsWithoutAnEnd) {
    const unique_fd file = fileWith("x");
    const auto attacker = connect();
    RawMessage announcement;
    announcement.header.type = MessageType::DESCRIPTORS;
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(attacker->send(announcement));
        ASSERT_TRUE(i % 100 != 0 || mHonest->ping().isOk());
    }
    expectAllThreadsAnswer();
    // None of them is a call, and the last one still counts.
    ASSERT_TRUE(attacker->send(fdCall({file.get()})));
    EXPECT_EQ(attacker->replyStatus(), OK);
    attacker->close();
    expectUnharmed();
}

TEST_F(HostileClientsTest, MoreAndMoreDescriptorsForOneMessage) {
    const unique_fd file = fileWith("x");
    const std::vector<int> many(250, file.get());
    const std::vector<uint8_t> bytes = textCall(std::string(1000, 'x')).bytes();
    const auto attacker = connect();
    // One byte at a time, each with almost as many descriptors as the kernel takes: the server sets
    // a limit.
    for (size_t sent = 0; sent < 5; ++sent) {
        const std::vector<uint8_t> byte = {bytes[sent]};
        if (!(sent == 0 ? attacker->send(byte, many) : attacker->sendRest(byte, many))) {
            break;
        }
    }
    EXPECT_TRUE(attacker->ends());
    attacker->close();
    expectUnharmed();
}

TEST_F(HostileClientsTest, DiesInTheMiddleOfItsCall) {
    for (int i = 0; i < 20; ++i) {
        const auto attacker = connect();
        ASSERT_TRUE(attacker->send(bytesCall(3 << 20)));
    }
    expectUnharmed();
}

TEST_F(HostileClientsTest, NeverReadsItsAnswers) {
    const size_t before = residentOf(mServer.pid());
    constexpr size_t kAnswer = size_t{1} << 20;
    std::vector<std::unique_ptr<RawClient>> attackers;
    for (int i = 0; i < 20; ++i) {
        attackers.push_back(connect());
        for (int call = 0; call < 50; ++call) {
            ASSERT_TRUE(attackers.back()->send(bytesCall(kAnswer)));
        }
    }
    EXPECT_TRUE(mHonest->ping().isOk());
    expectAllThreadsAnswer();
    // The server keeps at most one of the fifty requested answers for each client.
    EXPECT_LT(residentOf(mServer.pid()), before + 20 * 3 * kAnswer);
    expectIdle();
    attackers.clear();
    expectUnharmed();
}

TEST_F(HostileClientsTest, ReadsItsAnswersLate) {
    const auto attacker = connect();
    for (int call = 0; call < 5; ++call) {
        ASSERT_TRUE(attacker->send(bytesCall(3 << 20)));
    }
    expectAllThreadsAnswer();
    for (int call = 0; call < 5; ++call) {
        EXPECT_EQ(attacker->replyStatus(), OK);
    }
    attacker->close();
    expectUnharmed();
}

TEST_F(HostileClientsTest, ReadsAnAnswerWithDescriptorsLate) {
    const unique_fd file = fileWith("x");
    const auto attacker = connect();
    // The first answers fill the socket; the one with the descriptor does not fit and has to wait.
    for (int call = 0; call < 10; ++call) {
        ASSERT_TRUE(attacker->send(bytesCall(100000)));
    }
    ASSERT_TRUE(attacker->send(fdCall({file.get()})));
    expectAllThreadsAnswer();
    for (int call = 0; call < 11; ++call) {
        EXPECT_EQ(attacker->replyStatus(), OK);
    }
    attacker->close();
    expectUnharmed();
}

TEST_F(HostileClientsTest, FloodOfOnewayCalls) {
    const auto attacker = connect();
    RawMessage poke = callOf(POKE);
    poke.header.type = MessageType::ONEWAY_CALL;
    poke.number(1);
    for (int i = 0; i < 200; ++i) {
        for (int call = 0; call < 100; ++call) {
            ASSERT_TRUE(attacker->send(poke));
        }
        ASSERT_TRUE(mHonest->ping().isOk());
    }
    attacker->close();
    expectUnharmed();
    size_t poked = 0;
    EXPECT_TRUE(eventually([&] {
        (void)mHonest->poked([&](const auto& n) { poked += n.size(); }).isOk();
        return poked == 20000;
    })) << poked;
}

TEST_F(HostileClientsTest, ListenerThatNeverAnswersOnASocketThatDoesNotWait) {
    unique_fd ours;
    unique_fd theirs;
    ASSERT_EQ(::android::hardware::transport::connectedPair(&ours, &theirs), OK);
    ASSERT_EQ(fcntl(theirs.get(), F_SETFL, O_NONBLOCK), 0);
    const auto attacker = connect();
    ASSERT_TRUE(attacker->send(listenCall(theirs.get())));
    // The server's call has arrived here: the server waits for its answer now.
    pollfd call{ours.get(), POLLIN, 0};
    ASSERT_EQ(poll(&call, 1, 30 * 1000), 1);
    expectIdle();
    EXPECT_TRUE(mHonest->ping().isOk());
    ours.reset();
    EXPECT_EQ(attacker->replyStatus(), OK);
    attacker->close();
    theirs.reset();
    expectUnharmed();
}

TEST_F(HostileClientsTest, ListenerThatIsTheServiceItself) {
    const auto other = connect();
    const auto attacker = connect();
    ASSERT_TRUE(attacker->send(listenCall(other->socket())));
    EXPECT_EQ(attacker->replyStatus(), OK);
    attacker->close();
    other->close();
    expectUnharmed();
}

TEST_F(HostileClientsTest, ListenerThatNeverReads) {
    unique_fd ours;
    unique_fd theirs;
    ASSERT_EQ(::android::hardware::transport::connectedPair(&ours, &theirs), OK);
    const sp<Listener> good = new Listener;
    ASSERT_TRUE(mHonest->listen(good, "").isOk());
    // Then a client that answers its first call and nothing more.
    const auto attacker = connect();
    ASSERT_TRUE(attacker->send(listenCall(theirs.get())));
    RawMessage answer;
    answer.header.type = MessageType::REPLY;
    answer.number(0);
    answer.number(1);
    const std::vector<uint8_t> bytes = answer.bytes();
    ASSERT_EQ(write(ours.get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    ASSERT_EQ(attacker->replyStatus(), OK);
    // One-way calls fail when the socket stays full; they do not wait for ever.
    int sent = 0;
    while (sent < 100000 && static_cast<bool>(mHonest->tellKept(sent))) {
        ++sent;
    }
    EXPECT_LT(sent, 100000);
    EXPECT_GT(sent, 10);
    ASSERT_TRUE(mHonest->dropKept().isOk());
    attacker->close();
    theirs.reset();
    ours.reset();
    expectUnharmed();
}

}  // namespace
}  // namespace mlk::test
