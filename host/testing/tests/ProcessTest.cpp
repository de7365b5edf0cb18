#include "host/testing/Process.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

#include <chrono>
#include <cstdlib>
#include <system_error>
#include <thread>

#include "host/testing/TempDir.h"

namespace mlk::testing {
namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;

bool alive(pid_t pid) {
    return ::kill(pid, 0) == 0;
}

TEST(Process, CapturesBothStreamsAndTheStatus) {
    Process process({"sh", "-c", "echo out; echo err >&2; exit 7"});
    EXPECT_EQ(process.wait(), 7);
    EXPECT_EQ(process.out(), "out\n");
    EXPECT_EQ(process.err(), "err\n");
    EXPECT_EQ(process.wait(), 7);
}

TEST(Process, TellsTheSignalThatEndedIt) {
    Process process({"/bin/sh", "-c", "kill -TERM $$"});
    EXPECT_EQ(process.wait(), 128 + SIGTERM);
}

TEST(Process, FeedsInputAndReadsOutputOfAnySizeAtOnce) {
    const std::string text(3'000'000, 'x');
    Process process({"cat"}, {{}, text});
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(process.out(), text);
}

TEST(Process, InputThatIsNotReadIsDropped) {
    Process process({"true"}, {{}, std::string(3'000'000, 'x')});
    EXPECT_EQ(process.wait(), 0);
}

TEST(Process, WithoutInputReadsItsEnd) {
    Process process({"cat"});
    EXPECT_EQ(process.wait(), 0);
}

TEST(Process, TalksOverAnInputThatStaysOpen) {
    Process process({"cat"}, {{}, "one\n", true});
    EXPECT_TRUE(process.waitForOut("one\n"));
    process.send("two\n");
    EXPECT_TRUE(process.waitForOut("two\n"));
    EXPECT_TRUE(process.running());
    process.closeInput();
    EXPECT_EQ(process.wait(), 0);
    EXPECT_FALSE(process.running());
    EXPECT_EQ(process.out(), "one\ntwo\n");
}

TEST(Process, AddsAndReplacesVariables) {
    setenv("MLK_PROCESS_TEST", "former", 1);
    setenv("MLK_PROCESS_KEPT", "kept", 1);
    Process process({"sh", "-c", "echo $MLK_PROCESS_TEST $MLK_PROCESS_KEPT $MLK_PROCESS_NEW"},
                    {{{"MLK_PROCESS_TEST", "changed"}, {"MLK_PROCESS_NEW", "new"}}});
    process.wait();
    EXPECT_EQ(process.out(), "changed kept new\n");
}

TEST(Process, StartsInAFolder) {
    const TempDir dir;
    Process process({"pwd"}, {{}, "", false, dir.path()});
    process.wait();
    EXPECT_EQ(process.out(), dir.path() + "\n");
}

TEST(Process, WaitsForErrors) {
    Process process({"sh", "-c", "echo ready >&2; read line; echo done >&2"}, {{}, "", true});
    EXPECT_TRUE(process.waitForErr("ready\n"));
    EXPECT_FALSE(process.waitForErr("done", seconds(0)));
    process.send("go\n");
    EXPECT_TRUE(process.waitForErr("done"));
}

TEST(Process, StopsWaitingWhenNothingCanComeAnyMore) {
    const auto start = steady_clock::now();
    const Process process({"true"});
    EXPECT_FALSE(process.waitForErr("never", seconds(60)));
    const Process deaf({"sh", "-c", "exec >&- 2>&-; read line"}, {{}, "", true});
    EXPECT_FALSE(deaf.waitForErr("never", seconds(60)));
    EXPECT_LT(steady_clock::now() - start, seconds(30));
}

TEST(Process, DoesNotWaitForAGrandchildThatHoldsItsStreams) {
    const auto start = steady_clock::now();
    Process process({"sh", "-c", "sleep 60 & echo $!"});
    EXPECT_EQ(process.wait(), 0);
    EXPECT_LT(steady_clock::now() - start, seconds(30));
    ::kill(std::atoi(process.out().c_str()), SIGKILL);
}

TEST(Process, IsKilledAndReapedWithItsObject) {
    pid_t pid = 0;
    {
        const Process process({"sleep", "600"});
        pid = process.pid();
        EXPECT_TRUE(alive(pid));
    }
    EXPECT_FALSE(alive(pid));
}

TEST(Process, DiesWithTheThreadThatStartedIt) {
    std::unique_ptr<Process> process;
    std::thread([&] {
        process = std::make_unique<Process>(std::vector<std::string>{"sleep", "600"});
    }).join();
    EXPECT_EQ(process->wait(), 128 + SIGKILL);
}

TEST(Process, AProgramThatIsNotThereIsAnError) {
    EXPECT_THROW(Process({"/no/such/program"}), std::system_error);
    EXPECT_THROW(Process({"no-such-program-anywhere"}), std::system_error);
    EXPECT_THROW(Process({}), std::invalid_argument);
}

TEST(Process, CanBeSentSignals) {
    Process process({"sh", "-c", "trap 'echo caught; exit 3' USR1; echo ready; read line"},
                    {{}, "", true});
    ASSERT_TRUE(process.waitForOut("ready"));
    process.kill(SIGUSR1);
    EXPECT_EQ(process.wait(), 3);
    process.kill(SIGUSR1);
    EXPECT_EQ(process.out(), "ready\ncaught\n");
}

TEST(Process, KnowsTheFolderOfThePrograms) {
    setenv("MLK_BIN_DIR", "/some/where", 1);
    EXPECT_EQ(binDir(), "/some/where");
    unsetenv("MLK_BIN_DIR");
    EXPECT_THROW(binDir(), std::runtime_error);
}

}  // namespace
}  // namespace mlk::testing
