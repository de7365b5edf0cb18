// The program against a service in another process.

#include <android-base/unique_fd.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "host/testing/Eventually.h"
#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "host/testing/ProcessUsage.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using mlk::testing::binDir;
using mlk::testing::HostSet;
using mlk::testing::Process;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

class EndToEndTest : public ::testing::Test {
  protected:
    static std::vector<std::string> mlkctl(std::vector<std::string> words) {
        words.insert(words.begin(), binDir() + "/mlkctl");
        return words;
    }

    // Starts the service and waits until it answers. Of some interfaces, or of all.
    void startService(std::vector<std::string> interfaces = {}) {
        const bool all = interfaces.empty();
        interfaces.insert(interfaces.begin(), TEST_SERVER_PROGRAM);
        mService = std::make_unique<Process>(interfaces);
        if (all) {
            ASSERT_EQ(Process(mlkctl({"wait", "--timeout", "60"})).wait(), 0);
        }
    }

    struct Outcome {
        int status;
        std::string out;
        std::string err;
    };
    static Outcome run(const std::vector<std::string>& words, const std::string& input = "") {
        Process::Options options;
        options.stdinText = input;
        Process process(mlkctl(words), options);
        const int status = process.wait();
        return {status, process.out(), process.err()};
    }

    HostSet mSet;
    std::unique_ptr<Process> mService;
};

TEST_F(EndToEndTest, ListsWhatIsRegistered) {
    startService();
    const std::string pid = std::to_string(mService->pid());
    const Outcome table = run({"list"});
    EXPECT_EQ(table.status, 0);
    EXPECT_EQ(table.err, "");
    const std::string row = "::IMlk[A-Za-z]+ +default +" + pid + " +[0-9]+\n";
    EXPECT_THAT(table.out, MatchesRegex("INTERFACE +INSTANCE +PID +THREADS\n"
                                        "(vendor.morlak.mlkconfigs@1.0" +
                                        row + ")+"));
    const Outcome json = run({"list", "--json"});
    const std::string first =
            R"([{"interface":"vendor.morlak.mlkconfigs@1.0::IMlkFrameworkConfigs",)"
            R"("instance":"default","state":"told","pid":)" +
            pid + R"(,"threads":)";
    EXPECT_THAT(json.out, StartsWith(first));
}

TEST_F(EndToEndTest, CallsWithEveryKindOfAnswer) {
    startService();
    EXPECT_EQ(run({"call", "IMlkProjectConfigs", "getPanelName"}).out,
              "{\"success\":true,\"value\":\"getPanelName\"}\n");
    EXPECT_EQ(run({"call", "IMlkTvConfigs", "setFlag", "HBBTV", "true"}).out,
              "{\"success\":true,\"value\":true}\n");
    EXPECT_EQ(run({"call", "IMlkProjectConfigs", "setProjectId", "-3"}).status, 0);
    EXPECT_EQ(run({"call", "IMlkProjectConfigs", "getTvFile", "", "--raw"}).out,
              std::string("\0\1\xff", 3));
    EXPECT_EQ(run({"call", "IMlkProjectConfigs", "getVendorPartitionFile", "x", "--raw"}).out,
              "in shared memory");
    EXPECT_EQ(run({"dump"}).out, "a dump\n");
    EXPECT_THAT(run({"show"}).out, HasSubstr("Panel             getPanelName\n"));
}

TEST_F(EndToEndTest, ARefusedCallIsNoAnswerAndTheServiceLivesOn) {
    startService();
    const Outcome refused = run({"call", "IMlkProjectConfigs", "getPowerOnMode"});
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(refused.out, "");
    EXPECT_THAT(
            refused.err,
            HasSubstr("getPowerOnMode: no answer: Status(EX_TRANSACTION_FAILED): 'BAD_VALUE: '"));
    EXPECT_EQ(run({"call", "IMlkProjectConfigs", "getPanelName"}).status, 0);
    EXPECT_TRUE(mService->running());
}

// As after a look-up that was given up: no object, though the service manager has the name.
TEST_F(EndToEndTest, WhatIsRegisteredWithoutAnObjectIsNotMissing) {
    startService({"IMlkTvConfigs"});
    ASSERT_TRUE(mlk::testing::eventually([] {
        return run({"call", "IMlkTvConfigs", "getAtvSystem"}).status == 0;
    }));
    Services services([](const Interface&) { return nullptr; });
    const auto registered = runMlkctl({"call", "IMlkTvConfigs", "getAtvSystem"}, services);
    EXPECT_EQ(registered.status, 1);
    EXPECT_EQ(registered.err, "mlkctl: IMlkTvConfigs: registered, but it does not answer\n");
    const auto missing = runMlkctl({"call", "IMlkProjectConfigs", "getPanelName"}, services);
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.err, StartsWith("mlkctl: IMlkProjectConfigs: not registered"));
}

// A client that has opened as many connections as it gets, and does nothing with them.
class IdleClient {
  public:
    IdleClient() : mProcess({TEST_SERVER_PROGRAM, "--idle"}, openInput()) {
        EXPECT_TRUE(mProcess.waitForOut(" connections\n"));
    }
    size_t connections() const { return std::stoul(mProcess.out()); }
    std::string name() const { return "process " + std::to_string(mProcess.pid()); }

  private:
    static Process::Options openInput() {
        Process::Options options;
        options.keepInputOpen = true;
        return options;
    }

    Process mProcess;
};

TEST_F(EndToEndTest, OneClientWithManyConnectionsShutsNobodyOut) {
    startService();
    constexpr size_t kDescriptors = 100;
    const mlk::testing::DescriptorLimit limit(mService->pid(), kDescriptors);
    const IdleClient idle;
    EXPECT_GT(idle.connections(), kDescriptors / 5);
    EXPECT_LT(idle.connections(), kDescriptors / 2);
    EXPECT_TRUE(mService->waitForErr(idle.name() + " has " + std::to_string(idle.connections()) +
                                     " connections"));
    const Outcome call = run({"call", "IMlkTvConfigs", "getAtvSystem"});
    EXPECT_EQ(call.status, 0) << call.err;
    const Outcome list = run({"list"});
    EXPECT_EQ(list.err, "");
    EXPECT_THAT(list.out, HasSubstr(' ' + std::to_string(mService->pid()) + ' '));
}

TEST_F(EndToEndTest, AServiceThatRefusesConnectionsIsNotMissing) {
    startService();
    const mlk::testing::DescriptorLimit limit(mService->pid(), 64);
    std::vector<std::unique_ptr<IdleClient>> clients;
    do {
        clients.push_back(std::make_unique<IdleClient>());
    } while (clients.back()->connections() > 0 && clients.size() < 20);
    EXPECT_TRUE(mService->waitForErr("no connection is left for " + clients.back()->name() + "; " +
                                     clients.front()->name() + " has the most: "));
    const std::string pid = std::to_string(mService->pid());
    const std::string refusal = "process " + pid +
                                " has the socket but refuses the connection, because other clients "
                                "hold too many; its log says which client has the most: end that "
                                "one\n";
    const Outcome call = run({"call", "IMlkTvConfigs", "getAtvSystem"});
    EXPECT_EQ(call.status, 1);
    EXPECT_EQ(call.err, "mlkctl: IMlkTvConfigs: " + refusal);
    const Outcome list = run({"list"});
    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.out, MatchesRegex("INTERFACE +INSTANCE +PID +THREADS\n"
                                       "(vendor[^ ]+ +default +refused +[0-9]+\n)+"));
    EXPECT_THAT(
            list.err,
            HasSubstr("mlkctl: vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs/default: " + refusal));
    const Outcome json = run({"list", "--json"});
    EXPECT_THAT(json.out, HasSubstr(R"("state":"refused","pid":)" + pid + ','));
    const Outcome wait = run({"wait", "--timeout", "0"});
    EXPECT_EQ(wait.status, 1);
    EXPECT_THAT(wait.err, HasSubstr("; " + refusal));
    clients.front() = nullptr;
    EXPECT_TRUE(mlk::testing::eventually([] {
        return run({"call", "IMlkTvConfigs", "getAtvSystem"}).status == 0;
    }));
}

// Each way of asking checks the byte of a truth value before it uses it.
TEST_F(EndToEndTest, ATruthValueThatIsNoneIsNoAnswer) {
    startService({"--unsound", "IMlkProjectConfigs", "IMlkTvConfigs", "IMlkFrameworkConfigs"});
    ASSERT_EQ(run({"wait", "--timeout", "60"}).status, 0);
    for (const char* method : {"getProjectId", "getHBBTVEnabled"}) {
        const Outcome call = run({"call", "IMlkProjectConfigs", method});
        EXPECT_EQ(call.status, 3) << method;
        EXPECT_EQ(call.out, "");
        EXPECT_EQ(call.err, std::string("mlkctl: IMlkProjectConfigs ") + method +
                                    ": no answer: the service sent a truth value of 2\n");
    }
    const Outcome batch = run({"batch"}, "[\"IMlkProjectConfigs\",\"getProjectId\"]\n");
    EXPECT_THAT(batch.out, HasSubstr("no answer: the service sent a truth value of 2"));
    const Outcome show = run({"show"});
    EXPECT_THAT(show.out, HasSubstr("  HbbTV             (no answer)\n"));
}

TEST_F(EndToEndTest, ADeathDuringTheCallIsUnreachable) {
    startService();
    const Outcome outcome = run({"call", "IMlkProjectConfigs", "getTvFile", "/die"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "mlkctl: IMlkProjectConfigs getTvFile: the service died during the call\n");
    mService->wait();
    EXPECT_EQ(run({"call", "IMlkProjectConfigs", "getPanelName"}).status, 1);
    EXPECT_EQ(run({"list"}).status, 1);
}

TEST_F(EndToEndTest, WaitNamesWhatIsMissing) {
    startService({"IMlkTvConfigs"});
    const Process wait(mlkctl({"wait", "--timeout", "3600"}));
    EXPECT_TRUE(wait.running());
    // When the first call is answered, the name is registered.
    Outcome outcome;
    do {
        outcome = run({"wait", "--timeout", "0"});
    } while (outcome.err.find("IMlkTvConfigs,") != std::string::npos);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "mlkctl: no answer within 0 s from IMlkProjectConfigs, IMlkFrameworkConfigs; sockets "
              "are looked for in " +
                      mSet.runtime() +
                      " (MLK_RUNTIME_DIR), which holds "
                      "vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs.default\n");
}

TEST_F(EndToEndTest, AServiceThatHangsHangsNeitherWaitNorList) {
    startService();
    mService->kill(SIGSTOP);
    siginfo_t stopped{};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(mService->pid()), &stopped, WSTOPPED | WNOWAIT), 0);
    const Outcome wait = run({"wait", "--timeout", "0.1"});
    EXPECT_EQ(wait.status, 1);
    EXPECT_THAT(wait.err,
                StartsWith("mlkctl: no answer within 0.1 s from IMlkProjectConfigs, IMlkTvConfigs, "
                           "IMlkFrameworkConfigs; sockets are looked for in " +
                           mSet.runtime()));
    const Outcome list = run({"list"});
    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.out, MatchesRegex("INTERFACE.*\n(vendor[^ ]+ +default +hangs +-\n){3}"));
    const Outcome call = run({"call", "--timeout=0.5", "IMlkProjectConfigs", "getPanelName"});
    EXPECT_EQ(call.status, 1);
    EXPECT_EQ(call.err,
              "mlkctl: IMlkProjectConfigs: the service gave no answer within 0.5 s; it hangs\n");
    const Outcome show = run({"show", "--timeout=0.5"});
    EXPECT_EQ(show.status, 1);
    EXPECT_THAT(show.err, StartsWith("mlkctl: IMlkProjectConfigs: the service gave no answer"));
    mService->kill(SIGCONT);
    EXPECT_EQ(run({"wait"}).status, 0);
}

// Names whose servers accept connections and stay silent, and some that do not even accept one.
TEST_F(EndToEndTest, HundredsOfSilentNamesAreListedSoon) {
    constexpr size_t kNames = 300;
    constexpr size_t kFull = 3;
    std::vector<::android::base::unique_fd> sockets;
    for (size_t i = 0; i < kNames; ++i) {
        const bool isFull = i < kFull;
        const std::string path = mSet.runtime() + "/silent@1.0::I" + std::to_string(i) + ".default";
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        ASSERT_LT(path.size(), sizeof(address.sun_path));
        path.copy(address.sun_path, path.size());
        sockets.emplace_back(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
        ASSERT_EQ(
                bind(sockets.back().get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)),
                0);
        ASSERT_EQ(listen(sockets.back().get(), isFull ? 0 : 10), 0);
        if (isFull) {
            sockets.emplace_back(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
            ASSERT_EQ(connect(sockets.back().get(), reinterpret_cast<sockaddr*>(&address),
                              sizeof(address)),
                      0);
        }
    }
    const auto start = std::chrono::steady_clock::now();
    const Outcome list = run({"list"});
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(std::count(list.out.begin(), list.out.end(), '\n'), kNames + 1);
    EXPECT_THAT(list.out, MatchesRegex("INTERFACE.*\n(silent@1[^ ]+ +default +hangs +-\n)+"));
    // It takes two; one after the other they would take minutes.
    EXPECT_LT(taken, std::chrono::seconds(20));
}

TEST_F(EndToEndTest, ABatchIsAConversation) {
    startService();
    Process::Options options;
    options.keepInputOpen = true;
    Process batch(mlkctl({"batch"}), options);
    batch.send("[\"IMlkProjectConfigs\",\"getPanelName\"]\n");
    ASSERT_TRUE(batch.waitForOut("\"getPanelName\"}\n"));
    batch.send("[\"IMlkProjectConfigs\",\"getPowerOnMode\"]\n\n[\"IMlkTvConf");
    ASSERT_TRUE(batch.waitForOut("\"no-answer\""));
    ASSERT_TRUE(batch.waitForOut("\"usage\""));
    batch.send("igs\",\"getAtvSystem\"]");
    batch.closeInput();
    EXPECT_EQ(batch.wait(), 0);
    EXPECT_THAT(batch.out(), ::testing::EndsWith("\n{\"success\":true,\"value\":42}\n"));
    EXPECT_EQ(batch.err(), "");
}

TEST_F(EndToEndTest, ABatchOutlivesTheService) {
    startService();
    Process::Options options;
    options.keepInputOpen = true;
    Process batch(mlkctl({"batch"}), options);
    const std::string call = "[\"IMlkProjectConfigs\",\"getPanelName\"]\n";
    batch.send(call);
    ASSERT_TRUE(batch.waitForOut("getPanelName\"}\n"));
    batch.send("[\"IMlkProjectConfigs\",\"getTvFile\",\"/die\"]\n");
    ASSERT_TRUE(batch.waitForOut("getTvFile: the service died during the call"));
    mService->wait();
    batch.send(call);
    ASSERT_TRUE(batch.waitForOut("IMlkProjectConfigs: not registered"));
    startService();
    batch.send("[\"IMlkProjectConfigs\",\"getRegionName\"]\n");
    ASSERT_TRUE(batch.waitForOut("{\"success\":true,\"value\":\"getRegionName\"}\n"));
    // The service dies while no call is under way, so no line reports its death.
    mService->kill(SIGKILL);
    mService->wait();
    startService();
    batch.send("[\"IMlkProjectConfigs\",\"getClientType\"]\n");
    ASSERT_TRUE(batch.waitForOut("getClientType\"}\n"));
    EXPECT_EQ(batch.out().find("getClientType: "), std::string::npos) << batch.out();
    batch.closeInput();
    EXPECT_EQ(batch.wait(), 0);
}

TEST_F(EndToEndTest, ATextTooLongToTravelIsNoAnswer) {
    startService();
    const std::string path(1'500'000, 'x');
    const Outcome outcome =
            run({"batch"}, "[\"IMlkProjectConfigs\",\"isFileExist\",\"" + path + "\"]\n" +
                                   "[\"IMlkProjectConfigs\",\"isFileExist\",\"/\"]\n");
    EXPECT_THAT(
            outcome.out,
            MatchesRegex(R"(\{"error":"no-answer","message":"IMlkProjectConfigs isFileExist: no )"
                         "answer: Status\\(EX_TRANSACTION_FAILED\\): .*\"}\n"
                         R"(\{"success":true,"value":42\})"
                         "\n"));
}

TEST_F(EndToEndTest, APipeThatNobodyReadsEndsItQuietly) {
    startService();
    std::string input;
    for (int i = 0; i < 100'000; ++i) {
        input += "[\"IMlkProjectConfigs\",\"getPanelName\"]\n";
    }
    const std::string input_file = mSet.dir().write("batch", input);
    // The shell tells the status of each part of the pipe.
    Process shell({"bash", "-c", "\"$0\" batch < \"$1\" | head -n 1; echo \"${PIPESTATUS[0]}\"",
                   binDir() + "/mlkctl", input_file});
    EXPECT_EQ(shell.wait(), 0);
    EXPECT_EQ(shell.out(), "{\"success\":true,\"value\":\"getPanelName\"}\n1\n");
    EXPECT_EQ(shell.err(), "");
}

TEST_F(EndToEndTest, MessagesStandOnStandardError) {
    const Outcome outcome = run({"call", "IMlkTvConfig", "getFlag", "1"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr("did you mean IMlkTvConfigs?"));
}

}  // namespace

}  // namespace mlk::ctl
