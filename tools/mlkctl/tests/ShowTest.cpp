// How mlkctl show presents a set: width, paths, marks and styles.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <sstream>

#include "host/testing/EnvironmentVariable.h"
#include "tools/common/Wrap.h"
#include "tools/mlkctl/CommandLine.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using mlk::testing::EnvironmentVariable;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

// A set on a host, with a model.
class ShowLayoutTest : public ::testing::Test {
  protected:
    ShowLayoutTest() {
        mScript.texts = {"eng", "wel"};
        mScript.bytes = {};
        mScript.textOf[{"getTvconfigsPath"}] = "/set/tvconfigs";
        mScript.textOf[{"getTvdataPath"}] = "/set/tvdata";
        mScript.textOf[{"getImpdataPath"}] = "/set/impdata";
        mScript.textOf[{"getPQPath"}] = "/set/tvconfigs/pq/pq.bin";
        mScript.textOf[{"getHDMIEdidPath", "2", "0"}] = "";
        mScript.textOf[{"getHDMIEdidPath", "2", "1"}] = "/set/tvconfigs/edid/p3.bin";
        mScript.textOf[{"getHDMIEdidPath", "2", "2"}] = "";
        for (const char* version : {"0", "1", "2"}) {
            mScript.textOf[{"getHDMIEdidPath", "3", version}] = "";
        }
        mScript.textOf[{"getConfig", "[AUDIO]", "AUDIO_CONFIG_PATH"}] = "/set/tvconfigs/a/p.ini";
        mScript.textOf[{"getConfig", "[AUDIO]", "AUDIO_CONFIG_IC_PATH"}] = "/set/tvconfigs/a/i.ini";
        mScript.textOf[{"getConfig", "[AUDIO]", "AUDIO_CONFIG_AVR_PATH"}] = "/elsewhere/a.ini";
        mScript.textOf[{"getConfig", "[HDCP_KEY_1X]", "HDCP_KEY_File"}] = "/set/impdata/hdcp1.bin";
        mScript.textOf[{"getConfig", "[HDCP_KEY_2X]", "HDCP_KEY_File"}] = "";
        mScript.dump =
                "ProjectConfigs:\n  Sys ini file: /set/tvconfigs/system/s.ini\n"
                "  Project ini file: /set/tvconfigs/model/m.ini\n"
                "  Board ini file: /set/tvconfigs/board/b.ini\n";
    }
    std::string show() {
        const Outcome outcome = runMlkctl({"show"}, mScript);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }

    Script mScript;
};

TEST_F(ShowLayoutTest, PathsAreThoseOfThePartitionsFiles) {
    EXPECT_THAT(show(), AllOf(StartsWith("Project\n  Name "),
                              HasSubstr("\n  Model file        /tvconfigs/model/m.ini\n"
                                        "  Board file        /tvconfigs/board/b.ini\n"),
                              HasSubstr("\n  Picture quality   /tvconfigs/pq/pq.bin\n"),
                              HasSubstr("\n  Panel's delays    /tvconfigs/a/p.ini\n"
                                        "  IC's delays       /tvconfigs/a/i.ini\n"
                                        "  AVR's delays      /elsewhere/a.ini\n"),
                              HasSubstr("\n  EDID of port 2    2P0 /tvconfigs/edid/p3.bin\n"
                                        "  EDID of port 3    -\n"
                                        "  HDCP 1.x          /impdata/hdcp1.bin\n"
                                        "  HDCP 2.x          -\n"),
                              HasSubstr("\n  Languages         eng, wel\n"),
                              EndsWith("\nPartitions\n"
                                       "  tvconfigs         /set/tvconfigs\n"
                                       "  tvdata            /set/tvdata\n"
                                       "  impdata           /set/impdata\n")));
    // A program gets what the service answers.
    EXPECT_THAT(
            runMlkctl({"show", "--json"}, mScript).out,
            AllOf(HasSubstr(R"("pictureQuality":"/set/tvconfigs/pq/pq.bin")"),
                  HasSubstr(R"("boardFile":"/set/tvconfigs/board/b.ini")"),
                  HasSubstr(R"("edid2":{"1P4":"","2P0":"/set/tvconfigs/edid/p3.bin","2P1":""})"),
                  HasSubstr(R"("languages":["eng","wel"])"), HasSubstr(R"("missing":[]})")));
}

TEST_F(ShowLayoutTest, WhatDoesNotExistIsMarked) {
    mScript.numberOf[{"isFileExist", "/set/tvconfigs/pq/pq.bin"}] = 0;
    mScript.numberOf[{"isFileExist", "/set/tvconfigs/edid/p3.bin"}] = 0;
    mScript.numberOf[{"isFileExist", "/set/tvconfigs/model/m.ini"}] = 0;
    EXPECT_THAT(show(),
                AllOf(HasSubstr("  Picture quality   /tvconfigs/pq/pq.bin (missing)\n"),
                      HasSubstr("  EDID of port 2    2P0 /tvconfigs/edid/p3.bin (missing)\n"),
                      HasSubstr("  Model file        /tvconfigs/model/m.ini (missing)\n"),
                      HasSubstr("  Board file        /tvconfigs/board/b.ini\n")));
    EXPECT_THAT(runMlkctl({"show", "--json"}, mScript).out,
                HasSubstr(R"("missing":["/set/tvconfigs/edid/p3.bin",)"
                          R"("/set/tvconfigs/model/m.ini","/set/tvconfigs/pq/pq.bin"]})"));
    // A value that is no path is never asked for.
    for (const auto& call : mScript.calls) {
        EXPECT_FALSE(call[0] == "isFileExist" && call[1].front() != '/') << call[1];
    }
}

TEST_F(ShowLayoutTest, FitsSixtyColumns) {
    mScript.textOf[{"getPQPath"}] =
            "/set/tvconfigs/" + std::string(30, 'x') + "/" + std::string(50, 'y') + "/z";
    mScript.textOf[{"getInputSource"}] = "TV,AV,HDMI1,HDMI2,HDMI3,HDMI4,VGA,YPP,USB,NET,WIFI";
    mScript.textOf[{"getPanelName"}] = std::string(100, 'p');
    mScript.flag = false;
    const std::string text = show();
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(columnsOf(line), 60U) << line;
    }
    EXPECT_THAT(text,
                AllOf(HasSubstr("\n  Inputs            TV,AV,HDMI1,HDMI2,HDMI3,HDMI4,VGA,YPP,\n"
                                "                    USB,NET,WIFI\n"),
                      HasSubstr("\n  Features on       -\n"
                                "  Features off      ATV, ATV_ANTENNA, ATV_CABLE, DTV,\n")));
}

TEST_F(ShowLayoutTest, ASetWithoutAModelSaysSo) {
    mScript.dump =
            "ProjectConfigs:\n  Project ID: 9\n  Sys ini file: /set/tvconfigs/system/s.ini\n"
            "  Project ini file: \n  Board ini file: \n";
    EXPECT_THAT(show(), StartsWith("This set has no model: /tvconfigs/system/s.ini has none of\n"
                                   "index 9.\n\nProject\n"));
    mScript.dump = "ProjectConfigs:\n  Sys ini file: \n  Project ini file: \n";
    EXPECT_THAT(show(), StartsWith("This set has no model: there is no system file that lists\n"
                                   "models.\n\nProject\n"));
    mScript.dump = "a service that tells nothing\n";
    EXPECT_THAT(show(), StartsWith("Project\n"));
    mScript.failing = {"debug"};
    mScript.dying = {"debug"};
    EXPECT_THAT(runMlkctl({"show"}, mScript).out, StartsWith("Project\n"));
}

// What a terminal gets.
std::string onTerminal(Script& script) {
    const int reader = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(grantpt(reader), 0);
    EXPECT_EQ(unlockpt(reader), 0);
    const int writer = open(ptsname(reader), O_RDWR | O_NOCTTY | O_CLOEXEC);
    Services services(finderOf(script));
    std::ostringstream errors;
    Output output(writer);
    Environment environment{-1, output, errors, services};
    EXPECT_EQ(runCommandLine({"show"}, environment), ExitStatus::ANSWERED) << errors.str();
    // A terminal holds at least this much until it is read.
    std::string text(3500, '\0');
    const ssize_t got = ::read(reader, text.data(), text.size());
    text.resize(got > 0 ? static_cast<size_t>(got) : 0);
    close(writer);
    close(reader);
    return text;
}

TEST_F(ShowLayoutTest, ATerminalGetsStyles) {
    const EnvironmentVariable terminal("TERM", "xterm");
    const EnvironmentVariable noColour("NO_COLOR", nullptr);
    mScript.numberOf[{"isFileExist", "/set/tvconfigs/pq/pq.bin"}] = 0;
    mScript.texts = {};
    mScript.emptyTexts = true;
    const char* missing = "\x1b[31m/tvconfigs/pq/pq.bin (missing)\x1b[0m\r\n";
    EXPECT_THAT(onTerminal(mScript), AllOf(StartsWith("\x1b[1mProject\x1b[0m\r\n"
                                                      "  Name              \x1b[2m-\x1b[0m\r\n"),
                                           HasSubstr(missing)));
    noColour.set("1");
    EXPECT_THAT(onTerminal(mScript), Not(HasSubstr("\x1b")));
    noColour.set("");
    EXPECT_THAT(onTerminal(mScript), HasSubstr(missing));
    terminal.set("dumb");
    EXPECT_THAT(onTerminal(mScript), Not(HasSubstr("\x1b")));
    terminal.set("xterm");
    EXPECT_THAT(show(), Not(HasSubstr("\x1b")));
}

}  // namespace

}  // namespace mlk::ctl
