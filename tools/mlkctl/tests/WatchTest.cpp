// `mlkctl watch`, on fakes in this process and as a program.

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "host/testing/Eventually.h"
#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "host/testing/ThreadState.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using mlk::testing::binDir;
using mlk::testing::HostSet;
using mlk::testing::Process;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class WatchTest : public ::testing::Test {
  protected:
    // Starts the service and the watch, which has looked once when this returns.
    void start(std::vector<std::string> options = {}) {
        mService = std::make_unique<Process>(std::vector<std::string>{TEST_SERVER_PROGRAM});
        ASSERT_EQ(Process({binDir() + "/mlkctl", "wait", "--timeout", "60"}).wait(), 0);
        options.insert(options.begin(), {binDir() + "/mlkctl", "watch", "--interval", "0.01"});
        mWatch = std::make_unique<Process>(options);
        ASSERT_TRUE(mWatch->waitForOut("watching: "));
    }

    HostSet mSet;
    std::unique_ptr<Process> mService;
    std::unique_ptr<Process> mWatch;
};

TEST_F(WatchTest, ShowsPropertiesAsTheyChange) {
    mSet.setProperty("a.key", "1");
    start();
    EXPECT_EQ(mWatch->out(),
              "watching: model 42 getProjectName, country (none saved), 24 features on, "
              "1 properties\n");
    mSet.setProperty("a.key", "2");
    ASSERT_TRUE(mWatch->waitForOut("property a.key: \"1\" -> \"2\"\n"));
    mSet.setProperty("b.key", "x\n");
    ASSERT_TRUE(mWatch->waitForOut("property b.key: none -> \"x\\n\"\n"));
    ASSERT_EQ(unlink(mSet.dir().path("data/property/a.key").c_str()), 0);
    ASSERT_TRUE(mWatch->waitForOut("property a.key: \"2\" -> none\n"));
    mWatch->kill(SIGINT);
    EXPECT_EQ(mWatch->wait(), 0);
    EXPECT_EQ(mWatch->err(), "");
}

TEST_F(WatchTest, EndsAfterSoManyChanges) {
    start({"--count", "2"});
    mSet.setProperty("a", "1");
    ASSERT_TRUE(mWatch->waitForOut("property a: none -> \"1\"\n"));
    EXPECT_TRUE(mWatch->running());
    mSet.setProperty("b", "1");
    EXPECT_EQ(mWatch->wait(), 0);
    EXPECT_THAT(mWatch->out(), EndsWith("property b: none -> \"1\"\n"));
}

TEST_F(WatchTest, EndsWithTheService) {
    start();
    mService->kill(SIGKILL);
    mService->wait();
    EXPECT_EQ(mWatch->wait(), 1);
    EXPECT_THAT(mWatch->err(), StartsWith("mlkctl: IMlk"));
}

TEST_F(WatchTest, EndsOnSigterm) {
    start();
    mWatch->kill(SIGTERM);
    EXPECT_EQ(mWatch->wait(), 0);
    EXPECT_EQ(mWatch->err(), "");
}

// Whether the process has a handler for the signal.
bool catches(pid_t process, int signal) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("SigCgt:", 0) == 0) {
            return (std::stoull(line.substr(7), nullptr, 16) >> (signal - 1) & 1U) != 0;
        }
    }
    return false;
}

size_t threadsOf(pid_t process) {
    const std::filesystem::directory_iterator threads("/proc/" + std::to_string(process) + "/task");
    return static_cast<size_t>(std::distance(begin(threads), end(threads)));
}

TEST_F(WatchTest, EndsAtOnceWhileTheServiceHangs) {
    for (const int signal : {SIGINT, SIGTERM}) {
        start();
        mWatch->kill(SIGKILL);
        mWatch->wait();
        mService->kill(SIGSTOP);
        // The question may take a day: only the signal ends it.
        Process watch({binDir() + "/mlkctl", "watch", "--timeout", "86400"});
        // The thread that asks waits for its answer. Until it does, the signal might come on a
        // thread that the sanitizer does not know yet.
        ASSERT_TRUE(mlk::testing::eventually([&] {
            return catches(watch.pid(), signal) && threadsOf(watch.pid()) > 1 &&
                   mlk::testing::allSleep(watch.pid());
        }));
        watch.kill(signal);
        EXPECT_EQ(watch.wait(), 0);
        EXPECT_EQ(watch.err(), "");
    }
}

TEST_F(WatchTest, EndsWhenNobodyReads) {
    start();
    // No value changes: only a look at the pipe tells that its reader has gone.
    Process shell({"bash", "-c", "\"$0\" watch --interval 0.01 | head -n 1; echo ${PIPESTATUS[0]}",
                   binDir() + "/mlkctl"});
    EXPECT_EQ(shell.wait(), 0);
    EXPECT_THAT(shell.out(), EndsWith(" properties\n1\n"));
    EXPECT_EQ(shell.err(), "");
}

// Fakes that change between two looks. Each look begins with the model.
TEST(WatchFakesTest, ShowsModelCountryAndFeatures) {
    const HostSet set;
    Script script;
    script.text = "M1";
    script.number = 1;
    script.bytes = {};
    int looks = 0;
    script.onCall = [&](const Script::Words& call) {
        if (call[0] != "getProjectId" || ++looks != 3) {
            return;
        }
        script.text = "M2";
        script.number = 2;
        script.flag = false;
        const std::string saved = "COUNTRY_ID=14\n";
        script.bytes.assign(saved.begin(), saved.end());
    };
    const Outcome outcome = runMlkctl({"watch", "--interval=0.01", "--count=28"}, script);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, StartsWith("watching: model 1 M1, country (none saved), 24 features "
                                        "on, 0 properties\n"
                                        "country: (none saved) -> GERMANY\n"
                                        "feature ATSC_CLOSE_CAPTION: on -> off\n"));
    EXPECT_THAT(outcome.out, EndsWith("\nmodel: 1 M1 -> 2 M2\n"
                                      "system ATV: 1 -> 2\n"
                                      "system DTV: 1 -> 2\n"));
    EXPECT_EQ(looks, 3);
}

TEST(WatchFakesTest, AValueThatIsNotToldIsNoChangeOfTheOthers) {
    const HostSet set;
    Script script;
    script.bytes = {};
    int looks = 0;
    script.onCall = [&](const Script::Words& call) {
        if (call[0] == "getProjectId" && ++looks == 2) {
            script.failing = {"getAtvSystem"};
        }
    };
    const Outcome outcome = runMlkctl({"watch", "--interval=0.01", "--count=1"}, script);
    EXPECT_THAT(outcome.out, EndsWith("properties\nsystem ATV: 42 -> (no answer)\n"));
}

TEST(WatchOptionsTest, AreChecked) {
    Script script;
    for (const char* interval : {"0", "0.001", "-1", "x", "86401", ""}) {
        EXPECT_EQ(runMlkctl({"watch", std::string("--interval=") + interval}, script).status, 2)
                << interval;
    }
    for (const char* count : {"0", "-1", "x", "1.5", ""}) {
        const Outcome outcome = runMlkctl({"watch", std::string("--count=") + count}, script);
        EXPECT_EQ(outcome.status, 2) << count;
        EXPECT_THAT(outcome.err, HasSubstr("--count"));
    }
    const Outcome outcome = runMlkctl({"watch"}, script, "", {"IMlkTvConfigs"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr("IMlkTvConfigs: not registered"));
}

}  // namespace

}  // namespace mlk::ctl
