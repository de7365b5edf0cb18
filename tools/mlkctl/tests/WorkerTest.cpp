// Work that takes too long is abandoned.
#include "tools/mlkctl/Worker.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <new>
#include <string>
#include <variant>
#include <vector>

#include "host/testing/AddressLimit.h"
#include "host/testing/Eventually.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/TimeLimit.h"
#include "tools/mlkctl/Pending.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(WorkerTest, DoesOnePieceOfWorkAfterTheOther) {
    const std::chrono::minutes later(1);
    Worker worker;
    int done = 0;
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(worker.run([&done] { ++done; }, later));
    }
    EXPECT_EQ(done, 100);
    EXPECT_THROW(worker.run([] { throw usage("no"); }, later), Failure);
    EXPECT_TRUE(worker.run([&done] { ++done; }, later));
    EXPECT_FALSE(anyPending());
}

TEST(WorkerTest, IsLeftBehindWhenItsWorkTakesTooLong) {
    auto release = std::make_shared<std::promise<void>>();
    const std::shared_future<void> released = release->get_future();
    {
        const mlk::testing::TimeLimit limit([release] { release->set_value(); });
        Worker worker;
        EXPECT_FALSE(worker.run([released] { released.wait(); }, std::chrono::seconds(0)));
    }
    ASSERT_FALSE(HasFailure()) << "it was waited for";
    EXPECT_TRUE(anyPending());
    release->set_value();
    EXPECT_TRUE(mlk::testing::eventually([] { return !anyPending(); }));
}

TEST(WorkerTest, DoesAGroupUntilAPieceSaysNo) {
    const std::chrono::minutes later(1);
    Worker worker;
    std::vector<int> done;
    std::vector<Worker::Piece> pieces;
    for (int i = 0; i < 10; ++i) {
        pieces.emplace_back([&done, i] {
            done.push_back(i);
            return i != 4;
        });
    }
    const Worker::Outcome stopped = worker.runAll(pieces, later);
    EXPECT_EQ(stopped.ended, 5U);
    EXPECT_FALSE(stopped.hangs);
    EXPECT_THAT(done, ElementsAre(0, 1, 2, 3, 4));
    pieces[1] = []() -> bool { throw usage("no"); };
    EXPECT_THROW((void)worker.runAll(pieces, later), Failure);
    EXPECT_THAT(done, ElementsAre(0, 1, 2, 3, 4, 0));
    EXPECT_EQ(worker.runAll({}, later).ended, 0U);
    EXPECT_FALSE(anyPending());
}

// Three pieces of 0.7 s do not exceed a limit of 2 s; a further one that never ends does.
TEST(WorkerTest, GivesEachPieceOfAGroupTheLimit) {
    const auto release = std::make_shared<std::promise<void>>();
    const std::shared_future<void> released = release->get_future();
    const auto start = Worker::Clock::now();
    {
        const mlk::testing::TimeLimit limit([release] { release->set_value(); });
        Worker worker;
        const auto wait = [released](std::chrono::milliseconds time) {
            return [released, time] {
                released.wait_for(time);
                return true;
            };
        };
        // Together they take longer than one may.
        constexpr std::chrono::milliseconds kShort(700);
        const Worker::Outcome outcome = worker.runAll(
                {wait(kShort), wait(kShort), wait(kShort), wait(std::chrono::hours(1))},
                std::chrono::seconds(2));
        EXPECT_EQ(outcome.ended, 3U);
        EXPECT_TRUE(outcome.hangs);
    }
    ASSERT_FALSE(HasFailure()) << "it was waited for";
    EXPECT_GE(Worker::Clock::now() - start, std::chrono::milliseconds(4100));
    EXPECT_TRUE(anyPending());
    release->set_value();
    EXPECT_TRUE(mlk::testing::eventually([] { return !anyPending(); }));
}

// A look-up that never comes back, of one interface of three.
TEST(ServicesTest, WhatHangsIsToldApartFromWhatIsMissing) {
    Script script;
    const auto release = std::make_shared<std::promise<void>>();
    const std::shared_future<void> released = release->get_future();
    Services services([&script, released](const Interface& interface) -> ::android::sp<IBase> {
        if (&interface == &tvInterface()) {
            released.wait();
        }
        if (&interface != &projectInterface()) {
            return nullptr;
        }
        return finderOf(script)(interface);
    });
    const Outcome show = runMlkctl({"show", "--timeout", "0.2"}, services);
    EXPECT_EQ(show.status, 1);
    EXPECT_THAT(show.err,
                ::testing::StartsWith(
                        "mlkctl: IMlkTvConfigs: the service gave no answer within 0.2 s; it hangs\n"
                        "mlkctl: IMlkFrameworkConfigs: not registered: "));
    EXPECT_THAT(show.out, AllOf(HasSubstr("  Panel             getPanelName\n"),
                                HasSubstr("  Features on       (not reachable)\n")));
    const Outcome call =
            runMlkctl({"call", "--timeout", "0.2", "IMlkTvConfigs", "getAtvSystem"}, services);
    EXPECT_EQ(call.status, 1);
    EXPECT_EQ(call.err,
              "mlkctl: IMlkTvConfigs: the service gave no answer within 0.2 s; it hangs\n");
    EXPECT_EQ(runMlkctl({"call", "--timeout", "0", "IMlkTvConfigs", "getAtvSystem"}, services).err,
              "mlkctl: IMlkTvConfigs: the service gave no answer within 0 s\n");
    release->set_value();
    EXPECT_TRUE(mlk::testing::eventually([] { return !anyPending(); }));
}

TEST(ServicesTest, AnObjectIsLookedForOnce) {
    Script script;
    int found = 0;
    Services services([&script, &found](const Interface& interface) {
        ++found;
        return finderOf(script)(interface);
    });
    const auto ask = [&] { return services.ask(tvInterface(), [](IBase&) { return true; }); };
    EXPECT_TRUE(ask());
    EXPECT_TRUE(ask());
    EXPECT_EQ(found, 1);
}

TEST(ServicesTest, OnlyAnObjectThatDiedIsLookedForAgain) {
    Script script;
    int found = 0;
    Services services([&script, &found](const Interface& interface) {
        ++found;
        return finderOf(script)(interface);
    });
    const auto askOneThatFails = [&](ExitStatus status) {
        EXPECT_THROW(services.ask(tvInterface(),
                                  [status](IBase&) -> bool { throw Failure(status, "no"); }),
                     Failure);
        return services.ask(tvInterface(), [](IBase&) { return true; });
    };
    EXPECT_TRUE(askOneThatFails(ExitStatus::NO_ANSWER));
    EXPECT_EQ(found, 1);
    EXPECT_TRUE(askOneThatFails(ExitStatus::UNREACHABLE));
    EXPECT_EQ(found, 2);
}

// A call that never ends loses only its own answer. Calls before it keep theirs; calls after it go
// to an object that is looked up again.
TEST(ServicesTest, ACallThatHangsIsLeftBehindAndTheRestIsMade) {
    Script script;
    int found = 0;
    Services services([&script, &found](const Interface& interface) {
        ++found;
        return finderOf(script)(interface);
    });
    services.setLimit(std::chrono::milliseconds(500));
    const auto release = std::make_shared<std::promise<void>>();
    const std::shared_future<void> released = release->get_future();
    const Interface& interface = tvInterface();
    const Method& method = interface.method("pvrEnabled");
    std::vector<Services::Request> requests(
            5, {&interface, &method, [](IBase&) -> std::string { return "answered"; }});
    requests[2].call = [released](IBase&) -> std::string {
        released.wait();
        return "too late";
    };
    requests[3].call = [](IBase&) -> std::string {
        throw Failure(ExitStatus::NO_ANSWER, "no answer");
    };
    std::vector<std::string> texts;
    services.callAll(requests, [&texts](Services::Result&& result) {
        const auto* failure = std::get_if<Failure>(&result);
        texts.emplace_back(failure != nullptr ? failure->what() : std::get<std::string>(result));
    });
    EXPECT_THAT(texts, ElementsAre("answered", "answered",
                                   "IMlkTvConfigs pvrEnabled: the service gave no answer within "
                                   "0.5 s; it hangs",
                                   HasSubstr("IMlkTvConfigs pvrEnabled: no answer"), "answered"));
    EXPECT_EQ(found, 2);
    release->set_value();
    EXPECT_TRUE(mlk::testing::eventually([] { return !anyPending(); }));
}

TEST(PendingTest, LeavesBehindWhatTakesTooLong) {
    auto release = std::make_shared<std::promise<void>>();
    auto released = std::make_shared<std::shared_future<void>>(release->get_future());
    const Pending<int> stuck([released] {
        released->wait();
        return 7;
    });
    const auto now = Pending<int>::Clock::now();
    EXPECT_EQ(stuck.waitUntil(now), std::nullopt);
    EXPECT_TRUE(anyPending());
    release->set_value();
    EXPECT_EQ(stuck.waitUntil(now + std::chrono::minutes(1)), 7);
    EXPECT_FALSE(anyPending());
}

TEST(PendingTest, ThrowsWhatItsWorkThrew) {
    const Pending<int> failing([]() -> int { throw std::bad_alloc(); });
    const auto later = Pending<int>::Clock::now() + std::chrono::minutes(1);
    EXPECT_THROW((void)failing.waitUntil(later), std::bad_alloc);
    EXPECT_FALSE(anyPending());
    EXPECT_THROW((void)failing.waitUntil(later), std::bad_alloc) << "asked again";
}

// In a process of its own, which has no stack of a former thread to use again.
TEST(PendingTest, AThreadThatCannotStartIsNotCounted) {
    if (mlk::testing::kSanitized) {
        GTEST_SKIP() << "a sanitizer ends the process when memory runs out";
    }
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto startNone = [] {
        bool refused = false;
        {
            const mlk::testing::AddressLimit tooLittleForAStack(4 << 20);
            try {
                const Pending<int> pending([] { return 7; });
            } catch (const std::exception&) {
                refused = true;
            }
        }
        EXPECT_TRUE(refused);
        EXPECT_FALSE(anyPending());
        _exit(::testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(startNone(), ::testing::ExitedWithCode(0), "");
}

// The work of a look-up and of a call allocates.
TEST(ServicesTest, MemoryThatRunsOutIsAFailureAsOthers) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{"show"},
                                                  {"wait", "--timeout", "0"},
                                                  {"call", "IMlkTvConfigs", "getAtvSystem"}}) {
        Services services([](const Interface&) -> ::android::sp<IBase> { throw std::bad_alloc(); });
        const Outcome outcome = runMlkctl(words, services);
        EXPECT_EQ(outcome.status, 1) << words[0];
        EXPECT_EQ(outcome.out, "") << words[0];
        EXPECT_EQ(outcome.err, "mlkctl: not enough memory\n") << words[0];
    }
    EXPECT_TRUE(mlk::testing::eventually([] { return !anyPending(); }));
}

}  // namespace

}  // namespace mlk::ctl
