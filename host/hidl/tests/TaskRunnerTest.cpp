// TaskRunner and ConcurrentMap.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hidl/ConcurrentMap.h>
#include <hidl/TaskRunner.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/testing/Eventually.h"
#include "host/testing/Threads.h"

namespace mlk::test {
namespace {

using ::android::hardware::ConcurrentMap;
using ::android::hardware::details::TaskRunner;
using ::testing::ElementsAre;

TEST(TaskRunnerTest, RunsInOrderAndToTheEnd) {
    std::vector<int> ran;
    {
        TaskRunner runner;
        runner.start(100);
        for (int i = 0; i < 5; ++i) {
            EXPECT_TRUE(runner.push([&ran, i] { ran.push_back(i); }));
        }
    }
    EXPECT_THAT(ran, ElementsAre(0, 1, 2, 3, 4));
}

TEST(TaskRunnerTest, HasALimit) {
    std::atomic<int> ran{0};
    std::promise<void> running;
    std::promise<void> gate;
    {
        TaskRunner runner;
        EXPECT_FALSE(runner.push([] {}));  // not started
        runner.start(2);
        EXPECT_TRUE(runner.push([&] {
            running.set_value();
            gate.get_future().wait();
        }));
        running.get_future().wait();
        EXPECT_TRUE(runner.push([&] { ++ran; }));
        EXPECT_TRUE(runner.push([&] { ++ran; }));
        EXPECT_FALSE(runner.push([&] { ++ran; }));
        gate.set_value();
    }
    EXPECT_EQ(ran, 2);
}

// Between two tasks the thread waits, and has to be woken for the second.
TEST(TaskRunnerTest, RunsATaskThatComesLater) {
    std::atomic<int> ran{0};
    TaskRunner runner;
    runner.start(1);
    for (int task = 1; task <= 20; ++task) {
        EXPECT_TRUE(testing::eventually([&] { return runner.push([&] { ++ran; }); }));
        ASSERT_TRUE(testing::eventually([&] { return ran == task; })) << task;
    }
}

// Whether it is told within half a minute.
bool comes(std::promise<void>& promise) {
    return promise.get_future().wait_for(std::chrono::seconds(30)) == std::future_status::ready;
}

TEST(TaskRunnerTest, TaskMayEndItsRunner) {
    auto runner = std::make_unique<TaskRunner>();
    runner->start(10);
    std::promise<void> pushed;
    std::promise<void> done;
    EXPECT_TRUE(runner->push([&] {
        pushed.get_future().wait();
        runner = nullptr;
    }));
    EXPECT_TRUE(runner->push([&] { done.set_value(); }));
    pushed.set_value();
    EXPECT_TRUE(comes(done)) << "queued tasks run all the same";
}

TEST(TaskRunnerTest, WhatATaskHeldMayEndItsRunner) {
    struct Owner {
        TaskRunner runner;
    };
    std::promise<void> done;
    auto owner = std::shared_ptr<Owner>(new Owner, [&](Owner* gone) {
        delete gone;
        done.set_value();
    });
    owner->runner.start(10);
    std::promise<void> dropped;
    EXPECT_TRUE(owner->runner.push([owner, &dropped] { dropped.get_future().wait(); }));
    owner = nullptr;
    dropped.set_value();
    EXPECT_TRUE(comes(done));
}

TEST(ConcurrentMapTest, SetsGetsAndErases) {
    ConcurrentMap<std::string, int> map;
    EXPECT_EQ(map.get("a", -1), -1);
    map.set("a", 1);
    map.set("a", 2);
    EXPECT_EQ(map.get("a", -1), 2);
    EXPECT_EQ(map.eraseIfEqual("a", 1), 0U);
    EXPECT_EQ(map.eraseIfEqual("b", 1), 0U);
    EXPECT_EQ(map.eraseIfEqual("a", 2), 1U);
    EXPECT_EQ(map.erase("a"), 0U);
    map.set("b", 3);
    EXPECT_EQ(map.erase("b"), 1U);
}

std::shared_ptr<int> lock(const std::weak_ptr<int>& weak) {
    return weak.lock();
}

TEST(ConcurrentMapTest, MakesWhatIsMissing) {
    ConcurrentMap<int, std::weak_ptr<int>> map;
    int made = 0;
    const auto make = [&] { return std::make_shared<int>(++made); };
    auto first = map.getOrMake(1, &lock, make);
    EXPECT_EQ(*first, 1);
    EXPECT_EQ(first, map.getOrMake(1, &lock, make));
    EXPECT_EQ(*map.getOrMake(2, &lock, make), 2);
    first = nullptr;  // no longer usable: another is made
    EXPECT_EQ(*map.getOrMake(1, &lock, make), 3);
    EXPECT_EQ(map.getOrMake(4, &lock, [] { return std::shared_ptr<int>(); }), nullptr);
    EXPECT_EQ(made, 3);
}

TEST(ConcurrentMapTest, MakingMayUseTheMap) {
    ConcurrentMap<int, std::weak_ptr<int>> map;
    const auto inner = std::make_shared<int>(5);
    const auto outer =
            map.getOrMake(1, &lock, [&] { return map.getOrMake(2, &lock, [&] { return inner; }); });
    EXPECT_EQ(inner, outer);
}

TEST(ConcurrentMapTest, AllThreadsHaveTheSame) {
    ConcurrentMap<int, std::weak_ptr<int>> map;
    std::vector<std::shared_ptr<int>> got(8);
    testing::inThreads(8, [&](int index) {
        got[static_cast<size_t>(index)] =
                map.getOrMake(1, &lock, [&] { return std::make_shared<int>(index); });
    });
    for (const auto& one : got) {
        EXPECT_EQ(got[0], one);
    }
}

}  // namespace
}  // namespace mlk::test
