#include <gmock/gmock.h>

#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Words = std::vector<std::string>;

Words callOf(const Words& words) {
    Words all = {"call"};
    all.insert(all.end(), words.begin(), words.end());
    return all;
}

// `mlkctl call WORDS...` that is answered with this line.
void expectAnswer(const Words& words, Script& script, const std::string& line) {
    const Outcome outcome = runMlkctl(callOf(words), script);
    EXPECT_EQ(outcome.out, line + '\n');
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
}

// `mlkctl call WORDS...` that fails with this message.
void expectFailure(const Words& words, Script& script, int status, const std::string& message) {
    const Outcome outcome = runMlkctl(callOf(words), script);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "mlkctl: " + message + '\n');
    EXPECT_EQ(outcome.status, status);
}

TEST(CallTest, PrintsTheAnswerAsALine) {
    Script script;
    expectAnswer({"IMlkProjectConfigs", "getPanelName"}, script,
                 R"({"success":true,"value":"getPanelName"})");
    expectAnswer({"IMlkFrameworkConfigs", "getForceStrEnabled"}, script,
                 R"({"success":true,"value":true})");
    expectAnswer({"IMlkTvConfigs", "getAtvSystem"}, script, R"({"success":true,"value":42})");
    expectAnswer({"IMlkProjectConfigs", "getProjectIniList"}, script, R"(["one","two"])");
    expectAnswer({"IMlkProjectConfigs", "getCountryList"}, script, "[1,4000000000]");
    expectAnswer({"IMlkProjectConfigs", "getConfigsByCategory", "[A]"}, script,
                 R"([{"key":"key","value":"value"}])");
    expectAnswer({"IMlkProjectConfigs", "getTvFile", "/x"}, script,
                 R"({"size":3,"base64":"AAH/"})");
    script.success = false;
    expectAnswer({"IMlkTvConfigs", "getFlag", "1"}, script, R"({"success":false,"value":true})");
}

TEST(CallTest, WhatStandsBehindTheMethodIsAnArgument) {
    Script script;
    const std::vector<Words> calls = {
            {"setProjectId", "-3"},  {"getTvFile", "--foo"},
            {"getTvFile", "--raw"},  {"getTvFile", ""},
            {"getTvFile", "--"},     {"setAvrOSDName", "list"},
            {"getConfig", "", "-h"}, {"getAudioDelay", "[A]", "--json", "-x"},
    };
    for (const Words& call : calls) {
        Words words = {"IMlkProjectConfigs"};
        words.insert(words.end(), call.begin(), call.end());
        EXPECT_EQ(runMlkctl(callOf(words), script).status, 0) << testing::PrintToString(call);
        EXPECT_EQ(script.calls.back(), call);
    }
    EXPECT_EQ(runMlkctl({"call", "--", "IMlkProjectConfigs", "setProjectId", "-3"}, script).status,
              0);
    EXPECT_THAT(script.calls.back(), ElementsAre("setProjectId", "-3"));
}

TEST(CallTest, ArgumentsArriveAsTheyAreMeant) {
    Script script;
    const auto arrives = [&](const Words& words, const Words& expected) {
        EXPECT_EQ(runMlkctl(callOf(words), script).status, 0);
        EXPECT_EQ(script.calls.back(), expected);
    };
    arrives({"IMlkTvConfigs", "getFlag", "WOW"}, {"getFlag", "25"});
    arrives({"IMlkTvConfigs", "getFlag", "-1"}, {"getFlag", "4294967295"});
    arrives({"IMlkTvConfigs", "getFlag", "4294967295"}, {"getFlag", "4294967295"});
    arrives({"IMlkTvConfigs", "getFlag", "-2147483648"}, {"getFlag", "2147483648"});
    arrives({"IMlkTvConfigs", "getFlag", "0x1a"}, {"getFlag", "26"});
    arrives({"IMlkTvConfigs", "setFlag", "HBBTV", "false"}, {"setFlag", "19", "false"});
    arrives({"IMlkProjectConfigs", "getHDMIEdidPath", "0", "EDID_2P1"},
            {"getHDMIEdidPath", "0", "2"});
    arrives({"IMlkProjectConfigs", "getFreqTableList", "-1", "ATV_CABLE", "HRC"},
            {"getFreqTableList", "-1", "3", "2"});
    arrives({"IMlkProjectConfigs", "getConfig", "[LiveTV]", "TvConfig"},
            {"getConfig", "[LiveTV]", "TvConfig"});
    arrives({"IMlkProjectConfigs", "setAvrVendorId", R"(a\udcffb)"}, {"setAvrVendorId",
                                                                      "a\xff"
                                                                      "b"});
}

TEST(CallTest, ACommandLineThatIsWrongSaysWhatIsRight) {
    Script script;
    expectFailure({}, script, 2, "INTERFACE and METHOD are missing; see mlkctl call --help");
    expectFailure({"IMlkTvConfig"}, script, 2,
                  R"(there is no interface or method "IMlkTvConfig"; did you mean IMlkTvConfigs?)");
    expectFailure({"vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs/default", "getFlag"}, script, 2,
                  "there is no interface or method "
                  R"("vendor.morlak.mlkconfigs@1.0::IMlkTvConfigs/default")"
                  "; did you mean IMlkTvConfigs?");
    expectFailure({"Television"}, script, 2,
                  R"(there is no interface or method "Television"; the interfaces are )"
                  "IMlkProjectConfigs, IMlkTvConfigs, IMlkFrameworkConfigs");
    expectFailure({"hbbtvEnabled"}, script, 2,
                  "hbbtvEnabled is a method of several interfaces; name one: mlkctl call tv "
                  "hbbtvEnabled, or mlkctl call framework hbbtvEnabled");
    expectFailure({"getEQPath", "one"}, script, 2,
                  R"(IMlkProjectConfigs getEQPath: INDEX is a number, 0 or 1, not "one")");
    expectFailure({"setCountryId", "UK"}, script, 2,
                  "IMlkProjectConfigs setCountryId: COUNTRY is a country's name or a number from "
                  R"(-2147483648 to 2147483647, not "UK"; did you mean UNITED_KINGDOM?)");
    expectFailure({"setCountryId", "Germany"}, script, 2,
                  "IMlkProjectConfigs setCountryId: COUNTRY is a country's name or a number from "
                  R"(-2147483648 to 2147483647, not "Germany"; did you mean GERMANY?)");
    expectFailure({"IMlkTvConfigs"}, script, 2,
                  "METHOD is missing; mlkctl call IMlkTvConfigs --help lists what it has");
    expectFailure({"IMlkTvConfigs", "getFlaf", "1"}, script, 2,
                  R"(IMlkTvConfigs has no method "getFlaf"; did you mean getFlag?)");
    expectFailure({"IMlkTvConfigs", "getPanelName"}, script, 2,
                  R"(IMlkTvConfigs has no method "getPanelName"; did you mean )"
                  "IMlkProjectConfigs getPanelName?");
    expectFailure({"IMlkTvConfigs", "getWowEnabled"}, script, 2,
                  R"(IMlkTvConfigs has no method "getWowEnabled"; did you mean getWOWEnabled, or )"
                  "IMlkFrameworkConfigs getWowEnabled?");
    expectFailure({"IMlkTvConfigs", "dance"}, script, 2,
                  R"(IMlkTvConfigs has no method "dance"; mlkctl call IMlkTvConfigs --help lists )"
                  "what it has");
    expectFailure({"IMlkTvConfigs", "getFlag"}, script, 2,
                  "IMlkTvConfigs getFlag: it takes 1 argument: TYPE; there are 0");
    expectFailure({"IMlkTvConfigs", "pvrEnabled", "x"}, script, 2,
                  "IMlkTvConfigs pvrEnabled: it takes no argument; there is 1");
    expectFailure({"IMlkProjectConfigs", "getAudioDelay", "x"}, script, 2,
                  "IMlkProjectConfigs getAudioDelay: it takes 3 arguments: CATEGORY KEY AVR_NAME; "
                  "there is 1");
    expectFailure({"IMlkTvConfigs", "getFlag", "4294967296"}, script, 2,
                  "IMlkTvConfigs getFlag: TYPE is ATV, ATV_ANTENNA, ATV_CABLE, DTV, DTV_ANTENNA, "
                  "DTV_CABLE, DTV_SATELLITE, PVR, LIVEPAUSE, HDMI, VGA, AV, YPP, CI, PIP, MHEG5, "
                  "GINGA, HBBTV, TELTEX, CLOSE_CAPTION, ATSC_CLOSE_CAPTION, NTSC_CLOSE_CAPTION, "
                  R"(ISDB_CLOSE_CAPTION, WOW, or a number of 32 bits, not "4294967296")");
    EXPECT_EQ(runMlkctl({"call", "IMlkTvConfigs", "getFlag", "-2147483649"}, script).status, 2);
    EXPECT_THAT(script.calls, IsEmpty());
}

TEST(CallTest, AWrongArgumentIsToldWithoutAService) {
    Script script;
    const std::set<std::string> none = {"IMlkTvConfigs"};
    EXPECT_EQ(
            runMlkctl({"call", "IMlkTvConfigs", "setFlag", "1", "maybe"}, script, "", none).status,
            2);
    const Outcome outcome = runMlkctl({"call", "IMlkTvConfigs", "getFlag", "1"}, script, "", none);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("mlkctl: IMlkTvConfigs: not registered: no socket "));
}

TEST(CallTest, AnUnansweredCallIsNoAnswer) {
    Script script;
    script.silent = {"getEQPath"};
    script.failing = {"getPowerOnMode"};
    script.dying = {"getPanelName"};
    expectFailure({"IMlkProjectConfigs", "getEQPath", "1"}, script, 3,
                  "IMlkProjectConfigs getEQPath: no answer; there is none if the index is not 0 or "
                  "1");
    expectFailure({"IMlkProjectConfigs", "getEQPath", "5"}, script, 3,
                  "IMlkProjectConfigs getEQPath: no answer; INDEX 5 is out of its range, 0 or 1");
    expectFailure({"IMlkProjectConfigs", "getPowerOnMode"}, script, 3,
                  "IMlkProjectConfigs getPowerOnMode: no answer: Status(EX_ILLEGAL_STATE): 'not "
                  "now'; there "
                  "is none if the item is a number other than 0, 1 and 2");
    expectFailure({"IMlkProjectConfigs", "getPanelName"}, script, 1,
                  "IMlkProjectConfigs getPanelName: the service died during the call");
}

// Such a call is made all the same: the service decides.
TEST(CallTest, AnAnsweredCallOutOfItsRangeIsNoted) {
    Script script;
    const auto noted = [&](const Words& words) {
        const Outcome outcome = runMlkctl(callOf(words), script);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_NE(outcome.out, "");
        return outcome.err;
    };
    EXPECT_EQ(noted({"tv", "setAtvSystem", "1"}), "");
    EXPECT_EQ(noted({"tv", "setAtvSystem", "2"}), "mlkctl: SYSTEM 2 is out of its range, 0 or 1\n");
    EXPECT_EQ(noted({"tv", "setAtvSystem", "-1"}),
              "mlkctl: SYSTEM -1 is out of its range, 0 or 1\n");
    EXPECT_EQ(noted({"setProjectId", "1"}), "");
    EXPECT_EQ(noted({"setProjectId", "0"}),
              "mlkctl: PROJECT_ID 0 is out of its range, 1 or more\n");
    EXPECT_EQ(noted({"setAvrVendorId", std::string(128, 'x')}), "");
    EXPECT_EQ(noted({"setAvrVendorId", std::string(129, 'x')}),
              "mlkctl: VENDOR_ID of 129 bytes is too long: a text of at most 128 bytes\n");
    EXPECT_EQ(noted({"setCountryId", "-1"}), "");
    EXPECT_EQ(noted({"setCountryId", "999"}), "mlkctl: COUNTRY 999: no country has this number\n");
    EXPECT_EQ(noted({"getHDMIEdidPath", "4", "7"}),
              "mlkctl: PORT 4 is out of its range, 0 to 3; VERSION 7 is not EDID_1P4, EDID_2P0 or "
              "EDID_2P1\n");
    EXPECT_EQ(noted({"getFlag", "0"}), "mlkctl: TYPE 0: no enumerator has this number\n");
}

TEST(CallTest, AnInterfaceMayBeShortOrLeftOut) {
    Script script;
    for (const Words& words : {Words{"IMlkTvConfigs", "getFlag", "HDMI"},
                               Words{"tv", "getFlag", "HDMI"}, Words{"getFlag", "HDMI"}}) {
        EXPECT_EQ(runMlkctl(callOf(words), script).err, "");
        EXPECT_THAT(script.calls.back(), ElementsAre("getFlag", "11"));
    }
    expectAnswer({"framework", "hbbtvEnabled"}, script, R"({"success":true,"value":true})");
    EXPECT_EQ(runMlkctl({"call", "--raw", "getTvFile", "x"}, script).out,
              std::string("\0\1\xff", 3));
}

TEST(CallTest, RawPrintsTheBytes) {
    Script script;
    script.bytes = {'a', 0, 10, 255};
    script.memory = std::string("m\0\n\xff", 4);
    const std::string bytes("a\0\n\xff", 4);
    EXPECT_EQ(runMlkctl({"call", "--raw", "IMlkProjectConfigs", "getTvFile", "/x"}, script).out,
              bytes);
    EXPECT_EQ(runMlkctl({"call", "IMlkProjectConfigs", "getTvFile", "/x", "--raw"}, script).out,
              bytes);
    EXPECT_THAT(script.calls.back(), ElementsAre("getTvFile", "/x"));
    EXPECT_EQ(runMlkctl({"call", "--raw", "IMlkProjectConfigs", "getVendorPartitionFile", "/x"},
                        script)
                      .out,
              script.memory);
    EXPECT_EQ(runMlkctl({"call", "IMlkProjectConfigs", "getTvFile", "--raw", "--raw"}, script).out,
              bytes);
    EXPECT_THAT(script.calls.back(), ElementsAre("getTvFile", "--raw"));
    expectFailure({"--raw", "IMlkProjectConfigs", "getPanelName"}, script, 2,
                  "IMlkProjectConfigs getPanelName: it answers no bytes that could be printed raw");
    expectFailure({"IMlkProjectConfigs", "getPanelName", "--raw"}, script, 2,
                  "IMlkProjectConfigs getPanelName: it takes no argument; there is 1");
    expectFailure({"--rwa", "IMlkProjectConfigs", "getPanelName"}, script, 2,
                  R"(there is no option "--rwa"; did you mean --raw? (see mlkctl call --help))");
}

TEST(CallTest, PlainPrintsTheBareValue) {
    Script script;
    const auto plain = [&](Words words) {
        words.insert(words.begin(), {"call", "--plain"});
        const Outcome outcome = runMlkctl(words, script);
        return std::to_string(outcome.status) + ' ' + outcome.out + outcome.err;
    };
    EXPECT_EQ(plain({"getPanelName"}), "0 getPanelName\n");
    EXPECT_EQ(plain({"getProjectId"}), "0 42\n");
    EXPECT_EQ(plain({"getCountryList"}), "0 1\n4000000000\n");
    EXPECT_EQ(plain({"getConfigsByCategory", "[A]"}), "0 key=value\n");
    EXPECT_EQ(plain({"getTvFile", "x"}),
              "2 mlkctl: IMlkProjectConfigs getTvFile: it answers bytes; --raw prints them\n");
    EXPECT_EQ(plain({"--raw", "getTvFile", "x"}),
              "2 mlkctl: IMlkProjectConfigs getTvFile: --plain and --raw are two forms; one is "
              "possible\n");
    EXPECT_EQ(runMlkctl({"call", "getPanelName", "--plain"}, script).out, "getPanelName\n");
    EXPECT_EQ(runMlkctl({"call", "getConfig", "[A]", "--plain"}, script).out,
              "{\"success\":true,\"value\":\"getConfig\"}\n");
    EXPECT_THAT(script.calls.back(), ElementsAre("getConfig", "[A]", "--plain"));
    script.emptyTexts = true;
    EXPECT_EQ(plain({"getPanelName"}), "1 ");
    script.success = false;
    EXPECT_EQ(plain({"getProjectId"}), "1 ");
}

TEST(CallTest, MemoryThatCannotBeReadIsNoAnswer) {
    Script script;
    script.memory = std::string("x");
    ASSERT_EQ(runMlkctl({"call", "IMlkProjectConfigs", "getVendorPartitionFile", "/x"}, script).out,
              "{\"size\":1,\"base64\":\"eA==\"}\n");
    script.memory = std::string(100'000, 'x');  // the block is there already, and smaller
    const Outcome outcome =
            runMlkctl({"call", "IMlkProjectConfigs", "getVendorPartitionFile", "/x"}, script);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.err,
                HasSubstr("getVendorPartitionFile: the answer's shared memory of 100000 "
                          "bytes cannot be mapped"));
}

TEST(CallTest, AnInterfacesHelpListsItsMethods) {
    Script script;
    const Outcome outcome = runMlkctl({"call", "IMlkProjectConfigs", "--help"}, script);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out,
                StartsWith("Methods of IMlkProjectConfigs and their arguments:\n"
                           "  setProjectId                  PROJECT_ID                   "
                           "PROJECT_ID is 1 or more\n"
                           "  setProjectIdWithPid           PROJECT_ID PROCESS_NAME PID  "
                           "PROJECT_ID is 1 or more\n"
                           "  getProjectId\n"));
    EXPECT_THAT(outcome.out,
                AllOf(HasSubstr("\n  getConfig                     CATEGORY KEY\n"),
                      HasSubstr("\n  getHDMIEdidPath               PORT VERSION                 "
                                "PORT is 0 to 3\n"),
                      HasSubstr("\n  setAvrVendorId                VENDOR_ID                    "
                                "VENDOR_ID is at most 128 bytes\n")));
}

}  // namespace

}  // namespace mlk::ctl
