// The commands that show something: list, show, dump, prop; and wait. In this process, on fakes.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <sstream>

#include "host/testing/HostSet.h"
#include "tools/common/Table.h"
#include "tools/mlkctl/CommandLine.h"
#include "tools/mlkctl/Registry.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using mlk::testing::HostSet;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(TableTest, AlignsColumns) {
    EXPECT_EQ(aligned({}), "");
    EXPECT_EQ(aligned({{"Heading that is long"},
                       {"  a", "1"},
                       {"", "2"},
                       {""},
                       {"\xc3\xa4\xc3\xb6\xc3\xbc\xc3\x9f", "", "x"}}),
              "Heading that is long\n  a   1\n      2\n\n\xc3\xa4\xc3\xb6\xc3\xbc\xc3\x9f    x\n");
}

TEST(RegistryTest, ReadsTheNumberOfThreads) {
    EXPECT_EQ(threadsIn("Name:\tx\nThreads:\t12\nSigQ:\t0/1\n"), 12);
    EXPECT_EQ(threadsIn("Name:\tx\nThreads:\t12"), 12);
    EXPECT_EQ(threadsIn("Name:\tThreads: 3\n"), std::nullopt);
    EXPECT_EQ(threadsIn("Name:\tx\nThreads:\n"), std::nullopt);
    EXPECT_EQ(threadsIn("Name:\tx\nThreads:\tmany\n"), std::nullopt);
    EXPECT_EQ(threadsIn(""), std::nullopt);
}

TEST(WaitTest, ReturnsWhenAllAnswer) {
    Script script;
    const Outcome outcome = runMlkctl({"wait", "--timeout", "0"}, script);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
}

// Each command with a time limit takes a day and no more, written either way.
TEST(TimeoutTest, IsADayAtMost) {
    Script script;
    const std::vector<std::vector<std::string>> commands = {
            {"wait"}, {"show"}, {"dump"}, {"batch"}, {"call", "IMlkTvConfigs", "pvrEnabled"}};
    for (const std::vector<std::string>& command : commands) {
        const auto statusWith = [&](const std::vector<std::string>& option) {
            std::vector<std::string> words = command;
            words.insert(words.begin() + 1, option.begin(), option.end());
            return runMlkctl(words, script).status;
        };
        EXPECT_EQ(statusWith({"--timeout=86400"}), 0) << command[0];
        EXPECT_EQ(statusWith({"--timeout", "86400"}), 0) << command[0];
        EXPECT_EQ(statusWith({"--timeout=86401"}), 2) << command[0];
        EXPECT_EQ(statusWith({"--timeout", "86400.0001"}), 2) << command[0];
    }
}

TEST(WaitTest, AsksUntilTheyDo) {
    Script script;
    std::atomic<int> asked{0};
    Services services([&](const Interface& interface) -> ::android::sp<IBase> {
        return ++asked < 10 ? nullptr : finderOf(script)(interface);
    });
    EXPECT_EQ(runMlkctl({"wait"}, services).status, 0);
    EXPECT_GE(asked, 12);
}

TEST(WaitTest, NamesWhatDoesNotAnswer) {
    Script script;
    const std::set<std::string> missing = {"IMlkTvConfigs", "IMlkFrameworkConfigs"};
    const Outcome outcome = runMlkctl({"wait", "--timeout", "0.05"}, script, "", missing);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("mlkctl: no answer within 0.05 s from IMlkTvConfigs, "
                                        "IMlkFrameworkConfigs; sockets are "));
}

TEST(WaitTest, WhatIsRegisteredButDeadDoesNotAnswer) {
    Script script;
    script.dying = {"ping"};
    const Outcome outcome = runMlkctl({"wait", "--timeout", "0"}, script);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("mlkctl: no answer within 0 s from IMlkTvConfigs; "));
}

TEST(WaitTest, RefusesWhatIsNoTime) {
    Script script;
    for (const char* text : {"", "-1", "nan", "inf", "1e3", "0x10", "86401", "1s", "1.2.3", "."}) {
        const Outcome outcome = runMlkctl({"wait", std::string("--timeout=") + text}, script);
        EXPECT_EQ(outcome.status, 2) << text;
        EXPECT_THAT(outcome.err, HasSubstr("SECONDS")) << text;
    }
    EXPECT_EQ(runMlkctl({"wait", "--timeout", "abc"}, script).err,
              "mlkctl: --timeout: SECONDS is a number from 0 to 86400, not \"abc\" "
              "(see mlkctl wait --help)\n");
}

TEST(ShowTest, ShowsTheSet) {
    Script script;
    script.text = "value of a text";
    script.number = 5;
    const Outcome outcome = runMlkctl({"show"}, script);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, StartsWith("Project\n"
                                        "  Name              value of a text\n"
                                        "  Index             5\n"
                                        "  Highest index     5\n"));
    EXPECT_THAT(outcome.out,
                HasSubstr("\n  Project files     one\n                    two\n\nPicture\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\n  Suspend forced    on\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\n  Features on       ATV, ATV_ANTENNA, ATV_CABLE, DTV,\n  "
                                       "                  DTV_ANTENNA, "));
    EXPECT_THAT(outcome.out, HasSubstr("\n  Features off      -\n"));
}

TEST(ShowTest, AsksForTheRightThings) {
    Script script;
    const Outcome outcome = runMlkctl({"show", "--json"}, script);
    EXPECT_EQ(outcome.status, 0);
    for (const char* part :
         {R"({"project":{"name":"getProjectName","index":42,"highestIndex":42,)"
          R"("customer":"getCustomerId","clientType":"getClientType",)"
          R"("region":"getRegionName","modelFile":"","boardFile":"",)"
          R"("projectFiles":["one","two"]},"picture":{)",
          R"("panel":"getPanelName","pictureQuality":"getPQPath",)",
          R"("tunerType":"getTunerType","tuner0":"getTunerConfig","tuner1":"getTunerConfig",)",
          R"("inputs":"getInputSource",)", R"("featuresOff":[]},"country":{)",
          R"("power":{"powerOnMode":42,"logo":"getPowerLogoPath",)",
          R"("suspendToRam":true,"suspendForced":true,"wakeOnWireless":true},)",
          R"("partitions":{"tvconfigs":"getTvconfigsPath","tvdata":"getTvdataPath",)"
          R"("impdata":"getImpdataPath"},"missing":[]})"}) {
        EXPECT_THAT(outcome.out, HasSubstr(part));
    }
    const auto asked = [&](const std::vector<std::string>& call) {
        return std::count(script.calls.begin(), script.calls.end(), call);
    };
    EXPECT_EQ(asked({"getTunerConfig", "0"}), 1);
    EXPECT_EQ(asked({"getTunerConfig", "1"}), 1);
    EXPECT_EQ(asked({"getEQPath", "1"}), 1);
    EXPECT_EQ(asked({"getAMPSelection", "1"}), 1);
    EXPECT_EQ(asked({"getFlag", "25"}), 2);
}

TEST(ShowTest, SaysWhyThereIsNoValue) {
    Script script;
    script.text = "\x1b[31m";
    script.texts = {};
    script.silent = {"getPowerOnMode"};
    script.failing = {"getPanelName"};
    Outcome outcome = runMlkctl({"show"}, script);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out,
                AllOf(HasSubstr("  Mode at power-on  (no answer)\n"),
                      HasSubstr("  Panel             (no answer)\n"),
                      HasSubstr("  Project files     -\n"),
                      HasSubstr(R"(  Name              \u001b[31m)"), Not(HasSubstr("\x1b"))));
    script.success = false;
    outcome = runMlkctl({"show"}, script);
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("  Name              (refused)\n"),
                                   HasSubstr("  Features on       (refused)\n")));
    EXPECT_THAT(runMlkctl({"show", "--json"}, script).out,
                AllOf(HasSubstr(R"("name":null,)"), HasSubstr(R"("projectFiles":[])"),
                      HasSubstr(R"("powerOnMode":null,)")));
}

TEST(ShowTest, AnEmptyValueIsADash) {
    Script script;
    script.emptyTexts = true;
    script.texts = {"one", ""};
    EXPECT_THAT(runMlkctl({"show"}, script).out,
                AllOf(HasSubstr("  Panel             -\n"),
                      HasSubstr("  Project files     one\n                    -\n")));
}

TEST(ShowTest, ShowsWhatCanBeReached) {
    Script script;
    Outcome outcome = runMlkctl({"show"}, script, "", {"IMlkFrameworkConfigs"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("mlkctl: IMlkFrameworkConfigs: not registered: "));
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("  Suspend forced    (not reachable)\n"),
                                   HasSubstr("  Panel             getPanelName\n")));
    // A service that dies meanwhile.
    script.dying = {"getPanelName"};
    outcome = runMlkctl({"show"}, script);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "mlkctl: IMlkProjectConfigs: the service died during the call\n");
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("  Name              getProjectName\n"),
                                   HasSubstr("  Panel             (not reachable)\n"),
                                   HasSubstr("  Overscan          (not reachable)\n"),
                                   HasSubstr("  Suspend forced    on\n")));
    outcome = runMlkctl({"show"}, script, "",
                        {"IMlkProjectConfigs", "IMlkTvConfigs", "IMlkFrameworkConfigs"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 3);
    EXPECT_THAT(outcome.err, HasSubstr("mlkctl: IMlkTvConfigs: not registered: "));
}

TEST(DumpTest, PrintsWhatTheServiceWrites) {
    Script script;
    script.dump = std::string("ProjectConfigs:\n\0\xff", 18);
    for (int i = 0; i < 20; ++i) {
        script.dump += std::string(10'000, static_cast<char>('a' + i)) + '\n';
    }
    const Outcome outcome = runMlkctl({"dump"}, script);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, script.dump);
    EXPECT_EQ(outcome.err, "");
}

TEST(DumpTest, SaysWhenThereIsNone) {
    Script script;
    script.dump = "";
    Outcome outcome = runMlkctl({"dump"}, script);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.err, "mlkctl: the service wrote no dump\n");
    script.dying = {"debug"};
    EXPECT_EQ(runMlkctl({"dump"}, script).status, 1);
    outcome = runMlkctl({"dump"}, script, "", {"IMlkProjectConfigs"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("mlkctl: IMlkProjectConfigs: not registered: "));
}

// What mlkctl writes to a terminal, or to a pipe.
std::string shownOn(bool terminal, const std::vector<std::string>& words, Script& script) {
    int reader = -1;
    int writer = -1;
    if (terminal) {
        reader = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_EQ(grantpt(reader), 0);
        EXPECT_EQ(unlockpt(reader), 0);
        writer = open(ptsname(reader), O_RDWR | O_NOCTTY | O_CLOEXEC);
    } else {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        reader = ends[0];
        writer = ends[1];
    }
    Services services(finderOf(script));
    std::ostringstream errors;
    Output output(writer);
    Environment environment{-1, output, errors, services};
    EXPECT_EQ(runCommandLine(words, environment), ExitStatus::ANSWERED) << errors.str();
    std::string text(4096, '\0');
    const ssize_t got = ::read(reader, text.data(), text.size());
    text.resize(got > 0 ? static_cast<size_t>(got) : 0);
    close(writer);
    close(reader);
    return text;
}

TEST(TerminalTest, GetsNoCommandsAndAProgramGetsTheBytes) {
    const std::string odd = "a\x1b[31m\tb\x7f\xc2\x9b\x9b";
    const std::string escaped = "a\\u001b[31m\tb\\u007f\\u009b\\udc9b";
    HostSet set;
    set.setProperty("odd", odd);
    Script script;
    script.dump = odd + '\n';
    script.bytes.assign(odd.begin(), odd.end());
    script.text = odd;
    const std::vector<std::string> raw = {"call", "--raw", "IMlkProjectConfigs", "getTvFile", "x"};
    EXPECT_EQ(shownOn(true, {"dump"}, script), escaped + "\r\n");
    EXPECT_EQ(shownOn(false, {"dump"}, script), odd + '\n');
    EXPECT_EQ(shownOn(true, raw, script), escaped);
    EXPECT_EQ(shownOn(false, raw, script), odd);
    EXPECT_EQ(shownOn(true, {"prop", "get", "odd"}, script),
              "a\\u001b[31m\\tb\\u007f\\u009b\\udc9b\r\n");
    EXPECT_EQ(shownOn(false, {"prop", "get", "odd"}, script), odd + '\n');
    script.items = {{"odd", odd}};
    const std::vector<std::string> get = {"get", "--plain", "[LiveTV]", "odd"};
    EXPECT_EQ(shownOn(true, get, script), "a\\u001b[31m\\tb\\u007f\\u009b\\udc9b\r\n");
    EXPECT_EQ(shownOn(false, get, script), odd + '\n');
    for (const bool terminal : {true, false}) {
        EXPECT_THAT(shownOn(terminal, {"call", "IMlkProjectConfigs", "getPanelName"}, script),
                    StartsWith(R"({"success":true,"value":"a\u001b[31m\tb\u007f\u009b\udc9b"})"));
    }
}

TEST(TerminalTest, MessagesHoldNoCommands) {
    Script script;
    script.failing = {"getPanelName"};
    script.failure = "not\x1b[31m\x9b now";
    const Outcome outcome = runMlkctl({"call", "IMlkProjectConfigs", "getPanelName"}, script);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.err, HasSubstr("not\\u001b[31m\\udc9b now"));
}

TEST(PropTest, SetsGetsAndLists) {
    HostSet set;
    Script script;
    EXPECT_EQ(runMlkctl({"prop", "list"}, script).out, "");
    EXPECT_EQ(runMlkctl({"prop", "list", "--json"}, script).out, "{}\n");
    EXPECT_EQ(runMlkctl({"prop", "get", "b.key"}, script).out, "\n");
    const Outcome outcome = runMlkctl({"prop", "set", "b.key", "-1"}, script);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(runMlkctl({"prop", "get", "b.key"}, script).out, "-1\n");
    EXPECT_EQ(runMlkctl({"prop", "set", "a.key", "--help"}, script).status, 0);
    EXPECT_EQ(runMlkctl({"prop", "set", "empty", ""}, script).status, 0);
    EXPECT_EQ(runMlkctl({"prop", "set", "odd", "\"\n\xff"}, script).status, 0);
    EXPECT_EQ(runMlkctl({"prop", "list"}, script).out,
              "a.key=--help\nb.key=-1\nempty=\nodd=\"\\n\\udcff\n");
    EXPECT_EQ(runMlkctl({"prop", "list", "--json"}, script).out,
              R"({"a.key":"--help","b.key":"-1","empty":"","odd":"\"\n\udcff"})"
              "\n");
}

TEST(PropTest, SaysWhyAPropertyCannotBeSet) {
    HostSet set;
    Script script;
    const auto refused = [&](const std::string& key, const std::string& value) {
        const Outcome outcome = runMlkctl({"prop", "set", key, value}, script);
        EXPECT_EQ(outcome.out, "");
        return std::to_string(outcome.status) + ' ' + outcome.err;
    };
    EXPECT_EQ(refused("a", std::string(91, 'x')), "0 ");
    EXPECT_EQ(refused("a", std::string(92, 'x')),
              "2 mlkctl: VALUE has at most 91 bytes; there are 92\n");
    EXPECT_EQ(refused("ro.serial", "1"), "0 ");
    EXPECT_EQ(refused("ro.serial", "2"),
              "1 mlkctl: cannot set \"ro.serial\": " + set.dir().path("data/property/ro.serial") +
                      ": it is set already, and is set once\n");
    for (const char* key : {"", "a b", "../x", "a=b"}) {
        EXPECT_EQ(refused(key, "1"),
                  "2 mlkctl: \"" + std::string(key) +
                          "\" is no KEY: that is letters, digits and \"_.@:-\"\n");
        EXPECT_EQ(runMlkctl({"prop", "get", key}, script).status, 2) << key;
    }
    for (const char* key : {".", ".a", "a.", "a..b"}) {
        EXPECT_EQ(refused(key, "1"), "2 mlkctl: \"" + std::string(key) +
                                             "\" is no KEY: it has a \".\" at its beginning or "
                                             "end, or two in a row\n");
    }
    const std::string longest(255, 'k');
    EXPECT_EQ(refused(longest, "1"), "0 ");
    EXPECT_EQ(runMlkctl({"prop", "get", longest}, script).out, "1\n");
    EXPECT_EQ(refused(longest + 'k', "1"), "2 mlkctl: KEY has at most 255 bytes; there are 256\n");
    const Outcome tooLong = runMlkctl({"prop", "get", longest + 'k'}, script);
    EXPECT_EQ(tooLong.status, 2);
    EXPECT_EQ(tooLong.out, "");
    EXPECT_EQ(tooLong.err, "mlkctl: KEY has at most 255 bytes; there are 256\n");
}

TEST(PropTest, RefusesOtherWords) {
    Script script;
    const auto refused = [&](std::vector<std::string> words) {
        words.insert(words.begin(), "prop");
        const Outcome outcome = runMlkctl(words, script);
        EXPECT_EQ(outcome.status, 2);
        return outcome.err;
    };
    EXPECT_EQ(refused({}), "mlkctl: prop takes list, get KEY or set KEY VALUE\n");
    EXPECT_EQ(refused({"gte", "a"}), "mlkctl: there is no prop \"gte\"; did you mean get?\n");
    EXPECT_EQ(refused({"remove", "a"}),
              "mlkctl: there is no prop \"remove\"; there are list, get KEY and set KEY VALUE\n");
    EXPECT_EQ(refused({"get"}), "mlkctl: prop get takes one argument: KEY\n");
    EXPECT_EQ(refused({"set", "a"}), "mlkctl: prop set takes two arguments: KEY VALUE\n");
    EXPECT_EQ(refused({"list", "a"}), "mlkctl: prop list takes --json or nothing\n");
}

}  // namespace

}  // namespace mlk::ctl
