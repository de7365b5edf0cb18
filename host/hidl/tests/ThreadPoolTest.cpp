// The pool by itself: sources are added, removed, wait and fail while threads serve them.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "Native.h"
#include "Server.h"
#include "host/hidl/src/Socket.h"
#include "host/hidl/src/ThreadPool.h"
#include "host/testing/AddressLimit.h"
#include "host/testing/LogCapture.h"
#include "host/testing/Sanitizers.h"
#include "host/testing/ThreadState.h"
#include "host/testing/Threads.h"

namespace mlk::test {
namespace {

using ::android::OK;
using ::android::hardware::transport::connectedPair;
using ::android::hardware::transport::EventSource;
using ::android::hardware::transport::ThreadPool;
using Next = EventSource::Next;

// A socket that counts its events and answers them with the test's function.
class Source : public EventSource {
  public:
    explicit Source(std::function<Next(Source&)> work) : mWork(std::move(work)) {
        EXPECT_EQ(connectedPair(&mOwn, &mOther), OK);
        ++sAlive;
    }
    ~Source() override { --sAlive; }
    Next onEvents(uint32_t, ThreadPool&) override {
        ++mEvents;
        return mWork(*this);
    }
    int descriptor() const override { return mOwn.get(); }

    void write() const { EXPECT_EQ(::write(mOther.get(), "x", 1), 1); }
    void read() const { EXPECT_EQ(readFrom(mOwn.get(), 1), "x"); }
    void hangUp() { mOther.reset(); }
    // Something that the kernel refuses to wait on has the descriptor from now on.
    void becomeFile() const {
        const unique_fd file(::open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
        EXPECT_EQ(::dup3(file.get(), mOwn.get(), O_CLOEXEC), mOwn.get());
    }
    int events() const { return mEvents; }
    static int alive() { return sAlive; }

  private:
    const std::function<Next(Source&)> mWork;
    unique_fd mOwn;
    unique_fd mOther;
    std::atomic<int> mEvents{0};
    static std::atomic<int> sAlive;
};
std::atomic<int> Source::sAlive{0};

// Sources, each of which holds its thread until the end.
class HeldThreads {
  public:
    void add() {
        mSources.push_back(std::make_shared<Source>([this](Source&) {
            ++mCount;
            mEnd.wait();
            return Next::DROP;
        }));
        EXPECT_NE(ThreadPool::instance().add(mSources.back(), true), 0U);
        mSources.back()->write();
    }
    void release() { mRelease.set_value(); }
    ~HeldThreads() {
        for (const auto& source : mSources) {
            EXPECT_TRUE(eventually([&] { return source.use_count() == 1; }));
        }
    }
    int count() const { return mCount; }

  private:
    std::promise<void> mRelease;
    const std::shared_future<void> mEnd = mRelease.get_future().share();
    std::atomic<int> mCount{0};
    std::vector<std::shared_ptr<Source>> mSources;
};

constexpr int kThreads = 4;

class ThreadPoolTest : public ::testing::Test {
  protected:
    ThreadPoolTest() {
        mPool.configure(kThreads, false);
        mPool.start();
    }
    ThreadPool& mPool = ThreadPool::instance();
};

TEST_F(ThreadPoolTest, ServesUntilDropped) {
    auto source = std::make_shared<Source>([](Source& s) {
        s.read();
        return s.events() < 3 ? Next::WAIT_FOR_INPUT : Next::DROP;
    });
    ASSERT_NE(mPool.add(source, true), 0U);
    for (int i = 1; i <= 3; ++i) {
        source->write();
        EXPECT_TRUE(eventually([&] { return source->events() == i; }));
    }
    EXPECT_TRUE(eventually([&] { return source.use_count() == 1; }));
    source->write();
    EXPECT_EQ(source->events(), 3);
}

TEST_F(ThreadPoolTest, SpaceIsAnEventToo) {
    const auto source = std::make_shared<Source>(
            [](Source& s) { return s.events() < 10 ? Next::WAIT_FOR_SPACE : Next::DROP; });
    ASSERT_NE(mPool.add(source, true), 0U);
    source->write();
    EXPECT_TRUE(eventually([&] { return source->events() == 10; }));
}

TEST_F(ThreadPoolTest, WithoutInputOnlyTheEndIsAnEvent) {
    const auto source = std::make_shared<Source>([](Source&) { return Next::DROP; });
    ASSERT_NE(mPool.add(source, false), 0U);
    source->write();
    // Another source's event arrives after the missing one would have.
    const auto other = std::make_shared<Source>([](Source&) { return Next::DROP; });
    ASSERT_NE(mPool.add(other, true), 0U);
    other->write();
    EXPECT_TRUE(eventually([&] { return other->events() == 1; }));
    EXPECT_EQ(source->events(), 0);
    source->hangUp();
    EXPECT_TRUE(eventually([&] { return source->events() == 1; }));
}

TEST_F(ThreadPoolTest, ExceptionEndsItsSourceOnly) {
    const testing::LogCapture log;
    auto source = std::make_shared<Source>(
            [](Source&) -> Next { throw std::runtime_error("thrown by the test"); });
    ASSERT_NE(mPool.add(source, true), 0U);
    source->write();
    EXPECT_TRUE(eventually([&] { return source.use_count() == 1; }));
    EXPECT_THAT(log.brief(), ::testing::ElementsAre("E/a connection ends: thrown by the test"));
    const auto other = std::make_shared<Source>([](Source&) { return Next::DROP; });
    ASSERT_NE(mPool.add(other, true), 0U);
    other->write();
    EXPECT_TRUE(eventually([&] { return other->events() == 1; }));
}

TEST_F(ThreadPoolTest, RemovedSourceHearsNothingMore) {
    const auto source = std::make_shared<Source>([](Source&) { return Next::DROP; });
    const uint64_t id = mPool.add(source, true);
    ASSERT_NE(id, 0U);
    mPool.remove(id);
    mPool.remove(id);  // has no effect
    EXPECT_EQ(source.use_count(), 1);
    source->write();
    const auto other = std::make_shared<Source>([](Source&) { return Next::DROP; });
    ASSERT_NE(mPool.add(other, true), 0U);
    other->write();
    EXPECT_TRUE(eventually([&] { return other->events() == 1; }));
    EXPECT_EQ(source->events(), 0);
}

TEST_F(ThreadPoolTest, SourceRemovedWhileItIsServed) {
    for (const bool isSilenced : {false, true}) {
        std::promise<void> serving;
        std::promise<void> removed;
        auto source = std::make_shared<Source>([&](Source& s) {
            if (isSilenced) {
                mPool.silence(s);
            }
            serving.set_value();
            removed.get_future().wait();
            return Next::WAIT_FOR_INPUT;  // input is pending: without DROP it would be served again
                                          // at once
        });
        const uint64_t id = mPool.add(source, true);
        source->write();
        serving.get_future().wait();
        mPool.remove(id);
        removed.set_value();
        EXPECT_TRUE(eventually([&] { return source.use_count() == 1; })) << isSilenced;
        EXPECT_EQ(source->events(), 1) << isSilenced;
    }
}

TEST_F(ThreadPoolTest, SilencedSourceIsHeardAgain) {
    auto source = std::make_shared<Source>([this](Source& s) {
        s.read();
        mPool.silence(s);
        mPool.silence(s);  // the second time has no effect
        return s.events() < 3 ? Next::WAIT_FOR_INPUT : Next::DROP;
    });
    ASSERT_NE(mPool.add(source, true), 0U);
    for (int i = 1; i <= 3; ++i) {
        source->write();
        EXPECT_TRUE(eventually([&] { return source->events() == i; }));
    }
    EXPECT_TRUE(eventually([&] { return source.use_count() == 1; }));
}

TEST_F(ThreadPoolTest, SilencedSourceMayWaitForSpace) {
    const auto source = std::make_shared<Source>([this](Source& s) {
        if (s.events() == 1) {
            s.read();  // from now on only space is an event
        }
        mPool.silence(s);
        return s.events() < 10 ? Next::WAIT_FOR_SPACE : Next::DROP;
    });
    ASSERT_NE(mPool.add(source, true), 0U);
    source->write();
    EXPECT_TRUE(eventually([&] { return source->events() == 10; }));
}

TEST_F(ThreadPoolTest, SourceThatCannotBeHeardAgainEnds) {
    const testing::LogCapture log;
    auto source = std::make_shared<Source>([this](Source& s) {
        mPool.silence(s);
        s.becomeFile();
        return Next::WAIT_FOR_INPUT;
    });
    ASSERT_NE(mPool.add(source, true), 0U);
    source->write();
    EXPECT_TRUE(eventually([&] { return source.use_count() == 1; }));
    EXPECT_THAT(log.brief(),
                ::testing::ElementsAre(
                        "E/a connection ends: cannot wait on it: Operation not permitted"));
}

TEST_F(ThreadPoolTest, UnannouncedThreadHasNoPlaceInAFullPool) {
    HeldThreads held;
    for (int i = 0; i < kThreads; ++i) {
        held.add();
    }
    EXPECT_TRUE(eventually([&] { return held.count() == kThreads; }));
    std::atomic<pid_t> late{0};
    std::thread([&] {
        late = gettid();
        mPool.join();
    }).detach();
    held.add();
    EXPECT_TRUE(eventually([&] { return late != 0 && testing::stateOf(late) == 'S'; }));
    EXPECT_EQ(held.count(), kThreads);
    held.release();
    EXPECT_TRUE(eventually([&] { return held.count() == kThreads + 1; }));
}

// In a process of its own, whose pool has not all its threads yet.
TEST_F(ThreadPoolTest, ThreadThatCannotBeStartedIsStartedLater) {
    if (testing::kSanitized) {
        GTEST_SKIP() << "a sanitizer ends the process when memory runs out";
    }
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto startLater = [&] {
        const testing::LogCapture log;
        {
            const testing::AddressLimit tooLittleForAStack(4 << 20);
            for (int i = 0; i < kThreads; ++i) {
                auto source = std::make_shared<Source>([](Source&) { return Next::DROP; });
                EXPECT_NE(mPool.add(source, true), 0U);
                source->write();
                EXPECT_TRUE(eventually([&] { return source.use_count() == 1; }));
            }
        }
        EXPECT_THAT(log.brief(),
                    ::testing::AllOf(::testing::SizeIs(kThreads),
                                     ::testing::Each(::testing::StartsWith(
                                             "E/cannot start an RPC thread, 1 run: "))));
        HeldThreads held;
        for (int i = 0; i < kThreads; ++i) {
            held.add();
        }
        EXPECT_TRUE(eventually([&] { return held.count() == kThreads; }));
        _exit(HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(startLater(), ::testing::ExitedWithCode(0), "");
}

TEST_F(ThreadPoolTest, NothingToWaitOn) {
    const testing::LogCapture log;
    class NoDescriptor : public EventSource {
        Next onEvents(uint32_t, ThreadPool&) override { return Next::DROP; }
        int descriptor() const override { return -1; }
    };
    EXPECT_EQ(mPool.add(std::make_shared<NoDescriptor>(), true), 0U);
    EXPECT_THAT(log.brief(),
                ::testing::ElementsAre("E/cannot wait on a connection: Bad file descriptor"));
}

TEST_F(ThreadPoolTest, ManySourcesComeAndGoWhileTheyAreServed) {
    testing::inThreads(4, [&](int thread) {
        for (int i = 0; i < 300; ++i) {
            const auto source = std::make_shared<Source>([](Source& s) {
                return s.events() % 2 == 0 ? Next::WAIT_FOR_INPUT : Next::WAIT_FOR_SPACE;
            });
            const uint64_t id = mPool.add(source, true);
            if ((i + thread) % 3 != 0) {
                source->write();
            }
            if ((i + thread) % 3 == 1) {
                source->hangUp();
            }
            mPool.remove(id);
        }
    });
    EXPECT_TRUE(eventually([] { return Source::alive() == 0; }));
}

}  // namespace
}  // namespace mlk::test
