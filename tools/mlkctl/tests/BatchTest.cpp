#include <gmock/gmock.h>

#include <sstream>

#include "tools/mlkctl/tests/Harness.h"

using namespace std::string_literals;

namespace mlk::ctl {

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;
using testing::SizeIs;
using testing::StartsWith;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(BatchTest, AnswersEachLineInOrder) {
    Script script;
    const Outcome outcome = runMlkctl({"batch"}, script,
                                      R"(["IMlkProjectConfigs","getConfig","[LiveTV]","TvConfig"]
["IMlkTvConfigs","setFlag","HBBTV",false]
["IMlkTvConfigs","setFlag",19,true]
["IMlkTvConfigs","setFlag",4294967295,true]
["IMlkTvConfigs","setFlag",-1,true]
["IMlkProjectConfigs","getFreqTableList",57,"ATV_CABLE","0x2"]
["IMlkProjectConfigs","setAvrOSDName","a\u0000b\udcff"])");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(linesOf(outcome.out),
                ElementsAre(R"({"success":true,"value":"getConfig"})",
                            R"({"success":true,"value":true})", R"({"success":true,"value":true})",
                            R"({"success":true,"value":true})", R"({"success":true,"value":true})",
                            "[]", R"({"success":true,"value":true})"));
    EXPECT_THAT(script.calls, ElementsAre(ElementsAre("getConfig", "[LiveTV]", "TvConfig"),
                                          ElementsAre("setFlag", "19", "false"),
                                          ElementsAre("setFlag", "19", "true"),
                                          ElementsAre("setFlag", "4294967295", "true"),
                                          ElementsAre("setFlag", "4294967295", "true"),
                                          ElementsAre("getFreqTableList", "57", "3", "2"),
                                          ElementsAre("setAvrOSDName", "a\0b\xff"s)));
}

TEST(BatchTest, EveryLineHasItsAnswer) {
    Script script;
    script.silent = {"getEQPath"};
    const Outcome outcome = runMlkctl({"batch"}, script,
                                      R"(
garbage
["IMlkTvConfig","pvrEnabled"]
["IMlkTvConfigs","pvrEnabld"]
["IMlkTvConfigs","getFlag","HBBTW"]
["IMlkTvConfigs","setAtvSystem","1"]
["IMlkTvConfigs","setAtvSystem",1.0]
["IMlkTvConfigs","setAtvSystem",true]
["IMlkTvConfigs","setAtvSystem",2147483648]
["IMlkTvConfigs","setPvrEnabled","true"]
["IMlkTvConfigs","reloadTvConfig",5]
["IMlkTvConfigs","pvrEnabled",null]
["IMlkProjectConfigs","getEQPath",2]
["IMlkTvConfigs","pvrEnabled"]
)");
    const std::string usage = R"(\{"error":"usage","message":")";
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(
            linesOf(outcome.out),
            ElementsAre(
                    MatchesRegex(usage + "column 1: not JSON; a line is .*\"}"),
                    MatchesRegex(usage + "column 1: not JSON; a line is .*\"}"),
                    R"({"error":"usage","message":"there is no interface \"IMlkTvConfig\"; did you mean IMlkTvConfigs?"})",
                    R"({"error":"usage","message":"IMlkTvConfigs has no method \"pvrEnabld\"; did you mean pvrEnabled?"})",
                    MatchesRegex(usage +
                                 R"(IMlkTvConfigs getFlag: TYPE is .*did you mean HBBTV\?"})"),
                    R"({"error":"usage","message":"IMlkTvConfigs setAtvSystem: SYSTEM is a number, 0 or 1, not \"1\""})",
                    MatchesRegex(usage + R"(IMlkTvConfigs setAtvSystem: .*, not 1\.0"})"),
                    MatchesRegex(usage + R"(IMlkTvConfigs setAtvSystem: .*, not true"})"),
                    MatchesRegex(usage + R"(IMlkTvConfigs setAtvSystem: .*, not 2147483648"})"),
                    R"({"error":"usage","message":"IMlkTvConfigs setPvrEnabled: ENABLED is true or false, not \"true\""})",
                    R"({"error":"usage","message":"IMlkTvConfigs reloadTvConfig: PATH is a text, not 5"})",
                    R"({"error":"usage","message":"IMlkTvConfigs pvrEnabled: it takes no argument; there is 1"})",
                    R"({"error":"no-answer","message":"IMlkProjectConfigs getEQPath: no answer; INDEX 2 is out of its range, 0 or 1"})",
                    R"({"success":true,"value":true})"));
}

TEST(BatchTest, ALineHasALimit) {
    Script script;
    constexpr size_t kLimit = 2UL * 1024 * 1024;
    const std::string begin = R"(["IMlkTvConfigs","reloadTvConfig",")";
    const std::string fits = begin + std::string(kLimit - begin.size() - 2, 'x') + "\"]";
    const Outcome outcome = runMlkctl(
            {"batch"}, script, fits + "\n" + fits + " \n[\"IMlkTvConfigs\",\"pvrEnabled\"]\n");
    EXPECT_THAT(linesOf(outcome.out),
                ElementsAre(R"({"success":true,"value":true})",
                            R"({"error":"usage","message":"a line has at most 2097152 bytes"})",
                            R"({"success":true,"value":true})"));
}

TEST(BatchTest, LooksAgainForAServiceThatHasDied) {
    Script script;
    script.dying = {"getPanelName"};
    int found = 0;
    Services services([&](const Interface& interface) -> ::android::sp<IBase> {
        ++found;
        if (found == 2) {
            return nullptr;  // not back yet
        }
        return finderOf(script)(interface);
    });
    const std::string call = "[\"IMlkProjectConfigs\",\"getRegionName\"]\n";
    const Outcome outcome = runMlkctl(
            {"batch"}, services,
            call + call + "[\"IMlkProjectConfigs\",\"getPanelName\"]\n" + call + call + call);
    const std::string answered = R"({"success":true,"value":"getRegionName"})";
    EXPECT_THAT(
            linesOf(outcome.out),
            ElementsAre(
                    answered, answered,
                    R"({"error":"unreachable","message":"IMlkProjectConfigs getPanelName: the service died during the call"})",
                    MatchesRegex(R"(\{"error":"unreachable","message":"IMlkProjectConfigs: not )"
                                 R"(registered: .*; is the service running\?"\})"),
                    answered, answered));
    // One proxy for the first three lines, none for the fourth, one for the rest.
    EXPECT_EQ(found, 3);
    EXPECT_EQ(outcome.status, 0);
}

// More lines than one round of calls takes, of two interfaces, with wrong lines between them.
TEST(BatchTest, ManyLinesKeepTheirOrder) {
    Script script;
    std::string input;
    std::vector<std::string> expected;
    for (int i = 0; i < 500; ++i) {
        const std::string number = std::to_string(i);
        if (i % 7 == 3) {
            input += "[\"Unknown" + number + "\"]\n";
            expected.push_back("error");
        } else if (i % 3 == 0) {
            input += "[\"IMlkTvConfigs\",\"setAtvSystem\"," + number + "]\n";
            expected.push_back("success");
        } else {
            input += "[\"IMlkProjectConfigs\",\"setProjectId\"," + number + "]\n";
            expected.push_back("success");
        }
    }
    const std::vector<std::string> answers = linesOf(runMlkctl({"batch"}, script, input).out);
    ASSERT_THAT(answers, SizeIs(expected.size()));
    for (size_t i = 0; i < answers.size(); ++i) {
        EXPECT_THAT(answers[i], StartsWith("{\"" + expected[i])) << i;
    }
    int last = -1;
    for (const std::vector<std::string>& call : script.calls) {
        EXPECT_GT(std::stoi(call[1]), last);
        last = std::stoi(call[1]);
    }
    EXPECT_EQ(last, 499);
}

TEST(BatchTest, TakesNoWords) {
    Script script;
    EXPECT_EQ(runMlkctl({"batch", "file"}, script).status, 2);
    EXPECT_THAT(runMlkctl({"batch"}, script).out, SizeIs(0));
}

}  // namespace

}  // namespace mlk::ctl
