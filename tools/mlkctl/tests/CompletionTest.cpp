// What the completion offers, in real shells.

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <sstream>

#include "host/testing/HostSet.h"
#include "host/testing/Process.h"
#include "tools/mlkctl/Completing.h"
#include "tools/mlkctl/tests/Harness.h"

namespace mlk::ctl {

namespace {

using mlk::testing::HostSet;
using mlk::testing::Process;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;
using Words = std::vector<std::string>;

Words linesOf(const std::string& text) {
    Words lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

// What a shell's program prints, sorted. $0 or argv[1] is mlkctl, then the words follow.
Words offeredBy(Words shell, const Words& words, const std::string& folder) {
    shell.push_back(mlk::testing::binDir() + "/mlkctl");
    shell.insert(shell.end(), words.begin(), words.end());
    Process::Options options;
    options.directory = folder;
    Process process(shell, options);
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(process.err(), "");
    return linesOf(process.out());
}

// Words as bash hands them to the function that the script has declared.
Words bashOffers(const Words& words, const std::string& folder = "") {
    return offeredBy({"bash", "-c", R"(
        . <("$0" completion bash)
        [[ $(complete -p mlkctl) == "complete -F _mlkctl mlkctl" ]] || exit 1
        COMP_WORDS=("$0" "$@")
        COMP_CWORD=$#
        _mlkctl "$0" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
        ((${#COMPREPLY[@]})) && printf '%s\n' "${COMPREPLY[@]}"
        exit 0)"},
                     words, folder);
}

// The same in zsh. compadd, which only works inside a widget, prints what it is given.
Words zshOffers(const Words& line, const std::string& folder = "") {
    return offeredBy({"zsh", "-f", "-c", R"(
        compdef() { [[ $* == "_mlkctl mlkctl" ]] || exit 1 }
        compadd() { print -rl -- ${(P)@[-1]} }
        . <("$0" completion zsh)
        words=("$0" "$@")
        CURRENT=${#words}
        _mlkctl
        exit 0)"},
                     line, folder);
}

// The same in fish, which completes a line as it is typed.
Words fishOffers(const std::string& line, const std::string& folder = "") {
    return offeredBy({"fish", "--no-config", "-c", R"(
        $argv[1] completion fish | source
        complete -C "$argv[1] $argv[2]"
        exit 0)"},
                     {line}, folder);
}

// The candidates' values, sorted, in this process.
Words completions(const Words& words, Script& script) {
    Services services(finderOf(script));
    Words values;
    for (const Candidate& candidate : candidatesFor(words, services)) {
        values.push_back(candidate.value);
    }
    std::sort(values.begin(), values.end());
    return values;
}

Words completions(const Words& words) {
    Script script;
    return completions(words, script);
}

TEST(CompletionTest, CompletesCommandsAndOptions) {
    EXPECT_THAT(completions({"c"}), ElementsAre("call", "completion"));
    EXPECT_THAT(completions({""}),
                ElementsAre("--help", "--version", "batch", "call", "completion", "describe",
                            "dump", "get", "list", "prop", "show", "wait", "watch"));
    EXPECT_THAT(completions({"wait", ""}), ElementsAre("--help", "--timeout"));
    EXPECT_THAT(completions({"show", "--j"}), ElementsAre("--json"));
    EXPECT_THAT(completions({"completion", ""}), ElementsAre("--help", "bash", "fish", "zsh"));
    EXPECT_THAT(completions({"watch", "--c"}), ElementsAre("--count"));
    EXPECT_THAT(completions({"call", "--timeout", ""}), IsEmpty());
    EXPECT_THAT(completions({"call", "--timeout", "5", "--r"}), ElementsAre("--raw"));
    EXPECT_THAT(completions({"call", "--", "--r"}), IsEmpty());
    EXPECT_THAT(completions({"dance", ""}), IsEmpty());
}

TEST(CompletionTest, CompletesInterfacesAndTheirMethods) {
    EXPECT_THAT(completions({"call", ""}),
                ElementsAre("--help", "--plain", "--raw", "--timeout", "IMlkFrameworkConfigs",
                            "IMlkProjectConfigs", "IMlkTvConfigs", "framework", "project", "tv"));
    EXPECT_THAT(completions({"call", "tv", "getW"}), ElementsAre("getWOWEnabled"));
    EXPECT_THAT(completions({"call", "getPan"}), ElementsAre("getPanelName"));
    EXPECT_THAT(completions({"describe", "tv", "getW"}), ElementsAre("getWOWEnabled"));
    EXPECT_THAT(completions({"describe", "getPan"}), ElementsAre("getPanelName"));
    EXPECT_THAT(completions({"describe", "getPanelName", ""}), IsEmpty());
    EXPECT_THAT(completions({"call", "IMlkTvConfigs", "getW"}), ElementsAre("getWOWEnabled"));
    EXPECT_THAT(completions({"call", "IMlkFrameworkConfigs", "getW"}),
                ElementsAre("getWowEnabled"));
    EXPECT_THAT(completions({"call", "--raw", "IMlkProjectConfigs", "getTvF"}),
                ElementsAre("getTvFile"));
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", ""}), SizeIs(53));  // and --help
    EXPECT_THAT(completions({"call", "Nothing", "g"}), IsEmpty());
}

TEST(CompletionTest, CompletesArguments) {
    EXPECT_THAT(completions({"call", "IMlkTvConfigs", "getFlag", "HDM"}), ElementsAre("HDMI"));
    EXPECT_THAT(completions({"call", "IMlkTvConfigs", "setFlag", ""}), SizeIs(24));
    EXPECT_THAT(completions({"call", "IMlkTvConfigs", "setFlag", "HDMI", ""}),
                ElementsAre("false", "true"));
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", "getHDMIEdidPath", ""}),
                ElementsAre("0", "1", "2", "3"));
    EXPECT_THAT(completions({"call", "getHDMIEdidPath", "0", "EDID_2"}),
                ElementsAre("EDID_2P0", "EDID_2P1"));
    EXPECT_THAT(completions({"call", "setProjectId", ""}), IsEmpty());  // no upper limit
    EXPECT_THAT(completions({"call", "--", "getFlag", "HDM"}), ElementsAre("HDMI"));
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", "getHDMIEdidPath", "0", ""}),
                ElementsAre("EDID_1P4", "EDID_2P0", "EDID_2P1"));
    EXPECT_THAT(
            completions({"call", "IMlkProjectConfigs", "getFreqTableList", "1", "ATV_CABLE", "H"}),
            ElementsAre("HRC"));
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", "getFreqTableList", "UNITED"}),
                ElementsAre("UNITED_ARAB_EMIRATES", "UNITED_KINGDOM"));
    Script withoutCountries;
    withoutCountries.numbers = {};
    EXPECT_THAT(completions({"call", "IMlkProjectConfigs", "setCountryId", ""}, withoutCountries),
                SizeIs(186));
    EXPECT_THAT(completions({"call", "IMlkTvConfigs", "getFlag", "HDMI", ""}), IsEmpty());
}

TEST(CompletionTest, CompletesCountriesOfTheSet) {
    Script script;
    script.numbers = {14, 44};  // GERMANY, USA
    EXPECT_THAT(completions({"call", "setCountryId", ""}, script), ElementsAre("GERMANY", "USA"));
    EXPECT_THAT(completions({"call", "setCountryId", "U"}, script), ElementsAre("USA"));
    // Another country may be given, too.
    EXPECT_THAT(completions({"call", "setCountryId", "UNITED"}, script),
                ElementsAre("UNITED_ARAB_EMIRATES", "UNITED_KINGDOM"));
}

TEST(CompletionTest, CompletesSectionsAndKeysOfTheService) {
    Script script;
    script.dump =
            "    [LiveTV]:TvConfig=x\n    [LiveTV]:Hbbtv=y\n    [LED]:LED_GPIO=1\n"
            "Audio configuration file: \n    [SPEAKER]:AV_DELAY=0\n";
    EXPECT_THAT(completions({"get", "L"}, script), ElementsAre("LED", "LiveTV"));
    EXPECT_THAT(completions({"get", "[L"}, script), ElementsAre("[LED]", "[LiveTV]"));
    EXPECT_THAT(completions({"get", "--plain", "Li"}, script), ElementsAre("LiveTV"));
    EXPECT_THAT(completions({"get", "LiveTV", ""}, script), ElementsAre("Hbbtv", "TvConfig"));
    EXPECT_THAT(completions({"get", "[LiveTV]", "T"}, script), ElementsAre("TvConfig"));
    EXPECT_THAT(completions({"get", "LiveTV", "TvConfig", ""}, script), IsEmpty());
    EXPECT_THAT(completions({"call", "getConfig", "Li"}, script), ElementsAre("LiveTV"));
    EXPECT_THAT(completions({"call", "project", "getConfig", "LiveTV", "H"}, script),
                ElementsAre("Hbbtv"));
    EXPECT_THAT(completions({"call", "getConfigsByCategory", "LE"}, script), ElementsAre("LED"));
    EXPECT_THAT(completions({"call", "getAudioDelay", ""}, script), ElementsAre("SPEAKER"));
    EXPECT_THAT(completions({"call", "getAudioDelay", "SPEAKER", ""}, script),
                ElementsAre("AV_DELAY"));
    EXPECT_THAT(completions({"call", "getKaraokeConfig", ""}, script), IsEmpty());
    // Without a dump, the sections that the methods read.
    script.dump = "";
    EXPECT_THAT(completions({"get", "HDCP"}, script), ElementsAre("HDCP_KEY_1X", "HDCP_KEY_2X"));
    script.dying = {"debug"};
    EXPECT_THAT(completions({"get", "PAN"}, script), ElementsAre("PANEL"));
}

TEST(CompletionTest, CompletesPaths) {
    const HostSet set;
    set.dir().write("tvconfigs/customer settings.ini", "");
    set.dir().write("tvconfigs/custom/a", "");
    set.dir().write("tvconfigs/.hidden", "");
    Script script;
    script.textOf[{"getTvconfigsPath"}] = set.tvconfigs();
    script.textOf[{"getTvdataPath"}] = set.tvdata();
    script.textOf[{"getImpdataPath"}] = set.impdata();
    const auto paths = [&](const std::string& word) {
        return completions({"call", "getTvFile", word}, script);
    };
    const Words both = {set.tvconfigs() + "/custom/", set.tvconfigs() + "/customer settings.ini"};
    EXPECT_EQ(paths(set.tvconfigs() + "/cust"), both);
    EXPECT_EQ(paths(set.tvconfigs() + "/"), both);
    EXPECT_EQ(paths(set.tvconfigs() + "/."), Words{set.tvconfigs() + "/.hidden"});
    EXPECT_THAT(paths(set.dir().path() + "/tvc"), ElementsAre(set.tvconfigs() + "/"));
    EXPECT_THAT(paths(""), AllOf(Contains(set.tvconfigs() + "/"), Contains(set.impdata() + "/")));
    // A path as the partitions' files have it stands for the one below the mount point.
    EXPECT_EQ(paths("/tvconfigs/cust"), both);
    EXPECT_EQ(paths("/tvconfigs/zebra"), Words());
    EXPECT_EQ(paths("/tvc"), Words{set.tvconfigs() + "/"});
    EXPECT_EQ(paths("/tvconfigs"), Words{set.tvconfigs() + "/"});
    EXPECT_THAT(paths("/tv"), Contains(set.tvconfigs() + "/"));
    EXPECT_EQ(paths("/tvx"), Words());
    EXPECT_EQ(paths("/no/such"), Words());
}

TEST(CompletionTest, CompletesProperties) {
    HostSet set;
    set.setProperty("persist.vendor.mlk.forcestr", "true");
    EXPECT_THAT(completions({"prop", ""}), ElementsAre("--help", "get", "list", "set"));
    EXPECT_THAT(completions({"prop", "get", "per"}), ElementsAre("persist.vendor.mlk.forcestr"));
    EXPECT_THAT(completions({"prop", "set", ""}), Contains("persist.vendor.mlk.forcestr"));
    EXPECT_THAT(completions({"prop", "list", ""}), ElementsAre("--json"));
    EXPECT_THAT(completions({"prop", "get", "a", ""}), IsEmpty());
}

// A set with a service, whose completion each shell asks for.
class ShellTest : public ::testing::Test {
  protected:
    ShellTest() : mService({TEST_SERVER_PROGRAM}) {
        mSet.dir().write("tvconfigs/customer settings.ini", "");
        mSet.dir().write("tvconfigs/folder/x", "");
        EXPECT_EQ(Process({mlk::testing::binDir() + "/mlkctl", "wait", "--timeout", "60"}).wait(),
                  0);
    }

    HostSet mSet;
    Process mService;
};

TEST_F(ShellTest, Bash) {
    EXPECT_THAT(bashOffers({"c"}), ElementsAre("call", "completion"));
    EXPECT_THAT(bashOffers({"call", "tv", "getW"}), ElementsAre("getWOWEnabled"));
    EXPECT_THAT(bashOffers({"get", "HDCP"}), ElementsAre("HDCP_KEY_1X", "HDCP_KEY_2X"));
    // As the user has quoted it.
    EXPECT_THAT(bashOffers({"get", "[PANEL"}), ElementsAre("\\[PANEL\\]"));
    EXPECT_THAT(bashOffers({"get", "'[PANEL"}), ElementsAre("[PANEL]"));
    EXPECT_THAT(bashOffers({"get", "\\[PANEL"}), ElementsAre("\\[PANEL\\]"));
    EXPECT_THAT(bashOffers({"call", "getTvFile", "tvconfigs/cust"}, mSet.dir().path()),
                ElementsAre("tvconfigs/customer\\ settings.ini"));
    EXPECT_THAT(bashOffers({"dance", ""}), IsEmpty());
}

TEST_F(ShellTest, Zsh) {
    EXPECT_THAT(zshOffers({"c"}), ElementsAre("call", "completion"));
    EXPECT_THAT(zshOffers({"call", "tv", "getW"}), ElementsAre("getWOWEnabled"));
    EXPECT_THAT(zshOffers({"get", "'[PANEL"}), ElementsAre("[PANEL]"));
    EXPECT_THAT(zshOffers({"call", "getTvFile", "tvconfigs/"}, mSet.dir().path()),
                ElementsAre("tvconfigs/customer settings.ini", "tvconfigs/folder/"));
    EXPECT_THAT(zshOffers({"dance", ""}), IsEmpty());
}

TEST_F(ShellTest, Fish) {
    EXPECT_THAT(fishOffers("comp"), ElementsAre(StartsWith("completion\tcompletion for a shell")));
    EXPECT_THAT(fishOffers("call tv getW"), ElementsAre(StartsWith("getWOWEnabled\t")));
    EXPECT_THAT(fishOffers("get HDCP"),
                ElementsAre(StartsWith("HDCP_KEY_1X"), StartsWith("HDCP_KEY_2X")));
    EXPECT_THAT(fishOffers("call getTvFile tvconfigs/f", mSet.dir().path()),
                ElementsAre(StartsWith("tvconfigs/folder/")));
    EXPECT_THAT(fishOffers("dance "), IsEmpty());
}

TEST(CompletionTest, OtherShellsAreNotKnown) {
    Script script;
    const Outcome outcome = runMlkctl({"completion", "tcsh"}, script);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err,
              "mlkctl: completion takes the name of a shell: bash, zsh, fish, not \"tcsh\"\n");
    EXPECT_EQ(runMlkctl({"completion"}, script).status, 2);
}

TEST(CompletionTest, TheCommandOfTheScriptsPrintsALineForEach) {
    Script script;
    const Outcome outcome = runMlkctl({"complete", "--", "call", "tv", "getWO"}, script);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out,
              "getWOWEnabled\tWhether the set can be woken over the wireless network.\n");
    EXPECT_EQ(runMlkctl({"complete", "--", "get", "-"}, script).out,
              "--help\tthis text\n--plain\tthe bare value, as a script wants it\n"
              "--timeout\thow long the service may take to be found, and how long to answer: 0 to "
              "86400,\n");
    EXPECT_EQ(runMlkctl({"complete", "--"}, script).out, "");
    EXPECT_EQ(runMlkctl({"complete", "--", ""}, script).status, 0);
    EXPECT_THAT(runMlkctl({"--help"}, script).out, Not(HasSubstr("\n  complete ")));
    // What would be a command to a terminal is not offered.
    const HostSet set;
    set.dir().write("x\x1b[31m", "");
    EXPECT_EQ(
            runMlkctl({"complete", "--", "call", "getTvFile", set.dir().path() + "/x"}, script).out,
            "");
}

}  // namespace

}  // namespace mlk::ctl
