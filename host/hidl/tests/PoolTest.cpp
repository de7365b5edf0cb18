// The pool of threads that answers calls.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Native.h"
#include "RawClient.h"
#include "Server.h"
#include "host/testing/Eventually.h"
#include "host/testing/HostSet.h"
#include "host/testing/ProcessUsage.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/Threads.h"
#include "host/testing/TimeLimit.h"

namespace mlk::test {
namespace {

class PoolTest : public ::testing::Test {
  protected:
    // `count` proxies, each with a separate connection.
    static std::vector<sp<IEverything>> proxies(const Server& server, size_t count) {
        std::vector<sp<IEverything>> all;
        for (size_t i = 0; i < count; ++i) {
            all.push_back(server.service());
        }
        return all;
    }

    testing::HostSet mSet;
};

// Holds calls on a pool: as many arrive as there are threads, the others when threads become free.
void expectPoolOf(size_t threads, size_t calls, const std::vector<sp<IEverything>>& proxies,
                  const Server& server, size_t others) {
    ASSERT_EQ(proxies.size(), calls);
    HeldCalls held(proxies);
    ASSERT_TRUE(held.arrived(threads));
    EXPECT_FALSE(held.moreArrive());
    EXPECT_EQ(threadsOf(server.pid()), threads + others);
    EXPECT_EQ(held.release(), calls);
    EXPECT_EQ(threadsOf(server.pid()), threads + others);
}

TEST_F(PoolTest, FourteenCallsOnTenThreads) {
    const Server server({"default", "10+join", ""});
    expectPoolOf(10, 14, proxies(server, 14), server, 0);
}

TEST_F(PoolTest, FourteenCallsThroughOneProxy) {
    const Server server({"default", "10+join", ""});
    const sp<IEverything> proxy = server.service();
    expectPoolOf(10, 14, std::vector<sp<IEverything>>(14, proxy), server, 0);
}

TEST_F(PoolTest, WithoutTheFirstThread) {
    const Server server({"default", "3", ""});
    expectPoolOf(3, 5, proxies(server, 5), server, 1);
}

TEST_F(PoolTest, OneThreadThatJoins) {
    const Server server({"default", "1+join", ""});
    expectPoolOf(1, 3, proxies(server, 3), server, 0);
    EXPECT_TRUE(server.service()->ping().isOk());
}

TEST_F(PoolTest, OneProxyHasThirtyTwoConnectionsAtMost) {
    const Server server({"default", "40", ""});
    const sp<IEverything> proxy = server.service();
    const size_t before = descriptorsOf(getpid());
    HeldCalls held(std::vector<sp<IEverything>>(36, proxy));
    const testing::TimeLimit limit([&] { ::kill(server.pid(), SIGKILL); });
    ASSERT_TRUE(held.arrived(32));
    EXPECT_FALSE(held.moreArrive());
    // The first connection existed before; a call has two descriptors and its pipes here.
    EXPECT_LE(descriptorsOf(getpid()), before + 31 + 2 * 36 + 4);
    EXPECT_EQ(held.release(), 36U);
}

TEST_F(PoolTest, MoreCallersThanConnectionsThroughOneProxy) {
    const Server server;
    const testing::TimeLimit limit([&] { ::kill(server.pid(), SIGKILL); });
    const sp<IEverything> proxy = server.service();
    std::atomic<int> good{0};
    testing::inThreads(50, [&](int) {
        for (int i = 0; i < 20; ++i) {
            if (proxy->length("abc").withDefault(0) == 3) {
                ++good;
            }
        }
    });
    EXPECT_EQ(50 * 20, good);
}

TEST_F(PoolTest, IdleServerHasFewThreads) {
    const Server server({"default", "10+join", ""});
    const sp<IEverything> service = server.service();
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(service->ping().isOk());
    }
    // The thread that joined, the first one, and perhaps one for a call that came before the join.
    EXPECT_LE(threadsOf(server.pid()), 10U);
}

TEST_F(PoolTest, SilentClientsCostNoThread) {
    const Server server({"default", "10+join", ""});
    if (!allowMoreDescriptors(1000)) {
        GTEST_SKIP() << "too few descriptors";
    }
    std::vector<std::unique_ptr<RawClient>> silent;
    for (int i = 0; i < 1000; ++i) {
        silent.push_back(std::make_unique<RawClient>(mSet.runtime()));
        ASSERT_TRUE(silent.back()->hello()) << i;
    }
    const sp<IEverything> service = server.service();
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(service->ping().isOk());
    }
    EXPECT_LT(threadsOf(server.pid()), 10U) << "silent clients take none";
    const auto before = timeOf(server.pid());
    (void)poll(nullptr, 0, 300);
    EXPECT_LT(timeOf(server.pid()) - before, std::chrono::milliseconds(100));
}

// A message is cheaper for its sender if no epoll instance waits for it.
TEST_F(PoolTest, KernelDoesNotTellThePoolOfABusyClient) {
    const Server server({"default", "10+join", ""});
    const size_t alone = testing::awaitedBy(server.pid());
    const sp<IEverything> service = server.service();
    ASSERT_TRUE(service->ping().isOk());
    const size_t quiet = alone + 1;
    EXPECT_TRUE(testing::eventually([&] { return testing::awaitedBy(server.pid()) == quiet; }));
    std::atomic<bool> enough{false};
    std::thread busy([&] {
        while (!enough) {
            EXPECT_TRUE(service->ping().isOk());
        }
    });
    EXPECT_TRUE(testing::eventually([&] { return testing::awaitedBy(server.pid()) == quiet - 1; }));
    enough = true;
    busy.join();
    EXPECT_TRUE(testing::eventually([&] { return testing::awaitedBy(server.pid()) == quiet; }));
    EXPECT_TRUE(service->ping().isOk());
}

// Programs that the server starts inherit nothing of it.
TEST_F(PoolTest, DescriptorsOfTheServerAreForItAlone) {
    const Server server({"default", "10+join", ""});
    const sp<IEverything> service = server.service();
    ASSERT_TRUE(service->ping().isOk());
    const std::string process = "/proc/" + std::to_string(server.pid());
    const std::vector<int> inherited = inheritable();
    size_t seen = 0;
    for (const auto& entry : std::filesystem::directory_iterator(process + "/fd")) {
        const std::string number = entry.path().filename();
        // What this test's own parents have left open comes to the server, too.
        const int descriptor = std::stoi(number);
        if (descriptor <= STDERR_FILENO ||
            std::count(inherited.begin(), inherited.end(), descriptor) != 0) {
            continue;
        }
        std::ifstream info(process + "/fdinfo/" + number);
        // A timer has other flags after these.
        std::string word;
        while (info >> word && word != "flags:") {
        }
        int flags = 0;
        info >> std::oct >> flags;
        EXPECT_NE(flags & O_CLOEXEC, 0) << std::filesystem::read_symlink(entry.path());
        ++seen;
    }
    EXPECT_GE(seen, 3U) << "the pool's events, the name's socket and the client's";
}

TEST_F(PoolTest, ClientsThatHaveBecomeQuietKeepNoMemory) {
    constexpr size_t kClients = 100;
    constexpr size_t kSize = 60'000;
    if (testing::kSanitized) {
        GTEST_SKIP() << "the sanitizer has its own use of memory";
    }
    if (!allowMoreDescriptors(kClients)) {
        GTEST_SKIP() << "too few descriptors";
    }
    const Server server({"default", "10+join", ""});
    const RawMessage call = textCall(std::string(kSize, 'x'));
    std::vector<std::unique_ptr<RawClient>> quiet;
    const auto addClient = [&] {
        quiet.push_back(std::make_unique<RawClient>(mSet.runtime()));
        EXPECT_TRUE(quiet.back()->hello());
        EXPECT_TRUE(quiet.back()->send(call));
        EXPECT_EQ(quiet.back()->replyStatus(), ::android::OK);
        // A thread stays with its client for a moment, and then leaves the memory there or not.
        (void)poll(nullptr, 0, 20);
    };
    addClient();
    const size_t before = testing::residentOf(server.pid());
    while (quiet.size() < kClients) {
        addClient();
    }
    EXPECT_TRUE(testing::eventually([&] {
        return testing::residentOf(server.pid()) < before + kClients * kSize / 2;
    })) << testing::residentOf(server.pid()) - before;
}

// Clients that call again as soon as they are answered: more and fewer than there are threads.
class HotClientsTest : public PoolTest, public ::testing::WithParamInterface<size_t> {};

TEST_P(HotClientsTest, OthersAreAnsweredMeanwhile) {
    const Server server({"default", "10+join", ""});
    const testing::TimeLimit limit([&] { ::kill(server.pid(), SIGKILL); });
    std::atomic<bool> stop{false};
    std::atomic<int> failures{0};
    std::vector<std::thread> hot;
    for (size_t i = 0; i < GetParam(); ++i) {
        hot.emplace_back([&, proxy = server.service()] {
            while (!stop) {
                if (!proxy->ping().isOk()) {
                    ++failures;
                }
            }
        });
    }
    std::chrono::steady_clock::duration longest{};
    for (int i = 0; i < 50; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const sp<IEverything> fresh = server.service();
        EXPECT_TRUE(fresh != nullptr && fresh->ping().isOk());
        if (limit.isOver()) {
            break;
        }
        longest = std::max(longest, std::chrono::steady_clock::now() - start);
    }
    stop = true;
    for (std::thread& thread : hot) {
        thread.join();
    }
    EXPECT_EQ(failures, 0);
    EXPECT_LE(threadsOf(server.pid()), 10U);
    EXPECT_LT(longest, std::chrono::seconds(5));
}

INSTANTIATE_TEST_SUITE_P(Clients, HotClientsTest, ::testing::Values(1, 9, 10, 24));

TEST_F(PoolTest, HotClientsOnAPoolOfOne) {
    const Server server({"default", "1+join", ""});
    std::atomic<int> good{0};
    testing::inThreads(4, [&](int) {
        const sp<IEverything> proxy = server.service();
        for (int i = 0; i < 500; ++i) {
            if (proxy->ping().isOk()) {
                ++good;
            }
        }
    });
    EXPECT_EQ(4 * 500, good);
    EXPECT_EQ(threadsOf(server.pid()), 1U);
}

// Calls may arrive together. The thread must not forget the later ones when it turns to other
// clients.
TEST_F(PoolTest, CallsThatArriveTogetherAreAllAnswered) {
    const Server server({"default", "1+join", ""});
    const testing::TimeLimit limit([&] { ::kill(server.pid(), SIGKILL); });
    RawClient client(mSet.runtime());
    ASSERT_TRUE(client.hello());
    constexpr int kCalls = 40;
    HeldCalls held(proxies(server, 1));
    ASSERT_TRUE(held.arrived(1));
    for (int i = 0; i < kCalls; ++i) {
        ASSERT_TRUE(client.send(textCall("call " + std::to_string(i))));
    }
    EXPECT_EQ(held.release(), 1U);
    for (int i = 0; i < kCalls; ++i) {
        EXPECT_EQ(client.replyStatus(), ::android::OK) << i;
    }
}

TEST_F(PoolTest, NoClientWaitsForManyCallsOfAnother) {
    constexpr size_t kMostInARow = 16;
    constexpr int kCalls = 100;
    const Server server({"default", "1+join", ""});
    const testing::TimeLimit limit([&] { ::kill(server.pid(), SIGKILL); });
    RawClient busy(mSet.runtime());
    RawClient other(mSet.runtime());
    ASSERT_TRUE(busy.hello());
    ASSERT_TRUE(other.hello());
    const sp<IEverything> reader = server.service();
    const auto poke = [](RawClient& client, uint32_t number) {
        RawMessage call = callOf(POKE);
        call.header.type = MessageType::ONEWAY_CALL;
        call.number(number);
        ASSERT_TRUE(client.send(call));
    };
    HeldCalls held(proxies(server, 1));
    ASSERT_TRUE(held.arrived(1));
    for (int i = 0; i < kCalls; ++i) {
        poke(busy, 1);
    }
    poke(other, 2);
    EXPECT_EQ(held.release(), 1U);
    std::vector<int32_t> order;
    while (order.size() < kCalls + 1) {
        ASSERT_TRUE(reader->poked([&](const auto& numbers) {
                              order.insert(order.end(), numbers.begin(), numbers.end());
                          }).isOk());
    }
    const auto turn = std::find(order.begin(), order.end(), 2);
    EXPECT_LE(turn - order.begin(), static_cast<ptrdiff_t>(kMostInARow));
}

TEST_F(PoolTest, OnewayAndCallTogetherOnAPoolOfOne) {
    const Server server({"default", "1+join", ""});
    std::atomic<int> good{0};
    testing::inThreads(3, [&](int) {
        const sp<IEverything> proxy = server.service();
        for (int i = 0; i < 300; ++i) {
            if (proxy->poke(i).isOk() && proxy->poke(i).isOk() && proxy->ping().isOk()) {
                ++good;
            }
        }
    });
    EXPECT_EQ(3 * 300, good);
}

}  // namespace
}  // namespace mlk::test
