// Delivery in shared memory if the allocator is missing, has no memory, does not answer, or gives a
// block of another size.

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "host/testing/Ask.h"
#include "host/testing/Eventually.h"
#include "service/tests/Delivery.h"

namespace vendor::morlak::mlkconfigs::V1_0 {
namespace {

using ::mlk::testing::eventually;

class AllocatorTest : public Delivery {
  protected:
    /** Replaces the real allocator by service_fake_allocator with that argument. */
    void startFake(const std::string& argument) {
        stopAllocator();
        mAllocator = std::make_unique<::mlk::testing::Process>(
                std::vector<std::string>{SERVICE_FAKE_ALLOCATOR, argument});
        ASSERT_TRUE(mAllocator->waitForErr("registered")) << mAllocator->err();
    }
    /** Stops the allocator: it keeps the sockets of its clients and reads nothing from them. */
    void silenceAllocator() {
        mAllocator->kill(SIGSTOP);
        siginfo_t info{};
        ASSERT_EQ(waitid(P_PID, static_cast<id_t>(mAllocator->pid()), &info, WSTOPPED | WNOWAIT),
                  0);
    }
    std::string panel() {
        const auto panel = ::mlk::testing::ask(*mService, &IMlkProjectConfigs::getPanelName);
        return panel ? std::string(panel->value) : "no answer";
    }
};

/** Calls that ask for shared memory, each on its own thread, until they have an answer. */
class Askers {
  public:
    Askers(int count, const std::function<std::string()>& ask)
        : mAnswers(static_cast<size_t>(count)) {
        for (std::string& answer : mAnswers) {
            mThreads.emplace_back([this, &answer, ask] {
                answer = ask();
                ++mAnswered;
            });
        }
    }
    ~Askers() { answers(); }
    Askers(const Askers&) = delete;
    Askers& operator=(const Askers&) = delete;

    int answered() const { return mAnswered; }
    const std::vector<std::string>& answers() {
        for (std::thread& thread : mThreads) {
            thread.join();
        }
        mThreads.clear();
        return mAnswers;
    }

  private:
    std::vector<std::string> mAnswers;
    std::vector<std::thread> mThreads;
    std::atomic<int> mAnswered{0};
};

constexpr const char* kNoPlace = "too many calls wait for the allocator already";

TEST_F(AllocatorTest, NothingIsSharedWithoutAnAllocator) {
    const std::string path = file(5);
    EXPECT_TRUE(isSharedWhole(path));
    stopAllocator();
    EXPECT_EQ(shared(path), "empty memory");
    EXPECT_TRUE(isSentWhole(path));
    mAllocator = startAllocator();
    EXPECT_TRUE(isSharedWhole(path)) << "it is looked for at every call";
}

TEST_F(AllocatorTest, NothingIsSharedWhereTheAllocatorHasNoMemory) {
    stopAllocator();
    mAllocator = startAllocator({"prlimit", "--fsize=4096"});
    EXPECT_EQ(shared(file(4097)), "empty memory");
    EXPECT_TRUE(isLogged(
            "getVendorPartitionFile, no shared memory of 4097 bytes: the allocator has none\n"));
    EXPECT_TRUE(isSharedWhole(file(4096)));
}

TEST_F(AllocatorTest, SilentAllocatorHoldsThreeCallsAndNoMore) {
    const std::string path = file(5);
    EXPECT_EQ(shared(path), "5 bytes of ashmem");
    silenceAllocator();
    {
        Askers askers(4, [&] { return shared(path); });
        EXPECT_TRUE(eventually([&] { return logged(kNoPlace) > 0; }));
        mAllocator->kill(SIGCONT);
        EXPECT_THAT(askers.answers(), ::testing::Contains("empty memory"));
    }
    EXPECT_TRUE(isLogged(kNoPlace, 1)) << "three were let in";
    EXPECT_TRUE(isSharedWhole(path)) << "the places are free again";
}

TEST_F(AllocatorTest, OthersAreAnsweredWhileTheAllocatorIsSilent) {
    constexpr int kMoreThanThePoolHas = 12;
    const std::string path = file(5);
    silenceAllocator();
    {
        Askers askers(kMoreThanThePoolHas, [&] { return shared(path); });
        Askers other(1, [&] {
            EXPECT_TRUE(eventually([&] { return askers.answered() > 0; }));
            return panel();
        });
        EXPECT_TRUE(eventually([&] { return other.answered() == 1; }));
        mAllocator->kill(SIGCONT);
        EXPECT_THAT(other.answers(), ::testing::ElementsAre("PANEL_ONE"));
    }
    EXPECT_TRUE(eventually([&] { return logged(kNoPlace) > 0; }));
    EXPECT_TRUE(isSharedWhole(path));
}

TEST_F(AllocatorTest, SmallerBlockIsNotWrittenBeyondItsEnd) {
    startFake("-1");
    const std::string path = file(4096);
    EXPECT_EQ(shared(path), "empty memory");
    EXPECT_TRUE(
            isLogged("): getVendorPartitionFile, no shared memory of 4096 bytes: the block "
                     "cannot be mapped, or is smaller\n"));
    EXPECT_EQ(panel(), "PANEL_ONE");
}

TEST_F(AllocatorTest, BlockOfAnAllocatorThatFailedIsNotTaken) {
    startFake("refusing");
    EXPECT_EQ(shared(file(4096)), "empty memory");
    EXPECT_TRUE(isLogged(
            "getVendorPartitionFile, no shared memory of 4096 bytes: the allocator has none\n"));
}

TEST_F(AllocatorTest, LargerBlockIsAnsweredWithTheSizeOfTheFile) {
    startFake("5000");
    EXPECT_TRUE(isSharedWhole(file(4096)));
}

}  // namespace
}  // namespace vendor::morlak::mlkconfigs::V1_0
